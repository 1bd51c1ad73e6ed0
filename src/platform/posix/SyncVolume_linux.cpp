#include <unistd.h>

#include "SyncVolume.h"

namespace umsservice {

int syncVolumeOf(int descriptor) {
  return ::syncfs(descriptor);
}

}  // namespace umsservice
