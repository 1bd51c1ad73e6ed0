#include "commands/PodcastList.h"

#include <cstdio>

#include "Amounts.h"
#include "EscapedName.h"
#include "Output.h"
#include "Paths.h"
#include "podcast/PodcastShelf.h"
#include "podcast/ShownFields.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;

std::string episodeLine(Device& device, const Dictionary& episode) {
  const std::string path = episode.string(umsservice::key::kFilePath).value_or("");
  const std::string title = episode.string("Title").value_or(lastComponent(path));
  char columns[64];
  std::snprintf(columns, sizeof columns, "    %-10s  %8s  %9s  ",
                shownDate(episode.string("PublishDate").value_or("")).c_str(),
                shownDuration(episode.string("Duration").value_or("")).c_str(),
                byteText(device.service().fileSizeAtDevice(path)).c_str());
  return columns + escaped(title) + "  (" + escaped(lastComponent(path)) + ")\n";
}

void show(Device& device, const ShelvedChannel& channel) {
  const size_t count = channel.episodes.size();
  std::string line = "  " + escaped(channel.title);
  if (channel.name != channel.title) line += "  [" + escaped(channel.name) + "]";
  print(line + "  " + std::to_string(count) + (count == 1 ? " episode" : " episodes") + "\n");
  for (const Dictionary& episode : channel.episodes) print(episodeLine(device, episode));
}

}  // namespace

ExitStatus podcastList(const VolumeFolders& volumes) {
  Device device(volumes);
  bool everythingWasRead = true;
  for (const Device::Volume& volume : device.volumes()) {
    print(std::to_string(volume.index) + "  " + volume.kind + "  " + escaped(volume.path) + "\n");
    PodcastShelf shelf(device, volume);
    for (const ShelvedChannel& channel : shelf.channels()) show(device, channel);
    everythingWasRead = everythingWasRead && shelf.everythingWasRead();
  }
  return everythingWasRead ? ExitStatus::AllDone : ExitStatus::SomeFailed;
}

}  // namespace umsctl
