/// Asking for everything that was written to one volume. POSIX only knows all volumes at once, so each
/// system's own call is used.
#pragma once

namespace umsservice {

/// 0, or -1 with `errno`, for the volume that holds an open file.
int syncVolumeOf(int descriptor);

}  // namespace umsservice
