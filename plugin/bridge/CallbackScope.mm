#include "bridge/CallbackScope.h"

namespace umsplugin {
namespace {

#ifdef GNUSTEP

/// One for each thread that has made a callback.
class ThreadAnnouncement {
 public:
  ThreadAnnouncement() : ours_(GSRegisterCurrentThread() == YES) {}
  ~ThreadAnnouncement() {
    if (ours_) GSUnregisterCurrentThread();
  }
  ThreadAnnouncement(const ThreadAnnouncement&) = delete;
  ThreadAnnouncement& operator=(const ThreadAnnouncement&) = delete;

 private:
  const bool ours_;  ///< not a thread of the host's, which the runtime knew before
};

#else

/// This platform's runtime knows every thread; it only wants to hear once that there are several.
class ThreadAnnouncement {
 public:
  ThreadAnnouncement() {
    static const bool told = [] {
      if (![NSThread isMultiThreaded]) [[[[NSThread alloc] init] autorelease] start];
      return true;
    }();
    static_cast<void>(told);
  }
};

#endif

}  // namespace

void announceThread() {
  thread_local const ThreadAnnouncement announcement;
  static_cast<void>(announcement);
}

}  // namespace umsplugin
