/// umsctl rm: files of a device, once somebody has agreed.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct RemoveOptions {
  VolumeFolders volumes;
  bool isAgreed = false;  ///< no question is needed
  std::vector<std::string> files;
};

ExitStatus removeFiles(const RemoveOptions& options);

}  // namespace umsctl
