/// Reading back what was written and comparing it with where it came from.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "Errand.h"
#include "Interrupt.h"
#include "Outcomes.h"
#include "ProgressDisplay.h"

namespace umsctl {

/// How a comparison ended. Only files that were read to their ends, byte for byte the same, are `Same`.
struct Comparison {
  enum class End { Same, Different, Unreadable, Stopped };

  End end = End::Same;
  std::string cause;  ///< in words; empty for `Same` and `Stopped`
};

/// `goesOn` is told the bytes so far and asked after each block; false stops.
Comparison compareFiles(umsservice::FileSystem& files, const std::string& original, const std::string& copy,
                        const std::function<bool(uint64_t)>& goesOn);

/// Has the system forget what it knows of a file's bytes, so that they are read from the device again, as far
/// as the system lets itself be told. After the volume was flushed: what is not on the device yet is kept. A
/// file that cannot be opened is left alone.
void forgetCached(const std::string& path);

/// Compares every item that is done with its source, and counts those that differ as failed. An interrupt
/// ends it early; what was not compared stays done, as does a copy that a later item of the list has
/// replaced.
class Verification {
 public:
  Verification(const Errand& errand, Outcomes& outcomes, ProgressDisplay& display, Interrupt& interrupt)
      : errand_(errand), outcomes_(outcomes), display_(display), interrupt_(interrupt) {}

  /// Files that came along with an item and are compared too: original and copy; empty for none.
  using Companion = std::function<std::pair<std::string, std::string>(const umsservice::ItemOutcome&)>;

  /// Gives the causes of those that differ, by their place in the list.
  std::map<size_t, std::string> run(const Companion& companion = nullptr);

 private:
  Comparison compared(const umsservice::ItemOutcome& outcome, const Companion& companion);
  Comparison comparedPair(const std::string& original, const std::string& copy);

  const Errand& errand_;
  Outcomes& outcomes_;
  ProgressDisplay& display_;
  Interrupt& interrupt_;
};

}  // namespace umsctl
