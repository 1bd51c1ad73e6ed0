/// The queued sync of podcasts: every channel onto the device, choosing the volume.
///
/// A run starts on the internal memory or on the card. A channel that does not fit there as a whole is tried
/// on the volumes behind it (`PodcastFallOver`). Nothing is removed from the device.
/// One object for one request; runs on the worker thread.
#pragma once

#include "PodcastFallOver.h"

namespace umsservice {

class PodcastSync {
 public:
  PodcastSync(PodcastTools& tools, const _serviceinfo& request)
      : tools_(tools), context_(tools.context), request_(request) {}

  /// The result of the last folder creation or index write; false when there was none.
  bool run();

 private:
  bool chooseVolume(PodcastRun& run);
  /// False ends the run.
  bool syncChannel(PodcastRun& run, const PodcastChannel& channel);
  void tryOtherVolumes(PodcastRun& run, const PodcastChannel& channel);

  PodcastTools& tools_;
  const ServiceContext& context_;
  const _serviceinfo& request_;
  uint32_t storageIndex_ = 0;  ///< of the first volume
  std::string volumePath_;
  MaybeString podcastFolder_;  ///< full path; nil when there is none for podcasts
  bool fullVolumeAnnounced_ = false;
  bool status_ = false;
};

}  // namespace umsservice
