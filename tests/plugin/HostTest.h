/// A host for tests: it loads the built bundle as an application does and hears every notification.
///
/// The test programs do not link the library; what they know of it are the host headers. Each test runs in a
/// process of its own, and none may count on it: sanitized they share one.
#pragma once

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Sandbox.h"
#import "UMSServiceBundle/UMSServicePrivate.h"

struct EarState;

/// Keeps notifications in the order in which they came.
@interface NotificationEar : NSObject {
 @public
  EarState* _state;
}
/// Those of one name, or all for nil.
- (NSArray*)named:(NSString*)name;
/// Lets go of what was heard so far.
- (void)forget;
/// Waits for a number of notifications of a name; NO after ten seconds.
- (BOOL)waitFor:(NSString*)name count:(NSUInteger)count;
@end

/// A list whose elements a test chooses one by one, nil included.
@interface OddArray : NSArray {
 @private
  id* _elements;
  NSUInteger _count;
}
- (id)initWithElements:(const id*)elements count:(NSUInteger)count;
@end

namespace umsplugin::testing {

using umsservice::testing::bytesOf;
using umsservice::testing::exists;
using umsservice::testing::Sandbox;

inline NSString* const kProgress = @"QDORVEL_NOTI_TRANSFER_PROGRESS";
inline NSString* const kUmsResult = @"QDORVEL_NOTI_UMS_RESULT";
inline NSString* const kItemResult = @"QDORVEL_NOTI_MEDIA_TRASFER_RESULT";

/// The bundle that was built, loaded.
NSBundle* loadedBundle();
/// A class of the bundle by name.
Class bundleClass(NSString* name);

std::string text(id string);
NSString* string(const std::string& text);
std::vector<std::string> texts(NSArray* strings);
/// A content dictionary.
NSMutableDictionary* content(const std::string& filePath, const std::string& fileName);
NSDictionary* disk(int diskType, const std::string& volumePath);
/// A number of a dictionary.
long long number(NSDictionary* dictionary, NSString* key);
/// Looks at a condition until it holds; false after ten seconds.
bool eventually(const std::function<bool()>& condition);

/// As long as it lives, a handler hears. It ends when no thread is inside the handler any more, so what the
/// handler refers to may be declared before it and go after it.
class [[nodiscard]] Hearing {
 public:
  explicit Hearing(EarState* state) : state_(state) {}
  ~Hearing();
  Hearing(const Hearing&) = delete;
  Hearing& operator=(const Hearing&) = delete;

 private:
  EarState* const state_;
};

class HostTest : public ::testing::Test {
 protected:
  HostTest();
  ~HostTest() override;

  /// A service at a location, model "Pocket One", without volumes. Released when the test ends.
  UMSService* makeService(NSString* locationID);
  /// The same with internal memory (index 0) and a card (index 1).
  UMSService* makeDevice();
  /// Takes a service out of the fixture's hands: the caller releases it.
  UMSService* takeOver(UMSService* service);
  /// Runs the handler on the posting thread, after the notification was kept.
  Hearing onEach(std::function<void(NSNotification*)> handler);

  NSAutoreleasePool* const pool_ = [[NSAutoreleasePool alloc] init];
  Sandbox sandbox;
  const std::string internal = sandbox.folder("internal");
  const std::string card = sandbox.folder("card");
  NotificationEar* const ear = [[NotificationEar alloc] init];

 private:
  std::vector<UMSService*> services_;
};

}  // namespace umsplugin::testing
