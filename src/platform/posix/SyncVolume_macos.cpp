#include <unistd.h>

#include "SyncVolume.h"

namespace umsservice {

/// This system syncs all volumes or none.
int syncVolumeOf(int) {
  ::sync();
  return 0;
}

}  // namespace umsservice
