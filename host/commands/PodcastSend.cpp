#include "commands/PodcastSend.h"

#include <set>

#include "Refusal.h"
#include "podcast/PodcastPeer.h"
#include "podcast/PodcastShelf.h"
#include "podcast/PodcastTransfer.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;

bool isSameFolder(FileSystem& files, const std::string& one, const std::string& other) {
  auto first = files.attributes(one);
  auto second = files.attributes(other);
  return first && second && first->device == second->device && first->inode == second->inode;
}

EpisodeItems itemsOf(const PodcastSendOptions& options, const Errand& errand) {
  auto files = std::make_shared<WatchedFiles>(errand);
  Device device(options.from, errand, nullptr, files);
  PodcastShelf shelf(errand, *files, device, device.volume(options.on));
  EpisodeItems items;
  std::set<std::string> taken;
  for (const std::string& words : options.channels) {
    const ShelvedChannel& channel = shelf.channel(words);
    if (channel.episodes.empty()) throw Refusal(ExitStatus::SomeFailed, words, "the channel has no episodes");
    if (!taken.insert(channel.name).second) continue;
    for (const Dictionary& episode : channel.episodes)
      items.add(device.files(), episode, episode.string(key::kFilePath).value_or(""));
    items.channels.append(channel.podcast);
  }
  return items;
}

}  // namespace

ExitStatus podcastSend(const PodcastSendOptions& options, const Errand& errand) {
  Device receiver(options.volumes, errand);
  const Device::Volume& target = receiver.volume(options.to);
  // The sender chooses the folders on the receiver.
  VolumeFolders from = options.from;
  from.profile = options.volumes.profile;
  PodcastTransfer transfer(errand, from, itemsOf(options, errand));
  Device& sender = transfer.device();
  if (isSameFolder(sender.files(), sender.volume(options.on).path, target.path))
    throw Refusal(ExitStatus::SomeFailed, target.path, "both devices are the same");

  auto peer = std::make_shared<PodcastPeer>(receiver, PodcastShelf::folderOf(receiver, target));
  auto delegate = std::make_shared<PeerDelegate>(transfer.policy(), peer);
  sender.service().setConfirmDelegate(delegate);
  auto queue = [&](uint32_t serviceID, const Array& channels) {
    return sender.service().copyContentsDeviceToDevice(serviceID, channels, sender.service().locationID(),
                                                       receiver.service().locationID(), kMediaPodcast,
                                                       target.index);
  };
  return transfer.run(queue, {writtenVolume(target)});
}

}  // namespace umsctl
