#include "commands/PodcastRemove.h"

#include <unistd.h>

#include <iostream>
#include <set>

#include "EscapedName.h"
#include "Interrupt.h"
#include "Outcomes.h"
#include "Output.h"
#include "Paths.h"
#include "Planning.h"
#include "Refusal.h"
#include "Terminal.h"
#include "TransferReport.h"
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

bool agrees(const PodcastRemoveOptions& options, const Errand& errand, const ShelvedChannel& channel,
            size_t count) {
  if (errand.wishes().isAgreed || errand.rehearsal()) return true;
  if (!canAsk())
    throw Refusal(ExitStatus::SomeFailed, channel.title,
                  "nothing is deleted; --yes deletes without a question");
  std::string what = options.episodes.empty() ? "the whole channel " : "from the channel ";
  printToError("Delete " + what + escaped(channel.title) + ", " + std::to_string(count) +
               (count == 1 ? " episode? (y/n) " : " episodes? (y/n) "));
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "Y" || answer == "yes";
}

/// Each is listed, on a terminal too: there is no bar.
const TransferManner kManner{.done = "deleted", .planned = "delete", .tellsPlaces = true};

void tell(const Errand& errand, const ItemOutcome& outcome, const std::string& cause) {
  errand.events().itemEnded({outcome, kManner, outcome.path.value_or(""), cause, "", {}, {}});
}

ExitStatus reported(const Errand& errand, Device& device, const Outcomes& outcomes, bool isDone,
                    bool wasCancelled) {
  for (const ItemOutcome& outcome : outcomes.all()) {
    if (outcome.kind != Kind::Done)
      tell(errand, outcome, isFailure(outcome) ? causeOfEpisode(device, outcome) : "");
  }
  Counts counts = countsOf(errand, outcomes, kManner, outcomes.all().size());
  counts.bytes.reset();
  counts.wasCancelled = wasCancelled;
  errand.events().counted(counts);
  ExitStatus status = statusOf(counts);
  return isDone || status != ExitStatus::AllDone ? status : ExitStatus::SomeFailed;
}

std::vector<uint64_t> sizesOf(Device& device, const Dictionary& podcast) {
  std::vector<uint64_t> sizes;
  for (const Value& episode : podcast.get("children").array()->snapshot())
    sizes.push_back(device.service().fileSizeAtDevice(pathOf(*episode.dictionary())));
  return sizes;
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

bool flushed(const Errand& errand, Device& device, const Device::Volume& volume) {
  auto flushed = device.files().syncVolume(volume.path);
  if (!flushed)
    errand.events().complained(volume.path, "it may not be written yet: " + flushed.error().words());
  return static_cast<bool>(flushed);
}

}  // namespace

ExitStatus podcastRemove(const PodcastRemoveOptions& options, const Errand& errand) {
  auto showDeleted = [&errand](const ItemOutcome& outcome) {
    if (outcome.kind == Kind::Done) tell(errand, outcome, "");
  };
  auto outcomes = std::make_shared<Outcomes>(errand.files(), showDeleted);
  Device device(options.volumes, errand, outcomes);
  const Device::Volume& volume = device.volume(options.on);
  const PodcastShelf shelf(errand, device, volume);
  const ShelvedChannel& channel = shelf.channel(options.channel);
  const Dictionary podcast = requested(device, channel, options.episodes);
  if (!agrees(options, errand, channel, podcast.get("children").array()->count())) {
    errand.events().remarked("nothing deleted\n");
    return ExitStatus::AllDone;
  }
  const std::vector<uint64_t> sizes = sizesOf(device, podcast);
  if (!errand.rehearsal()) errand.events().planned(planOf(errand, sizes, {writtenVolume(volume)}));

  Interrupt interrupt;  // from here on; the question above ends the program as usual
  bool isDone = removed(device, volume, shelf.folder(), podcast, interrupt);
  const bool wasCancelled = interrupt.happened();
  if (!isDone && !wasCancelled && outcomes->count(Kind::Failed) == 0)
    errand.events().complained(channel.folder, options.episodes.empty()
                                                   ? "the channel cannot be removed"
                                                   : "the index of the channel cannot be written");
  isDone = flushed(errand, device, volume) && isDone;
  ExitStatus status = reported(errand, device, *outcomes, isDone, wasCancelled);
  if (errand.rehearsal()) errand.events().planned(planOf(errand, sizes, {writtenVolume(volume)}));
  return status;
}

}  // namespace umsctl
