/// What is still owed to the host when an exception of its own leaves a piece of work: done while the
/// exception is on its way, which then goes on to whoever is there to catch it.
///
/// Stays on the stack of one thread. The work says itself that it came to its end: an exception of another
/// language leaves no trace that C++ could ask for.
#pragma once

#include <iterator>
#include <utility>

#include "RequestGuard.h"

namespace umsservice {

template <typename Owed>
class OnException {
 public:
  OnException(const ServiceContext& context, Owed owed) : context_(context), owed_(std::move(owed)) {}
  ~OnException() {
    if (isOver_) return;
    try {
      runsToItsEnd(context_, owed_);
    } catch (...) {  // from the log: two exceptions at once would end the host
    }
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

/// Each of a list, the others also when an exception ends one: what they throw themselves is only logged.
template <typename List, typename Each>
void forEachInAnyCase(const ServiceContext& context, const List& list, const Each& each) {
  for (auto one = list.begin(); one != list.end(); ++one) {
    OnException rest(context, [&] {
      for (auto other = std::next(one); other != list.end(); ++other)
        runsToItsEnd(context, [&] { each(*other); });
    });
    each(*one);
    rest.over();
  }
}

/// One thing after the other; the second also when an exception ends the first.
template <typename Work, typename Owed>
void inAnyCase(const ServiceContext& context, const Work& work, const Owed& owed) {
  OnException stopped(context, [&owed] { owed(); });
  work();
  stopped.over();
  owed();
}

}  // namespace umsservice
