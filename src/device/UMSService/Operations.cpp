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

bool Operations::doDeviceToDevicePodcast(const _serviceinfo& serviceInfo) {
  return PodcastDeviceToDevice(podcasts_, serviceInfo).run();
}

}  // namespace umsservice
