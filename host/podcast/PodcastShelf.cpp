#include "podcast/PodcastShelf.h"

#include <algorithm>

#include "Refusal.h"
#include "umsservice/Notifications.h"

namespace umsctl {

using namespace umsservice;

std::string PodcastShelf::folderOf(Device& device, const Device::Volume& volume) {
  auto disk = device.service().diskInfoFromIndex(volume.index);
  const int32_t diskType = disk ? disk->get(key::kDiskType).intValue() : 0;
  return device.service().defaultMediaContentsPath(volume.path, diskType, kMediaPodcast).value_or("");
}

PodcastShelf::PodcastShelf(const Errand& errand, WatchedFiles& files, Device& device,
                           const Device::Volume& volume)
    : folder_(folderOf(device, volume)) {
  {
    WatchedFiles::Phase phase(files, "Reading channels");
    MaybeArray paths;
    if (folder_.empty() || !device.service().podcastXmlLists(0, folder_, &paths) || !paths) return;
    for (const Value& path : paths->snapshot()) read(device, path.string().value_or(""));
  }
  for (const std::string& path : damaged_)
    errand.events().complained(path, "it is no index of a podcast channel");
  for (const std::string& path : files.takeSetAside()) errand.events().complained(path, kSetAside);
  std::sort(channels_.begin(), channels_.end(), [](const ShelvedChannel& one, const ShelvedChannel& other) {
    return std::tie(one.title, one.name) < std::tie(other.title, other.name);
  });
}

void PodcastShelf::read(Device& device, const std::string& relativePath) {
  const std::string name = relativePath.substr(0, relativePath.find('/'));
  if (name.starts_with('.') || relativePath != name + "/" + name + ".xml") return;
  const std::string path = folder_ + "/" + relativePath;
  MaybeDictionary podcast = device.service().umsPodcastXmlData(path);
  if (!podcast) return damaged_.push_back(path);
  ShelvedChannel channel{name, folder_ + "/" + name, podcast->string("Title").value_or(name), *podcast, {}};
  for (const Value& element : podcast->get("children").array().value_or(Array()).snapshot())
    channel.episodes.push_back(element.dictionary().value_or(Dictionary()));
  channels_.push_back(std::move(channel));
}

const ShelvedChannel& PodcastShelf::channel(const std::string& words) const {
  const ShelvedChannel* found = nullptr;
  for (const ShelvedChannel& channel : channels_) {
    if (isMeant(words, channel.name)) return channel;  // there is one folder of a name
    if (!isMeant(words, channel.title)) continue;
    if (found)
      throw Refusal(ExitStatus::SomeFailed, words, "several channels have this title; say which folder");
    found = &channel;
  }
  if (!found) throw Refusal(ExitStatus::SomeFailed, words, "there is no such channel in " + folder_);
  return *found;
}

bool isMeant(const std::string& typed, const std::string& name) {
  return typed == name || (typed.starts_with("./") && typed.substr(2) == name);
}

}  // namespace umsctl
