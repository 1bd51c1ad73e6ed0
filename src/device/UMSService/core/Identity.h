/// Who the service stands for: the device's location and model, and the host's delegate.
/// Set from the host's threads, read by the worker; safe from any thread.
#pragma once

#include <memory>

#include "Mutex.h"
#include "umsservice/QDDeviceConfirmDelegate.h"

namespace umsservice {

class Identity {
 public:
  explicit Identity(MaybeString locationID) : currentLocationID_(std::move(locationID)) {}

  MaybeString currentLocationID() const {
    MutexLock lock(mutex_);
    return currentLocationID_;
  }
  void setLocationID(MaybeString locationID) {
    MutexLock lock(mutex_);
    currentLocationID_ = std::move(locationID);
  }

  MaybeString modelName() const {
    MutexLock lock(mutex_);
    return modelName_;
  }
  void setModelName(MaybeString modelName) {
    MutexLock lock(mutex_);
    modelName_ = std::move(modelName);
  }

  /// Null when none was set or when the host has let go of it: the service does not keep it alive.
  std::shared_ptr<QDDeviceConfirmDelegate> confirmDelegate() const {
    MutexLock lock(mutex_);
    return confirmDelegate_.lock();
  }
  void setConfirmDelegate(const std::shared_ptr<QDDeviceConfirmDelegate>& delegate) {
    MutexLock lock(mutex_);
    confirmDelegate_ = delegate;
  }

 private:
  mutable Mutex mutex_;
  MaybeString currentLocationID_ GUARDED_BY(mutex_);
  MaybeString modelName_ GUARDED_BY(mutex_);
  std::weak_ptr<QDDeviceConfirmDelegate> confirmDelegate_ GUARDED_BY(mutex_);
};

}  // namespace umsservice
