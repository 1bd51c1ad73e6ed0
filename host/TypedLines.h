/// What a person types at a question. An interrupt ends the wait. Used by one thread at a time.
#pragma once

#include <optional>
#include <string>

#include "Interrupt.h"

namespace umsctl {

class TypedLines {
 public:
  explicit TypedLines(Interrupt& interrupt) : interrupt_(interrupt) {}

  /// One line without its end, or nothing when no more can come: the input has ended, or there was an
  /// interrupt, whose action is done then.
  std::optional<std::string> next();

 private:
  Interrupt& interrupt_;
  std::string typed_;  ///< what was read and not yet used
};

}  // namespace umsctl
