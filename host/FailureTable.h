/// What failed, told at the end of a run: name, number, cause and what to do about it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace umsctl {

struct Failure {
  std::string name;  ///< as the person wrote it
  uint32_t number = 0;
  std::string cause;
  std::string advice;
};

/// On standard error: at a terminal a table; elsewhere one line each, "umsctl: NAME: cause", as programs and
/// logs take them.
void tellFailures(const std::vector<Failure>& failures);

}  // namespace umsctl
