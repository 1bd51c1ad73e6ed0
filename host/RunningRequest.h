/// One request of a service from the moment it is queued to its end.
///
/// Listens to the request's notifications on the worker thread; the thread that made it waits for the end.
#pragma once

#include <functional>
#include <memory>

#include "Device.h"
#include "ProgressDisplay.h"

namespace umsctl {

class RunningRequest {
 public:
  /// The display hears every notification of the request; it must outlive the device's service.
  RunningRequest(Device& device, ProgressDisplay& display);
  ~RunningRequest();
  RunningRequest(const RunningRequest&) = delete;
  RunningRequest& operator=(const RunningRequest&) = delete;

  /// The number to queue the request under; no other request of this program has it.
  uint32_t serviceID() const { return serviceID_; }
  /// Ends the wait. Several kinds of requests have no result; the last of their items is the end. May be
  /// called from any thread, even when the request is gone.
  std::function<void()> ender() const;
  void waitForEnd();

 private:
  struct End;

  umsservice::NotificationCenter& center_;
  const uint32_t serviceID_;
  const std::shared_ptr<End> end_;  ///< shared with handlers: one may just be leaving when the wait is over
  std::vector<umsservice::NotificationCenter::ObserverId> observers_;
};

}  // namespace umsctl
