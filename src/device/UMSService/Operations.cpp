#include "Operations.h"

#include "MediaCopy.h"

namespace umsservice {

bool Operations::doCopyMediaContents(const _serviceinfo& serviceInfo) {
  return MediaCopy(media_, serviceInfo, MediaCopy::Direction::DeviceToMac).run();
}

bool Operations::doCopyMediaContentsForAnyMediaType(const _serviceinfo& serviceInfo) {
  return MediaCopy(media_, serviceInfo, MediaCopy::Direction::MacToDevice).run();
}

// Not served yet: the host is told that the operation failed.
bool Operations::doDeleteMediaContents(const _serviceinfo&) {
  return false;
}
bool Operations::doSyncMediaContents(const _serviceinfo&) {
  return false;
}
bool Operations::doDeviceToDevcieContents(const _serviceinfo&) {
  return false;
}
bool Operations::doDeletePodcastContents(const _serviceinfo&) {
  return false;
}
bool Operations::doCopyPodcastContents(const _serviceinfo&) {
  return false;
}
bool Operations::doSyncPodcastContents(const _serviceinfo&) {
  return false;
}
bool Operations::doDeviceToDevicePodcast(const _serviceinfo&) {
  return false;
}

}  // namespace umsservice
