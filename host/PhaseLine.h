/// One line on standard error's screen while the person waits for something that shows nothing by itself.
/// Work that is done soon shows no line at all. Used by one thread.
#pragma once

#include <chrono>
#include <string>

namespace umsctl {

class PhaseLine {
 public:
  PhaseLine();
  /// Leaves no line behind.
  ~PhaseLine();
  PhaseLine(const PhaseLine&) = delete;
  PhaseLine& operator=(const PhaseLine&) = delete;

  /// Cheap enough for every file. `what` as in "Reading tags".
  void step(const char* what, size_t done, size_t all);
  /// Takes the line away until the next step; before anything else is written.
  void erase();

 private:
  using Clock = std::chrono::steady_clock;

  const bool redraws_;
  Clock::time_point next_;
  bool isDrawn_ = false;
};

}  // namespace umsctl
