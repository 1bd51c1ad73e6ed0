/// umsctl podcast push and sync: episodes from the computer to a device, to a volume of the person's choice
/// or to whichever has room.
#pragma once

#include "Device.h"
#include "ExitStatus.h"
#include "podcast/EpisodeItems.h"

namespace umsctl {

struct PodcastPushOptions {
  VolumeFolders volumes;
  uint32_t to = 0;  ///< index of the volume; for sync the one to begin with
  PodcastInput input;
};

ExitStatus podcastPush(const PodcastPushOptions& options, const Errand& errand);
ExitStatus podcastSync(const PodcastPushOptions& options, const Errand& errand);

}  // namespace umsctl
