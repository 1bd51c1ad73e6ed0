/// umsctl sync: media from the computer to whichever volume of a device has room.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct SyncOptions {
  VolumeFolders volumes;
  uint32_t first = 0;  ///< index of the volume to begin with
  std::vector<std::string> files;
};

ExitStatus syncMedia(const SyncOptions& options, const Errand& errand);

}  // namespace umsctl
