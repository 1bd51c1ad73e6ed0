/// Where the service's own worker stands, for the thread that ends the service and waits for it.
///
/// The worker says when it has to wait for a section. The host may be holding that section just while it lets
/// go of the service: waiting for such a worker would be waiting for oneself.
#pragma once

#include <chrono>
#include <mutex>
#include <thread>

#include "Mutex.h"
#include "umsservice/SynchronizedObject.h"

namespace umsservice {

class WorkerEnd {
 public:
  /// The calling thread is the worker from now on.
  void begun() {
    MutexLock lock(mutex_);
    worker_ = std::this_thread::get_id();
  }
  /// The worker has left its loop.
  void reached() { set(&WorkerEnd::isReached_, true); }

  /// Takes a section that the host may hold; on other threads than the worker, which nobody waits for, no
  /// more than that.
  [[nodiscard]] std::unique_lock<SynchronizedObject> enter(SynchronizedObject& section) {
    set(&WorkerEnd::waitsForSection_, true);
    std::unique_lock<SynchronizedObject> entered(section);
    set(&WorkerEnd::waitsForSection_, false);
    return entered;
  }

  /// Waits until the worker is at its end. False when it stands before the section of somebody who does not
  /// give it back.
  bool await() {
    constexpr std::chrono::milliseconds kPatience(500);
    MutexLock lock(mutex_);
    while (!isReached_) {
      if (!waitsForSection_) {
        changed_.wait(mutex_);
      } else if (!changed_.waitFor(mutex_, kPatience) && waitsForSection_) {
        return false;
      }
    }
    return true;
  }

 private:
  void set(bool WorkerEnd::*what, bool value) {
    MutexLock lock(mutex_);
    if (std::this_thread::get_id() != worker_) return;
    this->*what = value;
    changed_.broadcast();
  }

  Mutex mutex_;
  Condition changed_;
  std::thread::id worker_ GUARDED_BY(mutex_);
  bool isReached_ GUARDED_BY(mutex_) = false;
  bool waitsForSection_ GUARDED_BY(mutex_) = false;
};

}  // namespace umsservice
