/// umsctl rm: files of a device, once somebody has agreed.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct RemoveOptions {
  VolumeFolders volumes;
  std::vector<std::string> files;
};

ExitStatus removeFiles(const RemoveOptions& options, const Errand& errand);

}  // namespace umsctl
