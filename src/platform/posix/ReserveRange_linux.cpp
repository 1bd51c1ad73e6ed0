#include <fcntl.h>

#include "ReserveRange.h"

namespace umsservice {

int reserveRange(int descriptor, uint64_t position, uint64_t size) {
  return ::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(position), static_cast<off_t>(size));
}

}  // namespace umsservice
