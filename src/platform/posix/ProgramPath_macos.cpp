#include <mach-o/dyld.h>

#include <climits>

#include "posix/ProgramPath.h"

namespace umsservice {

std::string pathOfRunningProgram() {
  char path[PATH_MAX];
  uint32_t size = sizeof path;
  return _NSGetExecutablePath(path, &size) == 0 ? std::string(path) : std::string();
}

}  // namespace umsservice
