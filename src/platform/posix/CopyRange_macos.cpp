#include <cerrno>

#include "CopyRange.h"

namespace umsservice {

/// This system clones whole files only, which leaves nothing to account for on the way.
ssize_t copyRange(int, int, size_t) {
  errno = ENOSYS;
  return -1;
}

}  // namespace umsservice
