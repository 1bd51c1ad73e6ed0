/// How much memory the running system has.
#pragma once

#include <cstdint>

namespace umsservice {

/// Bytes of memory of the machine; 0 when the system does not tell.
uint64_t systemMemoryBytes();

}  // namespace umsservice
