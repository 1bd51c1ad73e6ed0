#include "bridge/CallbackScope.h"

#include <objc/objc-exception.h>

#include <algorithm>
#include <vector>

#include "bridge/Exceptions.h"
#include "bridge/Text.h"

namespace umsplugin {
namespace {

/// One for each thread that has made a callback.
class CallingThread {
 public:
  CallingThread();
  ~CallingThread();
  CallingThread(const CallingThread&) = delete;
  CallingThread& operator=(const CallingThread&) = delete;

  static CallingThread& current() {
    thread_local CallingThread thread;
    return thread;
  }

  /// Takes an exception over that leaves a callback, and whose pool has been released. Around callbacks of a
  /// worker there is no other pool.
  void keep(id exception) {
    if (isWorker_ && pools_ == 0) {
      thrown_.push_back(exception);
    } else {
      [exception autorelease];
    }
  }

  /// One that has been caught and read.
  void drop(id exception) {
    auto kept = std::find(thrown_.begin(), thrown_.end(), exception);
    if (kept == thrown_.end()) return;
    thrown_.erase(kept);
    [exception release];
  }

  class Pool {
   public:
    Pool() { ++thread_.pools_; }
    ~Pool() {
      [pool_ release];
      --thread_.pools_;
    }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

   private:
    CallingThread& thread_ = CallingThread::current();
    NSAutoreleasePool* const pool_ = [[NSAutoreleasePool alloc] init];
  };

 private:
  bool isWorker_ = false;  ///< not a thread of the host's, which the runtime knew before
  int pools_ = 0;
  std::vector<id> thrown_;  ///< on their way: what one of them passes may throw another
};

#ifdef GNUSTEP

CallingThread::CallingThread() : isWorker_(GSRegisterCurrentThread() == YES) {}

CallingThread::~CallingThread() {
  if (!isWorker_) return;
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  for (id exception : thrown_) [exception release];
  [pool release];
  GSUnregisterCurrentThread();
}

#else

/// This platform's runtime knows every thread, and pools of each; it only wants to hear once that there are
/// several.
CallingThread::CallingThread() {
  static const bool told = [] {
    if (![NSThread isMultiThreaded]) [[[[NSThread alloc] init] autorelease] start];
    return true;
  }();
  static_cast<void>(told);
}

CallingThread::~CallingThread() = default;

#endif

}  // namespace

void inPool(void (*body)(void*), void* context) {
  id exception = nil;
  {
    CallingThread::Pool pool;
    exception = UMSExceptionIn(body, context);
  }
  if (!exception) return;
  CallingThread::current().keep(exception);
  objc_exception_throw(exception);
}

umsservice::MaybeString reasonOfHandledException() {
  umsservice::MaybeString reason;
  try {
    CallingThread::Pool pool;
    id exception = UMSExceptionIn([](void*) { throw; }, nullptr);
    if ([exception isKindOfClass:[NSException class]]) {
      NSException* raised = exception;
      reason = toText([NSString stringWithFormat:@"%@ (%@)", [raised reason], [raised name]]);
    } else {
      reason = toText([exception description]);
    }
    CallingThread::current().drop(exception);
    [exception release];
  } catch (...) {
    // One of another language's, which has no words that are known here.
  }
  return reason;
}

}  // namespace umsplugin
