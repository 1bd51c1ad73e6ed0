#include "PodcastDelete.h"

#include <algorithm>

#include "FileNames.h"
#include "OnException.h"
#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

using Kind = ItemOutcome::Kind;

constexpr auto kDeleteMethod = "-[UMSService doDeletePodcastContents:]";
constexpr auto kDelete = "Delete";

/// The host's channel as an index would hold it: hosts give full paths, an index has bare names.
Dictionary withBareNames(const PodcastChannel& channel) {
  std::vector<Value> episodes;
  for (const Value& element : *channel.episodes) {
    auto episode = element.dictionary();
    if (!episode) continue;
    Dictionary bare = episode->mutableCopy();
    if (MaybeString path = bare.string(key::kFilePath)) bare.set(key::kFilePath, lastPathComponent(*path));
    episodes.emplace_back(bare);
  }
  Dictionary podcast = channel.dictionary->mutableCopy();
  podcast.set(kChildren, Array(std::move(episodes)));
  return podcast;
}

}  // namespace

bool PodcastDelete::run() {
  if (request_.mediaType != kMediaPodcast) return false;
  PodcastRun::Scope scope = PodcastRun::onThisDevice(context_, request_);
  scope.episodes = tools_.sizes.totalPodcastCount(request_.contents);
  PodcastRun run(tools_, request_, scope);
  run.carryOut(kDeleteMethod, [&](const PodcastChannel& channel) { return deleteChannel(run, channel); });
  return status_;
}

bool PodcastDelete::deleteChannel(PodcastRun& run, const PodcastChannel& channel) {
  if (!channel.dictionary) {
    run.refuseNilChannel(channel, kErrorBadDeleteItem, kDeleteMethod);
    return true;
  }
  auto place = run.placeOf(channel, request_.destPath);
  if (!place) {
    run.refuseChannel(channel, kErrorBadDeleteItem);
    return true;
  }
  if (!run.hasEpisodes(channel, kDeleteMethod)) return true;
  if (channel.dictionary->get(kDelete).boolValue()) return deleteWholeChannel(run, channel, *place);
  Shrinking shrinking{
      channel, *place,
      tools_.indexes.open(run.converter(), place->folder, place->name, withBareNames(channel), true)};
  run.forEachEpisode(
      channel, [&](const Value& element) { return deleteEpisode(run, shrinking, element); },
      [&] { status_ = shrinking.folderGone || run.writeIndex(shrinking.index, *place, kDeleteMethod); });
  run.ledger().countRestOf(channel, {Kind::NotReached, kErrorStopped});
  return true;
}

bool PodcastDelete::deleteWholeChannel(PodcastRun& run, const PodcastChannel& channel,
                                       const ChannelPlace& place) {
  OVUmsDeviceNotifier& notifier = run.notifier();
  notifier.setFilePath(place.folder);
  notifier.setChannelName(place.name);
  notifier.setPodcastXmlData(channel.dictionary);
  if (run.endsForRelease(kDeleteMethod)) return false;
  const auto episodes = static_cast<uint32_t>(channel.episodes->size());
  FileOutcome outcome = tools_.media.files.remove(place.folder);
  status_ = outcome.result;
  const uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  notifier.setTransferResult(errorNumber);
  auto notify = [&] {
    if (outcome.result) {
      notifier.deleteFileTransfer();
      notifier.addCurrentTransferFileCount(episodes);
    } else {
      notifier.addFailTransferFileCount(episodes);
    }
    notifier.sendResultNotification();
  };
  const Kind kind = outcome.result ? Kind::Done : Kind::Failed;
  inAnyCase(context_, notify, [&] {
    run.ledger().countRestOf(channel, {kind, errorNumber, std::nullopt, 0, outcome.reason});
  });
  return true;
}

PodcastDelete::Next PodcastDelete::deleteEpisode(PodcastRun& run, Shrinking& channel, const Value& element) {
  if (run.endsForCancel(kDeleteMethod)) return Next::EndOfChannel;
  auto episode = element.dictionary();
  if (!episode) {
    context_.log.write(1, kDeleteMethod, "Episode Data is nil.");
    return run.refused(kErrorBadDeleteItem, kErrorBadDeleteItem);
  }
  MaybeString file = fileOf(*episode, channel.place);
  if (!file) {
    context_.log.write(1, kDeleteMethod, "Episode Medias File Path is nil.");
    return run.refused(kErrorBadDeleteItem, kErrorBadDeleteItem);
  }
  if (run.endsForRelease(kDeleteMethod)) return Next::EndOfChannel;
  const uint64_t bytes = sizeOf(*file);
  FileOutcome outcome = tools_.media.files.remove(file);
  const uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  run.notifier().setTransferResult(errorNumber);
  if (outcome.result) return deleted(run, channel, *episode, *file, bytes);
  show(run, channel, *file, *channel.channel.dictionary);
  inAnyCase(
      context_, [&] { run.notifier().incFailTransferFileCount(); },
      [&] {
        run.ledger().count({Kind::Failed, errorNumber, std::nullopt, 0, outcome.reason});
      });
  return Next::GoOn;
}

/// The full path of an episode's file; nil for what can be no episode's: a folder, and a path that leads out
/// of the folder that it seems to lie in, and the channel's index. Deleting such a thing would cost more than
/// an episode.
MaybeString PodcastDelete::fileOf(const Dictionary& episode, const ChannelPlace& place) const {
  MaybeString file = cleaned(episode.string(key::kFilePath));
  if (!file || file->empty()) return std::nullopt;
  if (PodcastIndexFiles::isNameOfIndex(lastPathComponent(*file), place.name)) return std::nullopt;
  for (const std::string& component : pathComponents(*file)) {
    if (component == "." || component == "..") return std::nullopt;
  }
  auto found = context_.files().linkAttributes(*file);
  return found && found->type == FileType::Directory ? std::nullopt : file;
}

/// A path as the copy has cleaned it. The mount point is the host's and may have characters in it that names
/// on a player may not have; cleaned, it could be another volume.
MaybeString PodcastDelete::cleaned(const MaybeString& path) const {
  const std::string folder = request_.destPath.value_or("");
  if (folder.empty() || !path || !path->starts_with(folder + "/"))
    return convertAvailableString(context_.log, path);
  MaybeString inside = convertAvailableString(context_.log, path->substr(folder.size()));
  return inside ? MaybeString(folder + *inside) : std::nullopt;
}

uint64_t PodcastDelete::sizeOf(const std::string& file) const {
  auto found = context_.files().linkAttributes(file);
  return found ? found->size : 0;
}

PodcastDelete::Next PodcastDelete::deleted(PodcastRun& run, Shrinking& channel, const Dictionary& episode,
                                           const std::string& file, uint64_t bytes) {
  const size_t before = channel.index.episodeCount();
  channel.index.remove(episode);
  channel.hasShrunk |= channel.index.episodeCount() < before;
  Dictionary podcast = channel.index.dictionary();
  if (channel.index.episodeCount() == 0 && (channel.folderGone || mayRemoveFolder(channel))) {
    if (!channel.folderGone && run.endsForRelease(kDeleteMethod)) {
      run.ledger().count({Kind::Done, kErrorNone, std::nullopt, bytes});
      return Next::EndOfChannel;
    }
    removeFolder(run, channel);
    podcast.set(kDelete, true);
  }
  show(run, channel, file, podcast);
  auto notify = [&] {
    run.notifier().deleteFileTransfer();
    run.notifier().incCurrentTransferFileCount();
  };
  inAnyCase(context_, notify, [&] { run.ledger().count({Kind::Done, kErrorNone, std::nullopt, bytes}); });
  return Next::GoOn;
}

/// Hosts count the channel as gone from now on, whatever the delete says.
void PodcastDelete::removeFolder(PodcastRun& run, Shrinking& channel) {
  if (channel.folderGone) return;
  FileOutcome outcome = tools_.media.files.remove(channel.place.folder);
  run.notifier().setTransferResult(outcome.errorNumber.value_or(kErrorNone));
  channel.folderGone = true;
}

/// The host may have named only some of the episodes. An index on the device says that these were all, unless
/// it never had them or has replaced a damaged one, which may have known more; without its word the folder
/// goes only when nothing but indexes is left in it.
bool PodcastDelete::mayRemoveFolder(const Shrinking& channel) const {
  auto left = context_.files().list(channel.place.folder);
  if (!left) return false;
  const std::string index = channel.place.name + ".xml";
  auto isDamaged = [&](const DirectoryEntry& entry) { return entry.name.starts_with(index + ".damaged"); };
  auto isIndex = [&](const DirectoryEntry& entry) {
    return isHiddenName(entry.name) || entry.name.starts_with(index);
  };
  const bool isToldAll = channel.hasShrunk && channel.index.origin() == ChannelIndex::Origin::DeviceFile &&
                         std::none_of(left->begin(), left->end(), isDamaged);
  return isToldAll || std::all_of(left->begin(), left->end(), isIndex);
}

void PodcastDelete::show(PodcastRun& run, const Shrinking& channel, const std::string& file,
                         const Dictionary& podcast) {
  run.notifier().setFilePath(file);
  run.notifier().setChannelName(channel.place.name);
  run.notifier().setPodcastXmlData(podcast);
}

}  // namespace umsservice
