/// Named notifications with a dictionary: the only way in which the service speaks to its host.
///
/// Threading: `post` runs every handler on the calling thread before it returns. Handlers may post, add and
/// remove observers, call the service and release it. All calls are safe from any thread.
/// Lifetime: an observer that was removed is not called by posts that begin later; a post that is under way
/// on another thread may still be inside its handler.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "umsservice/Export.h"
#include "umsservice/Value.h"

namespace umsservice {

/// One posted notification. Names and keys stand in `Notifications.h`.
struct Notification {
  std::string name;
  Dictionary userInfo;
};

class UMS_EXPORT NotificationCenter {
 public:
  using Handler = std::function<void(const Notification&)>;
  /// Names one registration; never reused within a center.
  using ObserverId = uint64_t;

  virtual ~NotificationCenter() = default;
  /// Observers of a name are called in the order in which they were added.
  virtual ObserverId addObserver(const std::string& name, Handler handler) = 0;
  /// An unknown identifier does nothing.
  virtual void removeObserver(ObserverId observer) = 0;
  virtual void post(const std::string& name, const Dictionary& userInfo) = 0;
};

/// A new center of its own.
UMS_EXPORT std::shared_ptr<NotificationCenter> makeNotificationCenter();

/// The process-wide center; `Environment::forRunningSystem` uses it.
UMS_EXPORT std::shared_ptr<NotificationCenter> defaultNotificationCenter();

}  // namespace umsservice
