/// umsctl podcast rm: a channel from a device, or some of its episodes.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

struct PodcastRemoveOptions {
  VolumeFolders volumes;
  uint32_t on = 0;                    ///< index of the volume
  std::string channel;                ///< title or folder
  std::vector<std::string> episodes;  ///< titles or file names; none for the whole channel
};

ExitStatus podcastRemove(const PodcastRemoveOptions& options, const Errand& errand);

}  // namespace umsctl
