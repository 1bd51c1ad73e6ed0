/// What is still owed to the host when an exception of its own leaves a piece of work: done while the
/// exception is on its way, which then goes on to whoever is there to catch it.
///
/// Stays on the stack of one thread. The work says itself that it came to its end: an exception of another
/// language leaves no trace that C++ could ask for.
#pragma once

#include <utility>

#include "RequestGuard.h"

namespace umsservice {

template <typename Owed>
class OnException {
 public:
  OnException(const ServiceContext& context, Owed owed) : context_(context), owed_(std::move(owed)) {}
  ~OnException() {
    if (!isOver_) runsToItsEnd(context_, owed_);
  }
  OnException(const OnException&) = delete;
  OnException& operator=(const OnException&) = delete;

  /// The work came to its end: nothing is owed.
  void over() { isOver_ = true; }

 private:
  const ServiceContext& context_;
  const Owed owed_;
  bool isOver_ = false;
};

/// One thing after the other; the second also when an exception ends the first.
template <typename Work, typename Owed>
void inAnyCase(const ServiceContext& context, const Work& work, const Owed& owed) {
  OnException stopped(context, [&owed] { owed(); });
  work();
  stopped.over();
  owed();
}

}  // namespace umsservice
