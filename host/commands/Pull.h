/// umsctl pull: files from a device into one folder of the computer.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct PullOptions {
  VolumeFolders volumes;
  std::string into;
  std::vector<std::string> files;
};

ExitStatus pull(const PullOptions& options, const Errand& errand);

}  // namespace umsctl
