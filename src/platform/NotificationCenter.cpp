#include "umsservice/NotificationCenter.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <utility>

#include "Mutex.h"

namespace umsservice {
namespace {

struct Observer {
  NotificationCenter::ObserverId id;
  NotificationCenter::Handler handler;
  std::atomic<bool> active{true};
};

/// Never changed once it is shared: a post goes through the list that it found.
using Observers = std::vector<std::shared_ptr<Observer>>;

class LocalNotificationCenter final : public NotificationCenter {
 public:
  ObserverId addObserver(const std::string& name, Handler handler) override {
    auto observer = std::make_shared<Observer>();
    observer->handler = std::move(handler);
    MutexLock lock(mutex_);
    observer->id = ++lastId_;
    auto& known = observers_[name];
    auto list = known ? std::make_shared<Observers>(*known) : std::make_shared<Observers>();
    list->push_back(observer);
    known = std::move(list);
    return observer->id;
  }

  void removeObserver(ObserverId id) override {
    std::shared_ptr<const Observers> before;  // outlives the lock: a handler may own anything
    MutexLock lock(mutex_);
    for (auto& [name, known] : observers_) {
      auto found = std::find_if(known->begin(), known->end(),
                                [id](const auto& observer) { return observer->id == id; });
      if (found == known->end()) continue;
      (*found)->active = false;
      auto list = std::make_shared<Observers>(*known);
      list->erase(list->begin() + (found - known->begin()));
      before = std::exchange(known, std::move(list));
      return;
    }
  }

  void post(const std::string& name, const Dictionary& userInfo) override {
    Notification notification{name, userInfo};
    const auto observers = observersOf(name);
    if (!observers) return;
    for (const auto& observer : *observers) {
      if (observer->active && observer->handler) observer->handler(notification);
    }
  }

 private:
  std::shared_ptr<const Observers> observersOf(const std::string& name) {
    MutexLock lock(mutex_);
    auto found = observers_.find(name);
    return found == observers_.end() ? nullptr : found->second;
  }

  Mutex mutex_;
  ObserverId lastId_ GUARDED_BY(mutex_) = 0;
  std::map<std::string, std::shared_ptr<const Observers>> observers_ GUARDED_BY(mutex_);
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
