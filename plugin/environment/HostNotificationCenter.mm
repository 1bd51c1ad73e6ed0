/// Notifications leave through the process's default center, without an object, on the thread that made them.
#import <Foundation/Foundation.h>

#include "bridge/CallbackScope.h"
#include "bridge/HostContainers.h"
#include "bridge/Text.h"
#include "bridge/Values.h"
#include "environment/HostEnvironment.h"

namespace umsplugin {
namespace {

/// A dictionary of the host's own kind. What a channel holds is only looked into when the host does: its
/// result is posted once for each episode. Tags of the host's come with whatever keys they have.
NSDictionary* hostInfo(const umsservice::Dictionary& userInfo) {
  if (auto host = std::dynamic_pointer_cast<HostDictionary>(userInfo.storage())) return host->object();
  NSMutableDictionary* info = [NSMutableDictionary dictionary];
  for (const std::string& name : userInfo.keys()) {
    [info setObject:toHostView(userInfo.get(name)) forKey:toHostText(name)];
  }
  return info;
}

class HostNotificationCenter final : public umsservice::NotificationCenter {
 public:
  // Observers in C++ are told as well; hosts observe the default center.
  ObserverId addObserver(const std::string& name, Handler handler) override {
    return local_->addObserver(name, std::move(handler));
  }
  void removeObserver(ObserverId observer) override { local_->removeObserver(observer); }

  void post(const std::string& name, const umsservice::Dictionary& userInfo) override {
    inCallback([&] {
      [[NSNotificationCenter defaultCenter] postNotificationName:toHostText(name)
                                                          object:nil
                                                        userInfo:hostInfo(userInfo)];
    });
    local_->post(name, userInfo);
  }

 private:
  const std::shared_ptr<umsservice::NotificationCenter> local_ = umsservice::makeNotificationCenter();
};

}  // namespace

std::shared_ptr<umsservice::NotificationCenter> hostNotificationCenter() {
  return std::make_shared<HostNotificationCenter>();
}

}  // namespace umsplugin
