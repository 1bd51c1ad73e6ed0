#include <unistd.h>

#include <climits>

#include "posix/ProgramPath.h"

namespace umsservice {

std::string pathOfRunningProgram() {
  char path[PATH_MAX];
  ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, static_cast<size_t>(length)) : std::string();
}

}  // namespace umsservice
