#include "commands/PodcastPush.h"

#include "podcast/PodcastTransfer.h"

namespace umsctl {
namespace {

using umsservice::Array;
using umsservice::kMediaPodcast;

EpisodeItems itemsOf(const PodcastPushOptions& options) {
  return episodeItems(*umsservice::posixFileSystem(), options.input);
}

}  // namespace

ExitStatus podcastPush(const PodcastPushOptions& options) {
  PodcastTransfer transfer(options.volumes, itemsOf(options), options.onConflict);
  const Device::Volume& target = transfer.device().volume(options.to);
  auto queue = [&](uint32_t serviceID, const Array& channels) {
    return transfer.device().service().copyContentsMacToDevice(serviceID, channels, kMediaPodcast,
                                                               target.index);
  };
  return transfer.run(queue, {target.path});
}

ExitStatus podcastSync(const PodcastPushOptions& options) {
  PodcastTransfer transfer(options.volumes, itemsOf(options), options.onConflict);
  Device& device = transfer.device();
  const bool isStartInternal = device.volume(options.to).kind == "internal";
  auto queue = [&](uint32_t serviceID, const Array& channels) {
    return device.service().syncContents(serviceID, channels, kMediaPodcast, isStartInternal);
  };
  std::vector<std::string> flushed;
  for (const Device::Volume& volume : device.volumes()) flushed.push_back(volume.path);
  return transfer.run(queue, flushed);
}

}  // namespace umsctl
