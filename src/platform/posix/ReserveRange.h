/// Room on a volume for bytes that are still to be written. POSIX has only a call that also makes the file
/// longer, so each system's own one is used.
#pragma once

#include <cstdint>

namespace umsservice {

/// Sets room for `size` bytes from `position` on aside and leaves the file as long as it is. 0, or -1 with
/// `errno` where the system or the file system cannot.
int reserveRange(int descriptor, uint64_t position, uint64_t size);

}  // namespace umsservice
