/// umsctl podcast send: channels from one device to another, without a stop on the computer.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct PodcastSendOptions {
  VolumeFolders from;
  uint32_t on = 0;                    ///< index of the volume that sends
  VolumeFolders volumes;              ///< of the device that receives
  uint32_t to = 0;                    ///< index of the volume that receives
  std::vector<std::string> channels;  ///< titles or folders
};

ExitStatus podcastSend(const PodcastSendOptions& options, const Errand& errand);

}  // namespace umsctl
