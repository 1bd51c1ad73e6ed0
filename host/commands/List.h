/// umsctl ls: the media on a device.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct ListOptions {
  VolumeFolders volumes;
  uint32_t mediaType = 0;  ///< 0 for all
  bool tags = false;
  bool isLong = false;  ///< a table, with the tags that matter for the type
};

ExitStatus listMedia(const ListOptions& options, const Errand& errand);

}  // namespace umsctl
