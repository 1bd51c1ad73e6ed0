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
  bool wasTried = true;  ///< otherwise something else ended the run before
};

/// "0x23000005", as people are shown an error number.
std::string numberText(uint32_t number);

/// One line on standard error, "umsctl: NAME: CAUSE (NUMBER); ADVICE", as programs and logs take it.
void tellFailure(const Failure& failure);

/// On standard error: at a terminal a table; elsewhere one line each.
void tellFailures(const std::vector<Failure>& failures);

}  // namespace umsctl
