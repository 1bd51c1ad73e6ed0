/// umsctl pull: files from a device into one folder of the computer.
#pragma once

#include "ConflictPolicy.h"
#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct PullOptions {
  VolumeFolders volumes;
  std::string into;
  OnConflict onConflict = OnConflict::NotSaid;
  std::vector<std::string> files;
};

ExitStatus pull(const PullOptions& options);

}  // namespace umsctl
