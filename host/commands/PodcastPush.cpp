#include "commands/PodcastPush.h"

#include "podcast/PodcastTransfer.h"

namespace umsctl {
namespace {

using umsservice::Array;
using umsservice::kMediaPodcast;

/// Episodes from the computer on their way to a device.
struct Pushing {
  Pushing(const PodcastPushOptions& options, ProfileChoice choice)
      : transfer(options.volumes.profileBy(choice),
                 episodeItems(*umsservice::posixFileSystem(), links, options.input), options.onConflict),
        questions(std::make_shared<LinkedQuestions>(transfer.policy(), links)) {
    transfer.device().service().setConfirmDelegate(questions);
  }

  CleanLinks links;
  PodcastTransfer transfer;
  std::shared_ptr<LinkedQuestions> questions;
};

}  // namespace

ExitStatus podcastPush(const PodcastPushOptions& options) {
  Pushing pushing(options, ProfileChoice::Kind);
  PodcastTransfer& transfer = pushing.transfer;
  const Device::Volume& target = transfer.device().volume(options.to);
  auto queue = [&](uint32_t serviceID, const Array& channels) {
    return transfer.device().service().copyContentsMacToDevice(serviceID, channels, kMediaPodcast,
                                                               target.index);
  };
  return transfer.run(queue, {target.path});
}

ExitStatus podcastSync(const PodcastPushOptions& options) {
  Pushing pushing(options, ProfileChoice::Number);
  PodcastTransfer& transfer = pushing.transfer;
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
