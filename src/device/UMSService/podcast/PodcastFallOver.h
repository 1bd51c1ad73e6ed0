/// One channel of a sync that does not fit onto the volume it was meant for, tried on the volumes behind it.
///
/// Made for one run; runs on the worker thread. Which volume's path a candidate uses is a matter of the
/// environment's placement rules.
#pragma once

#include "PodcastChannelSync.h"

namespace umsservice {

class PodcastFallOver {
 public:
  PodcastFallOver(PodcastTools& tools, PodcastRun& run, const _serviceinfo& request)
      : tools_(tools), context_(tools.context), run_(run), request_(request) {}

  /// The number of the last file step on the volumes behind `failedIndex`; 0 when all went well, and also
  /// when the channel fits nowhere. Tells the observer of the channel's episodes; counts on the notifier only
  /// what was tried.
  uint32_t place(const PodcastChannel& channel, uint32_t failedIndex);
  /// Whether an index was written for the last channel.
  bool wasWritten() const { return written_; }
  /// Whether a folder was made or an index written for the last channel, or at least tried.
  bool wasTried() const { return tried_; }

 private:
  enum class Step { NextVolume, Finished };

  bool isPossible(const PodcastChannel& channel, uint32_t failedIndex) const;
  void rememberPaths(const PodcastChannel& channel);
  void restorePaths(const PodcastChannel& channel) const;
  Step tryVolume(const PodcastChannel& channel, uint32_t failedIndex, uint32_t index);

  PodcastTools& tools_;
  const ServiceContext& context_;
  PodcastRun& run_;
  const _serviceinfo& request_;
  std::vector<Value> paths_;  ///< of the channel's episodes, as the host gave them
  bool written_ = false;
  bool tried_ = false;
};

}  // namespace umsservice
