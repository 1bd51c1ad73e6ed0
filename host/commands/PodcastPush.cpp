#include "commands/PodcastPush.h"

#include "podcast/PodcastTransfer.h"

namespace umsctl {
namespace {

using umsservice::Array;
using umsservice::kMediaPodcast;

/// Episodes from the computer on their way to a device.
struct Pushing {
  Pushing(const PodcastPushOptions& options, const Errand& errand, ProfileChoice choice)
      : links(errand),
        transfer(errand, options.volumes.profileBy(choice), episodeItems(errand, links, options.input)),
        questions(std::make_shared<LinkedQuestions>(transfer.policy(), links)) {
    transfer.device().service().setConfirmDelegate(questions);
  }

  CleanLinks links;
  PodcastTransfer transfer;
  std::shared_ptr<LinkedQuestions> questions;
};

}  // namespace

ExitStatus podcastPush(const PodcastPushOptions& options, const Errand& errand) {
  Pushing pushing(options, errand, ProfileChoice::Kind);
  PodcastTransfer& transfer = pushing.transfer;
  const Device::Volume& target = transfer.device().volume(options.to);
  auto queue = [&](uint32_t serviceID, const Array& channels) {
    return transfer.device().service().copyContentsMacToDevice(serviceID, channels, kMediaPodcast,
                                                               target.index);
  };
  return transfer.run(queue, {writtenVolume(target)});
}

ExitStatus podcastSync(const PodcastPushOptions& options, const Errand& errand) {
  Pushing pushing(options, errand, ProfileChoice::Number);
  PodcastTransfer& transfer = pushing.transfer;
  Device& device = transfer.device();
  const bool isStartInternal = device.volume(options.to).kind == "internal";
  auto queue = [&](uint32_t serviceID, const Array& channels) {
    return device.service().syncContents(serviceID, channels, kMediaPodcast, isStartInternal);
  };
  return transfer.run(queue, writtenVolumes(device));
}

}  // namespace umsctl
