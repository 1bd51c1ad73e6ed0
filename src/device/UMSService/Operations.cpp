#include "Operations.h"

#include "DeviceToDevice.h"
#include "MediaCopy.h"
#include "MediaDelete.h"
#include "MediaSync.h"
#include "PodcastCopy.h"
#include "PodcastDelete.h"
#include "PodcastDeviceToDevice.h"
#include "PodcastSync.h"

namespace umsservice {

bool Operations::doCopyMediaContents(const _serviceinfo& serviceInfo) {
  return MediaCopy(media_, serviceInfo, MediaCopy::Direction::DeviceToMac).run();
}

bool Operations::doCopyMediaContentsForAnyMediaType(const _serviceinfo& serviceInfo) {
  return MediaCopy(media_, serviceInfo, MediaCopy::Direction::MacToDevice).run();
}

bool Operations::doDeleteMediaContents(const _serviceinfo& serviceInfo) {
  return MediaDelete(media_, serviceInfo).run();
}

bool Operations::doSyncMediaContents(const _serviceinfo& serviceInfo) {
  return MediaSync(media_, serviceInfo).run();
}

bool Operations::doDeviceToDevcieContents(const _serviceinfo& serviceInfo) {
  return DeviceToDevice(media_, serviceInfo).run();
}

bool Operations::doDeletePodcastContents(const _serviceinfo& serviceInfo) {
  return PodcastDelete(podcasts_, serviceInfo).run();
}

bool Operations::doCopyPodcastContents(const _serviceinfo& serviceInfo) {
  return PodcastCopy(podcasts_, serviceInfo).run();
}

bool Operations::doSyncPodcastContents(const _serviceinfo& serviceInfo) {
  return PodcastSync(podcasts_, serviceInfo).run();
}

uint32_t Operations::syncUmsPodcastFile(uint32_t serviceID, uint32_t index, uint32_t mediaType,
                                        const MaybeDictionary& podcastInfo, OVUmsDeviceNotifier& notifier) {
  _serviceinfo request;
  request.serviceID = serviceID;
  request.command = kCommandSyncContents;
  request.mediaType = mediaType;
  request.contents = Array{podcastInfo ? Value(*podcastInfo) : Value()};
  PodcastRun run(podcasts_, request, notifier);
  return PodcastFallOver(podcasts_, run, request).place(run.channels().front(), index);
}

bool Operations::doDeviceToDevicePodcast(const _serviceinfo& serviceInfo) {
  return PodcastDeviceToDevice(podcasts_, serviceInfo).run();
}

}  // namespace umsservice
