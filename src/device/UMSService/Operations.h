/// The long operations of one service: each call makes the operation's object and runs it.
#pragma once

#include "LongOperations.h"
#include "MediaRun.h"
#include "PodcastRun.h"

namespace umsservice {

class Operations final : public LongOperations {
 public:
  Operations(MediaTools& media, PodcastTools& podcasts) : media_(media), podcasts_(podcasts) {}

  bool doDeleteMediaContents(const _serviceinfo& serviceInfo) override;
  bool doDeletePodcastContents(const _serviceinfo& serviceInfo) override;
  bool doCopyMediaContents(const _serviceinfo& serviceInfo) override;
  bool doCopyMediaContentsForAnyMediaType(const _serviceinfo& serviceInfo) override;
  bool doCopyPodcastContents(const _serviceinfo& serviceInfo) override;
  bool doSyncMediaContents(const _serviceinfo& serviceInfo) override;
  bool doSyncPodcastContents(const _serviceinfo& serviceInfo) override;
  bool doDeviceToDevcieContents(const _serviceinfo& serviceInfo) override;
  bool doDeviceToDevicePodcast(const _serviceinfo& serviceInfo) override;

  /// One channel of a sync on the volumes behind the given one, counted on a notifier of the caller's.
  uint32_t syncUmsPodcastFile(uint32_t serviceID, uint32_t index, uint32_t mediaType,
                              const MaybeDictionary& podcastInfo, OVUmsDeviceNotifier& notifier);

 private:
  MediaTools& media_;
  PodcastTools& podcasts_;
};

}  // namespace umsservice
