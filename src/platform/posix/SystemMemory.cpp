#include "posix/SystemMemory.h"

#include <unistd.h>

namespace umsservice {

uint64_t systemMemoryBytes() {
  const long pages = ::sysconf(_SC_PHYS_PAGES);
  const long pageSize = ::sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return 0;
  return static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageSize);
}

}  // namespace umsservice
