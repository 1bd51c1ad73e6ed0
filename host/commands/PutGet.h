/// umsctl put and umsctl get: one file to, or from, a path of its own on a device.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct DirectOptions {
  VolumeFolders volumes;
  std::string from;
  std::string to;  ///< an existing folder takes the file under its own name
};

ExitStatus put(const DirectOptions& options, const Errand& errand);
ExitStatus get(const DirectOptions& options, const Errand& errand);

}  // namespace umsctl
