/// One line on standard error's screen while the person waits for something that shows nothing by itself.
/// Work that is done soon shows no line at all. Used by one thread.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "Wishes.h"

namespace umsctl {

/// Whether a line can be drawn again and again while a command runs that is wished for like this: lines of a
/// log and objects on the same screen would tear it to pieces.
bool drawsLines(const Wishes& wishes);

/// While a device writes what it still has in memory.
inline constexpr auto kFlushing = "Waiting until the device has written everything...";

class PhaseLine {
 public:
  explicit PhaseLine(const Wishes& wishes);
  /// Leaves no line behind.
  ~PhaseLine();
  PhaseLine(const PhaseLine&) = delete;
  PhaseLine& operator=(const PhaseLine&) = delete;

  /// Cheap enough for every file. `what` as in "Reading tags"; `all` where it is known beforehand.
  void step(const char* what, size_t done, std::optional<size_t> all = {});
  /// At once, of something that shows no steps.
  void announce(const char* what);
  /// Takes the line away until the next step; before anything else is written.
  void erase();

 private:
  using Clock = std::chrono::steady_clock;

  void draw(const std::string& line);

  const bool redraws_;
  Clock::time_point next_;
  bool isDrawn_ = false;
};

}  // namespace umsctl
