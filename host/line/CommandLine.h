/// The command line: which command with which options, help and usage errors.
#pragma once

#include <string>
#include <vector>

#include "ExitStatus.h"

namespace umsctl {

/// Runs what the arguments (without the program's name) ask for. Throws `Refusal` where a command cannot go
/// on.
ExitStatus runCommandLine(const std::vector<std::string>& arguments);

}  // namespace umsctl
