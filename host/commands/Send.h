/// umsctl send: media from one device to another, without a stop on the computer.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct SendOptions {
  VolumeFolders from;
  VolumeFolders volumes;  ///< of the device that receives
  uint32_t to = 0;        ///< index of the receiving volume
  std::vector<std::string> files;
};

ExitStatus sendMedia(const SendOptions& options, const Errand& errand);

}  // namespace umsctl
