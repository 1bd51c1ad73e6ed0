/// The queued delete of music, images and video: one file after another, each video with its companion.
///
/// One object for one request; runs on the worker thread. A failed delete never ends the run; a cancel and a
/// shutdown do, and what is deleted by then stays deleted.
#pragma once

#include "MediaRun.h"

namespace umsservice {

class MediaDelete {
 public:
  MediaDelete(MediaTools& tools, const _serviceinfo& request) : tools_(tools), request_(request) {}

  /// The result of the last delete.
  bool run();

 private:
  MediaRun::Next deleteItem(MediaRun& run, const MediaItem& item);

  MediaTools& tools_;
  const _serviceinfo& request_;
};

}  // namespace umsservice
