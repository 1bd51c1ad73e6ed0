/// The queued copy of podcasts: the episodes of one or more channels into a folder for each channel on one
/// volume, and each channel's index kept up to date.
///
/// One object for one request; runs on the worker thread. A failed episode never ends a channel; a cancel, a
/// shutdown and a full volume do. The index is written whichever way the episodes ended.
#pragma once

#include "PodcastRun.h"

namespace umsservice {

class PodcastCopy {
 public:
  PodcastCopy(PodcastTools& tools, const _serviceinfo& request)
      : tools_(tools), context_(tools.context), request_(request) {}

  /// The result of the last folder creation or index write; false when there was none.
  bool run();

 private:
  using Next = PodcastRun::Next;

  /// False ends the run.
  bool copyChannel(PodcastRun& run, const PodcastChannel& channel);
  Next copyEpisode(PodcastRun& run, const PodcastChannel& channel, const ChannelPlace& place,
                   ChannelIndex& index, const Value& element);
  Next conclude(PodcastRun& run, const PodcastChannel& channel, const ChannelPlace& place,
                ChannelIndex& index, const PodcastEpisode& episode, const FileOutcome& outcome);

  PodcastTools& tools_;
  const ServiceContext& context_;
  const _serviceinfo& request_;
  bool status_ = false;
};

}  // namespace umsservice
