/// umsctl tree: the folders and files of a device, hidden ones left out.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct TreeOptions {
  VolumeFolders volumes;
  std::optional<std::string> folder;  ///< instead of the volumes
};

ExitStatus tree(const TreeOptions& options, const Errand& errand);

}  // namespace umsctl
