/// umsctl push: media from the computer to a device.
#pragma once

#include "ConflictPolicy.h"
#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct PushOptions {
  VolumeFolders volumes;
  uint32_t to = 0;  ///< index of the volume
  OnConflict onConflict = OnConflict::NotSaid;
  std::vector<std::string> files;
};

ExitStatus push(const PushOptions& options);

}  // namespace umsctl
