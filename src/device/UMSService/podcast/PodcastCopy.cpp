#include "PodcastCopy.h"

#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kCopyMethod = "-[UMSService doCopyPodcastContents:]";
constexpr PodcastRun::Refusals kCopyRefusals = {kErrorBadCopyItem, kErrorBadCopyItem, kErrorBadCopyItem};

}  // namespace

bool PodcastCopy::run() {
  if (!PodcastRun::isForPodcasts(context_, request_, kCopyMethod)) return false;
  PodcastRun::Scope scope = PodcastRun::onThisDevice(context_, request_);
  scope.bytes = tools_.sizes.totalPodcastFileSize(request_.contents, scope.episodes);
  PodcastRun run(tools_, request_, scope);
  run.carryOut(kCopyMethod, [&](const PodcastChannel& channel) { return copyChannel(run, channel); });
  return status_;
}

bool PodcastCopy::copyChannel(PodcastRun& run, const PodcastChannel& channel) {
  if (!channel.dictionary) {
    run.refuseNilChannel(channel, kErrorBadCopyItem, kCopyMethod);
    return true;
  }
  auto place = run.placeOf(channel, request_.destPath);
  if (!place) {
    run.refuseChannel(channel, kErrorBadCopyItem);
    return true;
  }
  if (!run.hasEpisodes(channel, kCopyMethod)) return true;
  ChannelIndex index =
      tools_.indexes.open(run.converter(), place->folder, place->name, *channel.dictionary, false);
  if (run.endsForRelease(kCopyMethod)) return false;
  std::string reason;
  status_ = tools_.media.folders.createFolder(place->folder, &reason);
  if (!status_) {
    run.folderFailed(channel, *place, reason, kCopyMethod);
    return true;
  }
  run.forEachEpisode(
      channel, [&](const Value& element) { return copyEpisode(run, channel, *place, index, element); },
      [&] { status_ = run.writeIndex(index, *place, kCopyMethod); });
  run.ledger().countRestOf(channel, {ItemOutcome::Kind::NotReached, kErrorStopped});
  return true;
}

PodcastCopy::Next PodcastCopy::copyEpisode(PodcastRun& run, const PodcastChannel& channel,
                                           const ChannelPlace& place, ChannelIndex& index,
                                           const Value& element) {
  if (run.endsForCancel(kCopyMethod)) return Next::EndOfChannel;
  PodcastEpisode episode;
  if (auto next = run.resolve(element, place, kCopyRefusals, episode, kCopyMethod)) return *next;
  if (run.endsForRelease(kCopyMethod)) return Next::EndOfChannel;
  FileOutcome outcome = run.copyFile(episode);
  if (isStopCode(outcome.errorNumber.value_or(kErrorNone))) return run.stopped(episode, outcome);
  if (outcome.errorNumber == kErrorFileExists) {
    if (auto next = run.settleConflict(episode, outcome, kCopyMethod)) return *next;
  }
  return conclude(run, channel, place, index, episode, outcome);
}

PodcastCopy::Next PodcastCopy::conclude(PodcastRun& run, const PodcastChannel& channel,
                                        const ChannelPlace& place, ChannelIndex& index,
                                        const PodcastEpisode& episode, const FileOutcome& outcome) {
  run.notifier().setTransferResult(run.error());
  if (outcome.errorNumber == kErrorVolumeFull) return run.volumeFull(channel, episode, outcome);
  if (!outcome.result || outcome.errorNumber.value_or(kErrorNone) != kErrorNone) {
    context_.log.write(1, kCopyMethod, "Podcast Download %@ to %@ failed.", episode.source, episode.target);
    return run.failed(episode, place, outcome);
  }
  Dictionary onDevice = episode.dictionary->mutableCopy();
  onDevice.set(key::kFilePath, lastPathComponent(*episode.source));
  index.add(onDevice);
  run.show(place, index);
  attachMediaInfo(tools_.media, run.notifier(), *episode.target);
  return run.done(episode, outcome);
}

}  // namespace umsservice
