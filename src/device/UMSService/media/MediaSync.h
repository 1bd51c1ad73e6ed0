/// The queued sync of music, images and video: every listed file onto the device, choosing the volume.
///
/// A run starts on the internal memory or on the card, in the default folder of the request's media type. A
/// file that cannot be placed there is tried on each other volume (`MediaFallOver`). Nothing on the device is
/// compared with the list, nothing is removed, companions stay behind.
/// One object for one request; runs on the worker thread.
#pragma once

#include "MediaFallOver.h"

namespace umsservice {

class MediaSync {
 public:
  MediaSync(MediaTools& tools, const _serviceinfo& request)
      : tools_(tools), context_(tools.context), request_(request) {}

  /// The result of the last copy on the first volume.
  bool run();

 private:
  using Next = MediaRun::Next;

  bool chooseVolume(MediaRun& run);
  bool prepareFolder(MediaRun& run);
  Next syncItem(MediaRun& run, MediaItem item);
  std::optional<Next> settleConflict(MediaRun& run, const MediaItem& item, FileOutcome& outcome);
  Next tryOtherVolumes(MediaRun& run, const MediaItem& item, const FileOutcome& first);
  void concludeFallOver(MediaRun& run, const MediaItem& item, uint32_t answer);
  static void tellFallOver(MediaRun& run, const MediaItem& item, const MediaFallOver& fallOver,
                           const FileOutcome& outcome);

  MediaTools& tools_;
  const ServiceContext& context_;
  const _serviceinfo& request_;
  uint32_t storageIndex_ = 0;  ///< of the first volume
  std::string volumePath_;
  std::string folder_;  ///< full path
  OverwriteConversation conversation_;
  bool fullVolumeAnnounced_ = false;
};

}  // namespace umsservice
