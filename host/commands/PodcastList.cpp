#include "commands/PodcastList.h"

#include <cstdio>

#include "Amounts.h"
#include "EscapedName.h"
#include "Paths.h"
#include "VolumeHeadline.h"
#include "podcast/PodcastShelf.h"
#include "podcast/ShownFields.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;

Shown shownEpisode(Device& device, const Dictionary& episode) {
  const std::string path = episode.string(umsservice::key::kFilePath).value_or("");
  const std::string title = episode.string("Title").value_or(lastComponent(path));
  const std::string date = episode.string("PublishDate").value_or("");
  const std::string duration = episode.string("Duration").value_or("");
  const uint64_t size = device.service().fileSizeAtDevice(path);
  char columns[64];
  std::snprintf(columns, sizeof columns, "    %-10s  %8s  %9s  ", shownDate(date).c_str(),
                shownDuration(duration).c_str(), byteText(size).c_str());
  return {columns + escaped(title) + "  (" + escaped(lastComponent(path)) + ")\n",
          "episode",
          {{"title", title}, {"path", path}, {"bytes", size}, {"published", date}, {"duration", duration}}};
}

void show(Events& events, Device& device, const ShelvedChannel& channel) {
  const size_t count = channel.episodes.size();
  std::string line = "  " + escaped(channel.title);
  if (channel.name != channel.title) line += "  [" + escaped(channel.name) + "]";
  line += "  " + countText(count, "episode") + "\n";
  events.shown(
      {line, "channel", {{"title", channel.title}, {"path", channel.folder}, {"episodes", uint64_t{count}}}});
  for (const Dictionary& episode : channel.episodes) events.shown(shownEpisode(device, episode));
}

}  // namespace

ExitStatus podcastList(const VolumeFolders& volumes, const Errand& errand) {
  auto files = std::make_shared<WatchedFiles>(errand);
  Device device(volumes, errand, nullptr, files);
  bool everythingWasRead = true;
  for (const Device::Volume& volume : device.volumes()) {
    errand.events().shown(volumeHeadline(volume));
    PodcastShelf shelf(errand, *files, device, volume);
    for (const ShelvedChannel& channel : shelf.channels()) show(errand.events(), device, channel);
    everythingWasRead = everythingWasRead && shelf.everythingWasRead();
  }
  return everythingWasRead ? ExitStatus::AllDone : ExitStatus::SomeFailed;
}

}  // namespace umsctl
