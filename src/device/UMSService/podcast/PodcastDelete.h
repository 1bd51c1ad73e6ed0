/// The queued delete of podcasts: whole channels, or single episodes, which leave the channel's index too. A
/// channel that loses its last episode loses its folder.
///
/// One object for one request; runs on the worker thread.
#pragma once

#include "PodcastRun.h"

namespace umsservice {

class PodcastDelete {
 public:
  PodcastDelete(PodcastTools& tools, const _serviceinfo& request)
      : tools_(tools), context_(tools.context), request_(request) {}

  /// The result of the last index write or whole-channel delete; true when the last channel's folder went
  /// away, false when there was nothing of the kind.
  bool run();

 private:
  using Next = PodcastRun::Next;
  /// A channel whose episodes are deleted one by one.
  struct Shrinking {
    const PodcastChannel& channel;
    const ChannelPlace& place;
    ChannelIndex index;
    bool folderGone = false;
    bool hasShrunk = false;  ///< whether an episode has left the index
  };

  /// False ends the run.
  bool deleteChannel(PodcastRun& run, const PodcastChannel& channel);
  bool deleteWholeChannel(PodcastRun& run, const PodcastChannel& channel, const ChannelPlace& place);
  Next deleteEpisode(PodcastRun& run, Shrinking& channel, const Value& element);
  MaybeString fileOf(const Dictionary& episode, const ChannelPlace& place) const;
  MaybeString cleaned(const MaybeString& path) const;
  uint64_t sizeOf(const std::string& file) const;
  Next deleted(PodcastRun& run, Shrinking& channel, const Dictionary& episode, const std::string& file,
               uint64_t bytes);
  void removeFolder(PodcastRun& run, Shrinking& channel);
  bool mayRemoveFolder(const Shrinking& channel) const;
  static void show(PodcastRun& run, const Shrinking& channel, const std::string& file,
                   const Dictionary& podcast);

  PodcastTools& tools_;
  const ServiceContext& context_;
  const _serviceinfo& request_;
  bool status_ = false;
};

}  // namespace umsservice
