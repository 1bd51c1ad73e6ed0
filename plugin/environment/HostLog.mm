/// Log lines go through `NSLog`; how many, "DEBUG.plist" of the application says, read for every statement.
#import <Foundation/Foundation.h>

#include "bridge/CallbackScope.h"
#include "bridge/Exceptions.h"
#include "bridge/Text.h"
#include "bridge/Values.h"
#include "environment/HostEnvironment.h"

namespace umsplugin {
namespace {

/// Diagnostics never fail whom they tell of: not for a list that the platform chokes on, nor for a line.
template <typename Body>
void ignoringExceptions(Body body) {
  inCallback([&] { [exceptionIn(body) release]; });
}

class HostLogSink final : public umsservice::LogSink {
 public:
  void write(const std::string& line) override {
    ignoringExceptions([&] { NSLog(@"%@", toHostText(line)); });
  }
};

/// The bundle keeps in mind that a resource was not there; a developer may put the file there later.
NSString* debugListPath() {
  NSBundle* bundle = [NSBundle mainBundle];
  NSString* path = [bundle pathForResource:@"DEBUG" ofType:@"plist"];
  if (!path) path = [[bundle resourcePath] stringByAppendingPathComponent:@"DEBUG.plist"];
  return [[NSFileManager defaultManager] isReadableFileAtPath:path] ? path : nil;
}

int32_t levelOf(NSData* bytes) {
  id list = bytes ? [NSPropertyListSerialization propertyListWithData:bytes
                                                              options:NSPropertyListImmutable
                                                               format:NULL
                                                                error:NULL]
                  : nil;
  if (![list isKindOfClass:[NSDictionary class]]) return 0;
  return toValue([list objectForKey:@"DEBUG_LEVEL"]).intValue();
}

class HostDebugLevelSource final : public umsservice::DebugLevelSource {
 public:
  int32_t debugLevel() override {
    int32_t level = 0;
    ignoringExceptions([&level] {
      NSString* path = debugListPath();
      if (path) level = levelOf([NSData dataWithContentsOfFile:path]);
    });
    return level;
  }
};

}  // namespace

std::shared_ptr<umsservice::LogSink> hostLogSink() {
  return std::make_shared<HostLogSink>();
}

std::shared_ptr<umsservice::DebugLevelSource> hostDebugLevelSource() {
  return std::make_shared<HostDebugLevelSource>();
}

}  // namespace umsplugin
