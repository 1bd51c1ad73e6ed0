/// umsctl df: the room on each volume.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct DfOptions {
  VolumeFolders volumes;
  bool inBytes = false;  ///< plain numbers, for scripts
};

ExitStatus df(const DfOptions& options, const Errand& errand);

}  // namespace umsctl
