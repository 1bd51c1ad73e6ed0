/// One channel of a sync, put onto one volume: its folder, its episodes, its index.
///
/// Serves the volume that a sync starts on and each further volume that a channel is tried on; what differs
/// between the two is a `Manner`. Every episode that was tried is entered into the index and counted as done,
/// whatever became of its file: hosts take a sync for a promise to come back. The observer is told the truth.
#pragma once

#include "PodcastRun.h"

namespace umsservice {

class PodcastChannelSync {
 public:
  struct Manner {
    const char* method;
    PodcastRun::Refusals refusals;
    bool infoFromTarget;  ///< whose tags the item results carry: the copy's or the source's
  };

  enum class End { Written, NotWritten, NoFolder, Released };

  PodcastChannelSync(PodcastTools& tools, PodcastRun& run, uint32_t serviceID, const Manner& manner)
      : tools_(tools), run_(run), serviceID_(serviceID), manner_(manner) {}

  /// `folder` is made before the first episode. Episodes that a cancel or a release leaves over are not told
  /// of.
  End sync(const PodcastChannel& channel, const ChannelPlace& place, const std::string& folder);

 private:
  using Next = PodcastRun::Next;

  Next syncEpisode(const ChannelPlace& place, ChannelIndex& index, const Value& element);
  std::optional<Next> settleConflict(const PodcastEpisode& episode, FileOutcome& outcome);
  Next enter(const ChannelPlace& place, ChannelIndex& index, PodcastEpisode& episode,
             const FileOutcome& outcome);
  static EpisodeLedger::Ending endingOf(const PodcastEpisode& episode, const FileOutcome& outcome);

  PodcastTools& tools_;
  PodcastRun& run_;
  const uint32_t serviceID_;
  const Manner& manner_;
};

}  // namespace umsservice
