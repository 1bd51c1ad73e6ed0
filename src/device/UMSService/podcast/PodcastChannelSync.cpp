#include "PodcastChannelSync.h"

#include "OnException.h"
#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {

PodcastChannelSync::End PodcastChannelSync::sync(const PodcastChannel& channel, const ChannelPlace& place,
                                                 const std::string& folder) {
  ChannelIndex index =
      tools_.indexes.open(run_.converter(), place.folder, place.name, *channel.dictionary, false);
  if (run_.endsForRelease(manner_.method)) return End::Released;
  std::string reason;
  if (!tools_.media.folders.createFolder(folder, &reason)) {
    run_.folderFailed(channel, place, reason, manner_.method);
    return End::NoFolder;
  }
  End end = End::NotWritten;
  run_.forEachEpisode(
      channel, [&](const Value& element) { return syncEpisode(place, index, element); },
      [&] {
        if (run_.writeIndex(index, place, manner_.method)) end = End::Written;
      });
  return end;
}

PodcastChannelSync::Next PodcastChannelSync::syncEpisode(const ChannelPlace& place, ChannelIndex& index,
                                                         const Value& element) {
  if (run_.endsForCancel(manner_.method)) return Next::EndOfChannel;
  PodcastEpisode episode;
  if (auto next = run_.resolve(element, place, manner_.refusals, episode, manner_.method)) return *next;
  if (run_.endsForRelease(manner_.method)) return Next::EndOfChannel;
  FileOutcome outcome = run_.copyFile(episode);
  if (isStopCode(outcome.errorNumber.value_or(kErrorNone))) return run_.stopped(episode, outcome);
  if (outcome.errorNumber == kErrorFileExists) {
    if (auto next = settleConflict(episode, outcome)) return *next;
  }
  return enter(place, index, episode, outcome);
}

std::optional<PodcastChannelSync::Next> PodcastChannelSync::settleConflict(const PodcastEpisode& episode,
                                                                           FileOutcome& outcome) {
  if (!replacesUnasked(serviceID_)) return run_.settleConflict(episode, outcome, manner_.method);
  const SingleFile& files = tools_.media.files;
  if (!files.isReplaceable(episode.target) || files.isSameFile(episode.source, episode.target))
    return std::nullopt;
  return run_.replaceExisting(episode, outcome, manner_.method);
}

PodcastChannelSync::Next PodcastChannelSync::enter(const ChannelPlace& place, ChannelIndex& index,
                                                   PodcastEpisode& episode, const FileOutcome& outcome) {
  // A file that could not even be created leaves no number: hosts take it for done, the observer is told
  // better.
  run_.notifier().setTransferResult(run_.error());
  episode.dictionary->set(key::kFilePath, lastPathComponent(*episode.source));
  index.add(*episode.dictionary);
  run_.show(place, index);
  attachMediaInfo(tools_.media, run_.notifier(), manner_.infoFromTarget ? *episode.target : *episode.source);
  inAnyCase(
      tools_.media.context, [&] { run_.notifier().incCurrentTransferFileCount(); },
      [&] { run_.ledger().count(endingOf(episode, outcome)); });
  return Next::GoOn;
}

EpisodeLedger::Ending PodcastChannelSync::endingOf(const PodcastEpisode& episode,
                                                   const FileOutcome& outcome) {
  using Kind = ItemOutcome::Kind;
  uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  if (outcome.result && errorNumber == kErrorNone)
    return {Kind::Done, kErrorNone, episode.target, outcome.bytes};
  if (errorNumber == kErrorFileExists) return {Kind::Skipped, kErrorFileExists, episode.target};
  if (errorNumber == kErrorNone) errorNumber = kErrorCopyFailed;
  return {Kind::Failed, errorNumber, episode.target, outcome.bytes, outcome.reason};
}

}  // namespace umsservice
