/// Which request's run told the host of its end while an exception was stopping it: whoever catches that
/// exception behind the run tells of no second end.
///
/// Known to the thread on which the run and its catcher are.
#pragma once

#include "umsservice/ServiceInfo.h"

namespace umsservice {

class StoppedRun {
 public:
  static void hasToldItsEnd(const _serviceinfo& request) { request_ = &request; }
  static bool toldTheEndOf(const _serviceinfo& request) { return request_ == &request; }
  /// Before a request: one that lay at the same address is not this one.
  static void forget() { request_ = nullptr; }

 private:
  static inline thread_local const _serviceinfo* request_ = nullptr;
};

}  // namespace umsservice
