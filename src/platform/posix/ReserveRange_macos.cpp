#include <cerrno>

#include "ReserveRange.h"

namespace umsservice {

/// This system lays files out as they are written.
int reserveRange(int, uint64_t, uint64_t) {
  errno = ENOSYS;
  return -1;
}

}  // namespace umsservice
