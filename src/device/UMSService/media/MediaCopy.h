/// The two queued copies of music, images and video: from the device into one folder of the computer, and
/// from the computer to one device volume, each file into the default folder of its own media type.
///
/// One object for one request; runs on the worker thread. A failed file never ends the run; a cancel, a
/// shutdown and a full volume do.
#pragma once

#include "MediaRun.h"

namespace umsservice {

class MediaCopy {
 public:
  enum class Direction { DeviceToMac, MacToDevice };

  MediaCopy(MediaTools& tools, const _serviceinfo& request, Direction direction);

  /// The result of the last file step.
  bool run();

 private:
  using Next = MediaRun::Next;

  bool prepare(MediaRun& run);
  Next copyItem(MediaRun& run, MediaItem item);
  std::optional<Next> resolveTarget(MediaRun& run, MediaItem& item);
  std::optional<Next> chooseFolder(MediaRun& run, MediaItem& item);
  Next conclude(MediaRun& run, const MediaItem& item, const FileOutcome& outcome);

  MediaTools& tools_;
  const ServiceContext& context_;
  const _serviceinfo& request_;
  const Direction direction_;
  const char* const method_;
  MaybeString volumePath_;  ///< of the target volume
  OverwriteConversation conversation_;
};

}  // namespace umsservice
