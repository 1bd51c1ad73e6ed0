/// umsctl push: media from the computer to a device.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct PushOptions {
  VolumeFolders volumes;
  uint32_t to = 0;  ///< index of the volume
  std::vector<std::string> files;
};

ExitStatus push(const PushOptions& options, const Errand& errand);

}  // namespace umsctl
