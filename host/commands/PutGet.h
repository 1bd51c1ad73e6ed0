/// umsctl put and umsctl get: one file to, or from, a path of its own on a device.
#pragma once

#include "ConflictPolicy.h"
#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct DirectOptions {
  VolumeFolders volumes;
  OnConflict onConflict = OnConflict::NotSaid;
  std::string from;
  std::string to;  ///< an existing folder takes the file under its own name
};

ExitStatus put(const DirectOptions& options);
ExitStatus get(const DirectOptions& options);

}  // namespace umsctl
