#include "commands/PodcastRemove.h"

#include <functional>
#include <map>
#include <numeric>
#include <set>

#include "Amounts.h"
#include "Consent.h"
#include "EscapedName.h"
#include "Flushing.h"
#include "Interrupt.h"
#include "Outcomes.h"
#include "Paths.h"
#include "PhaseLine.h"
#include "Planning.h"
#include "Refusal.h"
#include "TransferReport.h"
#include "WatchedFiles.h"
#include "podcast/EpisodeReport.h"
#include "podcast/PodcastShelf.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;
using Kind = ItemOutcome::Kind;

constexpr uint32_t kServiceID = 1;

std::string pathOf(const Dictionary& episode) {
  return episode.string(key::kFilePath).value_or("");
}

bool isMeant(const std::string& typed, const Dictionary& episode) {
  return umsctl::isMeant(typed, lastComponent(pathOf(episode))) ||
         umsctl::isMeant(typed, episode.string("Title").value_or(""));
}

/// The episodes that a person means, in the channel's order. Throws `Refusal` for words that mean none.
std::vector<Value> chosen(const ShelvedChannel& channel, const std::vector<std::string>& words) {
  std::set<size_t> positions;
  for (const std::string& typed : words) {
    bool isFound = false;
    for (size_t i = 0; i < channel.episodes.size(); ++i) {
      if (!isMeant(typed, channel.episodes[i])) continue;
      positions.insert(i);
      isFound = true;
    }
    if (!isFound) throw Refusal(ExitStatus::SomeFailed, typed, "the channel has no such episode");
  }
  std::vector<Value> episodes;
  for (size_t position : positions) episodes.emplace_back(channel.episodes[position]);
  return episodes;
}

/// What the service is asked to delete. It finds the channel's folder by the title; what a device says there
/// might lead it to another one.
Dictionary requested(Device& device, const ShelvedChannel& channel, const std::vector<std::string>& words) {
  if (device.service().convertAvailableFileName(channel.name) != channel.name)
    throw Refusal(ExitStatus::SomeFailed, channel.folder, "a folder of this name is no channel's");
  Dictionary podcast = channel.podcast.mutableCopy();
  podcast.set("Title", channel.name);
  if (words.empty()) podcast.set("Delete", true);
  if (!words.empty()) podcast.set("children", Array(chosen(channel, words)));
  return podcast;
}

/// What is to go: the sizes of the episodes' files by their paths.
using Sizes = std::map<std::string, uint64_t>;

Sizes sizesOf(Device& device, const Dictionary& podcast) {
  Sizes sizes;
  for (const Value& episode : podcast.get("children").array()->snapshot()) {
    const std::string path = pathOf(*episode.dictionary());
    sizes[path] = device.service().fileSizeAtDevice(path);
  }
  return sizes;
}

/// Of an episode that went: a channel that goes as a whole is told without the sizes of its episodes.
uint64_t sizeIn(const Sizes& sizes, const ItemOutcome& outcome) {
  auto size = sizes.find(outcome.path.value_or(""));
  return size == sizes.end() ? 0 : size->second;
}

uint64_t bytesOf(const Sizes& sizes) {
  return std::accumulate(sizes.begin(), sizes.end(), uint64_t{0},
                         [](uint64_t sum, const auto& file) { return sum + file.second; });
}

std::string questionAbout(const ShelvedChannel& channel, bool isWhole, const Sizes& sizes) {
  const std::string episodes = countText(sizes.size(), "episode") + " (" + byteText(bytesOf(sizes)) + ")";
  return isWhole ? "Delete the channel " + escaped(channel.title) + " with " + episodes + " from the device?"
                 : "Delete " + episodes + " of the channel " + escaped(channel.title) + " from the device?";
}

/// Each is listed, on a terminal too: there is no bar.
const TransferManner kManner{.done = "deleted", .planned = "delete", .tellsPlaces = true};

void tell(const Errand& errand, const ItemOutcome& outcome, const std::string& cause) {
  errand.events().itemEnded({outcome, kManner, outcome.path.value_or(""), cause, "", {}, {}});
}

ExitStatus reported(const Errand& errand, Device& device, const Outcomes& outcomes, const Sizes& sizes,
                    bool isDone, bool wasCancelled) {
  uint64_t bytes = 0;
  for (const ItemOutcome& outcome : outcomes.all()) {
    if (outcome.kind != Kind::Done)
      tell(errand, outcome, needsCause(outcome) ? causeOfEpisode(device, outcome) : "");
    else
      bytes += sizeIn(sizes, outcome);
  }
  Counts counts = countsOf(errand, outcomes, kManner, outcomes.all().size());
  counts.bytes = bytes;
  counts.wasCancelled = wasCancelled;
  errand.events().counted(counts);
  ExitStatus status = statusOf(counts);
  return isDone || status != ExitStatus::AllDone ? status : ExitStatus::SomeFailed;
}

/// On the calling thread: a queued request deletes from the first volume only.
bool removed(Device& device, const Device::Volume& volume, const std::string& podcastFolder,
             const Dictionary& podcast, Interrupt& interrupt) {
  _serviceinfo request;
  request.serviceID = kServiceID;
  request.command = kCommandDeleteFile;
  request.mediaType = kMediaPodcast;
  request.storageIndex = volume.index;
  request.destPath = podcastFolder;
  request.contents = Array{podcast};
  InterruptAction cancelling(interrupt, [&] {
    device.service().cancelFileAction(kServiceID);
    answerInterrupt("cancelling");
  });
  return device.service().doDeletePodcastContents(request);
}

bool flushed(const Errand& errand, Device& device, const Device::Volume& volume, bool wasCancelled) {
  PhaseLine phase(errand.wishes());
  phase.announce(kFlushing);
  return flush(errand, device.files(), {writtenVolume(volume)}, wasCancelled,
               [&phase](const std::function<void()>& speak) {
                 phase.erase();
                 speak();
               });
}

}  // namespace

ExitStatus podcastRemove(const PodcastRemoveOptions& options, const Errand& errand) {
  auto watched = std::make_shared<WatchedFiles>(errand);
  Device looking(options.volumes, errand, nullptr, watched);
  const PodcastShelf shelf(errand, *watched, looking, looking.volume(options.on));
  const ShelvedChannel& channel = shelf.channel(options.channel);
  const Dictionary podcast = requested(looking, channel, options.episodes);
  const Sizes sizes = sizesOf(looking, podcast);
  if (!agreesTo(errand, questionAbout(channel, options.episodes.empty(), sizes))) return ExitStatus::AllDone;
  errand.stopIfCancelled();

  // From here on in order: an interrupt comes between two episodes, and their index is written.
  auto showDeleted = [&errand, &sizes](const ItemOutcome& outcome) {
    if (outcome.kind != Kind::Done) return;
    ItemOutcome sized = outcome;
    sized.bytes = sizeIn(sizes, outcome);
    tell(errand, sized, "");
  };
  auto outcomes = std::make_shared<Outcomes>(errand.files(), showDeleted);
  Device device(options.volumes, errand, outcomes);
  const Device::Volume& volume = device.volume(options.on);
  auto tellPlan = [&] {
    Plan plan = planOf(errand, {}, {writtenVolume(volume)});
    plan.items = podcast.get("children").array()->count();
    plan.bytes = bytesOf(sizes);
    errand.events().planned(plan);
  };
  if (!errand.rehearsal()) tellPlan();
  bool isDone = removed(device, volume, shelf.folder(), podcast, errand.interrupt());
  const bool wasCancelled = errand.interrupt().happened();
  if (!isDone && !wasCancelled && outcomes->count(Kind::Failed) == 0)
    errand.events().complained(channel.folder, options.episodes.empty()
                                                   ? "the channel cannot be removed"
                                                   : "the index of the channel cannot be written");
  isDone = (errand.rehearsal() || flushed(errand, device, volume, wasCancelled)) && isDone;
  ExitStatus status = reported(errand, device, *outcomes, sizes, isDone, wasCancelled);
  if (errand.rehearsal()) tellPlan();
  return status;
}

}  // namespace umsctl
