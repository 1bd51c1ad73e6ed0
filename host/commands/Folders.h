/// umsctl mkdir and umsctl rmdir: single folders of a device.
#pragma once

#include <string>

#include "Errand.h"
#include "ExitStatus.h"

namespace umsctl {

/// Makes a folder and those above it. One that is there already is fine.
ExitStatus makeFolder(const std::string& folder, const Errand& errand);

struct RemoveFolderOptions {
  std::string folder;
  bool recursive = false;  ///< with everything in it; otherwise only an empty folder goes
};

ExitStatus removeFolder(const RemoveFolderOptions& options, const Errand& errand);

}  // namespace umsctl
