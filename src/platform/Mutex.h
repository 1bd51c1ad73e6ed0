/// Locks that clang's thread-safety analysis understands, as thin wrappers over the standard ones: the
/// standard library's own lock types carry no annotations, so `GUARDED_BY` on them would refuse correct code.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define UMS_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define UMS_THREAD_ANNOTATION(x)
#endif

#define CAPABILITY(x) UMS_THREAD_ANNOTATION(capability(x))
#define SCOPED_CAPABILITY UMS_THREAD_ANNOTATION(scoped_lockable)
#define GUARDED_BY(x) UMS_THREAD_ANNOTATION(guarded_by(x))
#define REQUIRES(...) UMS_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) UMS_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) UMS_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define RELEASE(...) UMS_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define NO_THREAD_SAFETY_ANALYSIS UMS_THREAD_ANNOTATION(no_thread_safety_analysis)

namespace umsservice {

class CAPABILITY("mutex") Mutex {
 public:
  void lock() ACQUIRE() { mutex_.lock(); }
  bool tryLock() TRY_ACQUIRE(true) { return mutex_.try_lock(); }
  void unlock() RELEASE() { mutex_.unlock(); }

 private:
  friend class Condition;
  std::mutex mutex_;
};

/// Holds a lock for a block.
template <typename M>
class SCOPED_CAPABILITY ScopedLock {
 public:
  explicit ScopedLock(M& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~ScopedLock() RELEASE() { mutex_.unlock(); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  M& mutex_;
};

using MutexLock = ScopedLock<Mutex>;

/// A condition to wait on while holding a `Mutex`.
class Condition {
 public:
  /// Wakes at a signal, and now and then without one.
  void wait(Mutex& mutex) REQUIRES(mutex) {
    std::unique_lock<std::mutex> held(mutex.mutex_, std::adopt_lock);
    condition_.wait(held);
    held.release();
  }
  /// The same for no longer than that; false when the time is over.
  bool waitFor(Mutex& mutex, std::chrono::milliseconds time) REQUIRES(mutex) {
    std::unique_lock<std::mutex> held(mutex.mutex_, std::adopt_lock);
    const auto end = condition_.wait_for(held, time);
    held.release();
    return end == std::cv_status::no_timeout;
  }
  /// Wakes everyone who waits: each looks for itself whether it was meant.
  void broadcast() { condition_.notify_all(); }

 private:
  std::condition_variable condition_;
};

}  // namespace umsservice
