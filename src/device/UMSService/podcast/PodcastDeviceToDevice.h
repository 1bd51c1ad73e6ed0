/// The queued copy of podcasts from this device to another one.
///
/// Runs on the source device's worker. The episodes are written by the destination device's own service,
/// which the host's delegate hands out by location; this side keeps the notifier, the indexes on the
/// destination, the counts, the overwrite question and the cancellation.
#pragma once

#include "PodcastRun.h"
#include "umsservice/OVFileService.h"

namespace umsservice {

class PodcastDeviceToDevice {
 public:
  PodcastDeviceToDevice(PodcastTools& tools, const _serviceinfo& request)
      : tools_(tools), context_(tools.context), request_(request) {}

  /// The result of the last folder creation or index write; true when there was none.
  bool run();

 private:
  using Next = PodcastRun::Next;

  /// False ends the run.
  bool sendChannel(PodcastRun& run, const PodcastChannel& channel);
  Next sendEpisode(PodcastRun& run, const PodcastChannel& channel, const ChannelPlace& place,
                   ChannelIndex& index, const Value& element);
  FileOutcome write(PodcastRun& run, const ChannelPlace& place, const PodcastEpisode& episode);
  std::optional<Next> settleConflict(PodcastRun& run, const ChannelPlace& place,
                                     const PodcastEpisode& episode, FileOutcome& outcome);
  Next conclude(PodcastRun& run, const PodcastChannel& channel, const ChannelPlace& place,
                ChannelIndex& index, PodcastEpisode& episode, const FileOutcome& outcome);
  uint64_t observedSize(const std::string& source) const;

  PodcastTools& tools_;
  const ServiceContext& context_;
  const _serviceinfo& request_;
  std::shared_ptr<QDDeviceConfirmDelegate> delegate_;
  std::shared_ptr<OVFileService> destination_;
  std::shared_ptr<TransferCallback> progress_;
  bool status_ = true;
};

}  // namespace umsservice
