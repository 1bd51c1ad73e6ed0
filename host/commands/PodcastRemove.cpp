#include "commands/PodcastRemove.h"

#include <unistd.h>

#include <iostream>
#include <set>

#include "EscapedName.h"
#include "Interrupt.h"
#include "Outcomes.h"
#include "Output.h"
#include "Paths.h"
#include "Refusal.h"
#include "Terminal.h"
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

bool agrees(const PodcastRemoveOptions& options, const ShelvedChannel& channel, size_t count) {
  if (options.isAgreed) return true;
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

void showDeleted(const ItemOutcome& outcome) {
  if (outcome.kind == Kind::Done) print("deleted  " + escaped(outcome.path.value_or("")) + "\n");
}

ExitStatus reported(Device& device, const Outcomes& outcomes, bool isDone, bool wasCancelled) {
  std::vector<Failure> told;
  for (const ItemOutcome& outcome : outcomes.all()) {
    if (auto failure = failureOf(device, outcome.path.value_or(""), "", outcome)) told.push_back(*failure);
  }
  tellFailures(told);
  const size_t failures = told.size();
  size_t done = outcomes.count(Kind::Done);
  size_t notReached = outcomes.all().size() - done - failures;
  std::string counts = (wasCancelled ? "cancelled: " : "") + std::to_string(done) + " deleted";
  if (failures > 0) counts += ", " + std::to_string(failures) + " failed";
  if (notReached > 0) counts += ", " + std::to_string(notReached) + " not deleted";
  print(counts + "\n");
  if (wasCancelled) return ExitStatus::Cancelled;
  return isDone && failures + notReached == 0 ? ExitStatus::AllDone : ExitStatus::SomeFailed;
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

bool flushed(Device& device, const Device::Volume& volume) {
  auto flushed = device.files().syncVolume(volume.path);
  if (!flushed) complain(volume.path, "it may not be written yet: " + flushed.error().words());
  return static_cast<bool>(flushed);
}

}  // namespace

ExitStatus podcastRemove(const PodcastRemoveOptions& options) {
  auto outcomes = std::make_shared<Outcomes>(posixFileSystem(), showDeleted);
  Device device(options.volumes, outcomes);
  const Device::Volume& volume = device.volume(options.on);
  const PodcastShelf shelf(device, volume);
  const ShelvedChannel& channel = shelf.channel(options.channel);
  const Dictionary podcast = requested(device, channel, options.episodes);
  if (!agrees(options, channel, podcast.get("children").array()->count())) {
    print("nothing deleted\n");
    return ExitStatus::AllDone;
  }

  Interrupt interrupt;  // from here on; the question above ends the program as usual
  bool isDone = removed(device, volume, shelf.folder(), podcast, interrupt);
  const bool wasCancelled = interrupt.happened();
  if (!isDone && !wasCancelled && outcomes->count(Kind::Failed) == 0)
    complain(channel.folder, options.episodes.empty() ? "the channel cannot be removed"
                                                      : "the index of the channel cannot be written");
  isDone = flushed(device, volume) && isDone;
  return reported(device, *outcomes, isDone, wasCancelled);
}

}  // namespace umsctl
