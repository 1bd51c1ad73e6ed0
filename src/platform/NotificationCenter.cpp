#include "umsservice/NotificationCenter.h"

#include <algorithm>
#include <atomic>
#include <map>

#include "Mutex.h"

namespace umsservice {
namespace {

struct Observer {
  NotificationCenter::ObserverId id;
  NotificationCenter::Handler handler;
  std::atomic<bool> active{true};
};

class LocalNotificationCenter final : public NotificationCenter {
 public:
  ObserverId addObserver(const std::string& name, Handler handler) override {
    auto observer = std::make_shared<Observer>();
    observer->handler = std::move(handler);
    MutexLock lock(mutex_);
    observer->id = ++lastId_;
    observers_[name].push_back(observer);
    return observer->id;
  }

  void removeObserver(ObserverId id) override {
    std::shared_ptr<Observer> removed;  // outlives the lock: a handler may own anything
    MutexLock lock(mutex_);
    for (auto& [name, list] : observers_) {
      auto found =
          std::find_if(list.begin(), list.end(), [id](const auto& observer) { return observer->id == id; });
      if (found == list.end()) continue;
      removed = *found;
      removed->active = false;
      list.erase(found);
      return;
    }
  }

  void post(const std::string& name, const Dictionary& userInfo) override {
    Notification notification{name, userInfo};
    for (const auto& observer : observersOf(name)) {
      if (observer->active && observer->handler) observer->handler(notification);
    }
  }

 private:
  std::vector<std::shared_ptr<Observer>> observersOf(const std::string& name) {
    MutexLock lock(mutex_);
    auto found = observers_.find(name);
    return found == observers_.end() ? std::vector<std::shared_ptr<Observer>>() : found->second;
  }

  Mutex mutex_;
  ObserverId lastId_ GUARDED_BY(mutex_) = 0;
  std::map<std::string, std::vector<std::shared_ptr<Observer>>> observers_ GUARDED_BY(mutex_);
};

}  // namespace

std::shared_ptr<NotificationCenter> makeNotificationCenter() {
  return std::make_shared<LocalNotificationCenter>();
}

std::shared_ptr<NotificationCenter> defaultNotificationCenter() {
  static const auto center = makeNotificationCenter();
  return center;
}

}  // namespace umsservice
