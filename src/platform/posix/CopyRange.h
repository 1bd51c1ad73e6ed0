/// Copying between two open files inside the system. POSIX has no such call, so each system's own one is
/// used.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace umsservice {

/// Copies at most `size` bytes between the current positions of two descriptors. The number of bytes, 0 at
/// the end of the source, or -1 with `errno` where the system or the two file systems cannot.
ssize_t copyRange(int source, int destination, size_t size);

}  // namespace umsservice
