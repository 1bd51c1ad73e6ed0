/// Where the running program lies; each system has its own way to ask.
#pragma once

#include <string>

namespace umsservice {

/// Full path of the program; empty when the system does not tell.
std::string pathOfRunningProgram();

}  // namespace umsservice
