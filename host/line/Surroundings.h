/// What stands around every command: the exit statuses that scripts rely on, and the variables of the
/// environment that are read.
///
/// Written once: --help, the man pages and the reference of the commands are made from these tables.
/// Constant; safe from any thread.
#pragma once

#include <string>
#include <vector>

namespace umsctl {

/// A sentence, and whom it concerns.
struct Remark {
  /// Every command where it is empty; else commands ("ls", "podcast rm") or options ("--yes"), of which a
  /// command is one or has one.
  std::vector<std::string> of;
  std::string words;
};

struct Surrounding {
  std::string name;   ///< the number of a status, the name of a variable
  std::string brief;  ///< in two or three words, for --help
  std::vector<Remark> remarks;
};

/// By their numbers; see ExitStatus.h.
const std::vector<Surrounding>& exitStatuses();

/// Variables of the environment.
const std::vector<Surrounding>& environmentVariables();

/// What is worth knowing about a variable that is not read.
extern const char* const kEnvironmentEnding;

}  // namespace umsctl
