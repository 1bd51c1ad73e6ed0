#include "RunningRequest.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;

uint32_t nextServiceID() {
  static std::atomic<uint32_t> last{0};
  return ++last;
}

/// A request that is cancelled before the worker takes it up is told as progress of no files, and never gets
/// a result.
bool endsUnstarted(const Notification& notification) {
  return notification.name == kTransferProgressNotification &&
         notification.userInfo.get(key::kTransferStatus).intValue() == kTransferCancelled &&
         notification.userInfo.get(key::kMax).unsignedIntValue() == 0;
}

bool isEnd(const Notification& notification) {
  return notification.name == kUmsResultNotification || endsUnstarted(notification);
}

}  // namespace

struct RunningRequest::End {
  void come() {
    std::lock_guard lock(mutex);
    hasCome = true;
    changed.notify_all();
  }

  std::mutex mutex;
  std::condition_variable changed;
  bool hasCome = false;
};

RunningRequest::RunningRequest(Device& device, ProgressDisplay& display)
    : center_(device.notificationCenter()), serviceID_(nextServiceID()), end_(std::make_shared<End>()) {
  auto hear = [serviceID = serviceID_, end = end_, &display](const Notification& notification) {
    if (notification.userInfo.get(key::kServiceID).unsignedIntValue() != serviceID) return;
    if (!isEnd(notification)) return display.hear(notification);
    end->come();
  };
  for (const char* name : {kTransferProgressNotification, kMediaResultNotification, kUmsResultNotification})
    observers_.push_back(center_.addObserver(name, hear));
}

RunningRequest::~RunningRequest() {
  for (auto observer : observers_) center_.removeObserver(observer);
}

std::function<void()> RunningRequest::ender() const {
  return [end = end_] { end->come(); };
}

void RunningRequest::waitForEnd() {
  std::unique_lock lock(end_->mutex);
  end_->changed.wait(lock, [this] { return end_->hasCome; });
}

}  // namespace umsctl
