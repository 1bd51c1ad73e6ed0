/// The host's device profiles: its class `ProfileInfo`, where it has one.
#import <Foundation/Foundation.h>

#import "UMSServiceBundle/HostClasses.h"
#include "bridge/CallbackScope.h"
#include "bridge/Text.h"
#include "environment/HostEnvironment.h"

using umsservice::MaybeString;

namespace umsplugin {
namespace {

/// The answer of the profile's one shared object to one of the eight queries.
MaybeString ask(SEL query, const MaybeString& locationID) {
  return inCallback([&]() -> MaybeString {
    Class profileClass = NSClassFromString(@"ProfileInfo");
    if (![profileClass respondsToSelector:@selector(sharedInstance)]) return std::nullopt;
    id profile = [profileClass sharedInstance];
    if (![profile respondsToSelector:query]) return std::nullopt;
    return toText([profile performSelector:query withObject:toHost(locationID)]);
  });
}

class HostProfileInfo final : public umsservice::ProfileInfo {
 public:
  MaybeString contentsMusicDefaultFolderInternal(const MaybeString& locationID) override {
    return ask(@selector(contentsMusicDefaultFolderInternal:), locationID);
  }
  MaybeString contentsMusicDefaultFolderExternal(const MaybeString& locationID) override {
    return ask(@selector(contentsMusicDefaultFolderExternal:), locationID);
  }
  MaybeString contentsImageDefaultFolderInternal(const MaybeString& locationID) override {
    return ask(@selector(contentsImageDefaultFolderInternal:), locationID);
  }
  MaybeString contentsImageDefaultFolderExternal(const MaybeString& locationID) override {
    return ask(@selector(contentsImageDefaultFolderExternal:), locationID);
  }
  MaybeString contentsMovieDefaultFolderInternal(const MaybeString& locationID) override {
    return ask(@selector(contentsMovieDefaultFolderInternal:), locationID);
  }
  MaybeString contentsMovieDefaultFolderExternal(const MaybeString& locationID) override {
    return ask(@selector(contentsMovieDefaultFolderExternal:), locationID);
  }
  MaybeString contentsPodcastDefaultFolderInternal(const MaybeString& locationID) override {
    return ask(@selector(contentsPodcastDefaultFolderInternal:), locationID);
  }
  MaybeString contentsPodcastDefaultFolderExternal(const MaybeString& locationID) override {
    return ask(@selector(contentsPodcastDefaultFolderExternal:), locationID);
  }
};

}  // namespace

std::shared_ptr<umsservice::ProfileInfo> hostProfileInfo() {
  return std::make_shared<HostProfileInfo>();
}

}  // namespace umsplugin
