#include "PodcastDeviceToDevice.h"

#include "OnException.h"
#include "PeerProgress.h"
#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kDeviceToDeviceMethod = "-[UMSService doDeviceToDevicePodcast:]";
constexpr PodcastRun::Refusals kSendRefusals = {kErrorBadCopyItem, kErrorBadCopyItem, kErrorBadCopyItem};

/// What the destination is told of an episode. It goes by "FileName", or else by the path's last component;
/// the file has to arrive under the name that the index gives it.
Dictionary describedFor(const PodcastEpisode& episode) {
  const std::string name = lastPathComponent(*episode.target);
  MaybeString path = episode.dictionary->string(key::kFilePath);
  MaybeString given = episode.dictionary->string(key::kFileName);
  if (given.value_or(lastPathComponent(*path)) == name) return *episode.dictionary;
  Dictionary described = episode.dictionary->mutableCopy();
  described.set(key::kFileName, name);
  return described;
}

}  // namespace

bool PodcastDeviceToDevice::run() {
  if (!PodcastRun::isForPodcasts(context_, request_, kDeviceToDeviceMethod)) return false;
  delegate_ = context_.identity.confirmDelegate();
  if (delegate_) destination_ = delegate_->getFileServiceObject(request_.destLocationID);
  if (!destination_) return false;
  PodcastRun::Scope scope{request_.srcLocationID, request_.destLocationID, destination_->modelName(),
                          request_.storageIndex};
  scope.bytes = tools_.sizes.totalPodcastFileSize(request_.contents, scope.episodes);
  PodcastRun run(tools_, request_, scope);
  progress_ = std::make_shared<PeerProgress>(tools_.media, request_.serviceID);
  run.carryOut(kDeviceToDeviceMethod,
               [&](const PodcastChannel& channel) { return sendChannel(run, channel); });
  return status_;
}

bool PodcastDeviceToDevice::sendChannel(PodcastRun& run, const PodcastChannel& channel) {
  if (!channel.dictionary) {
    run.refuseNilChannel(channel, kErrorBadCopyItem, kDeviceToDeviceMethod);
    return true;
  }
  auto place = run.placeOf(channel, request_.destPath);
  if (!place) {
    run.refuseChannel(channel, kErrorBadCopyItem);
    return true;
  }
  if (!run.hasEpisodes(channel, kDeviceToDeviceMethod)) return true;
  ChannelIndex index =
      tools_.indexes.open(run.converter(), place->folder, place->name, *channel.dictionary, false);
  if (run.endsForRelease(kDeviceToDeviceMethod)) return false;
  status_ = destination_->createFolder(place->folder);
  if (!status_) {
    run.folderFailed(channel, *place, {}, kDeviceToDeviceMethod);
    return true;
  }
  run.forEachEpisode(
      channel, [&](const Value& element) { return sendEpisode(run, channel, *place, index, element); },
      [&] { status_ = run.writeIndex(index, *place, kDeviceToDeviceMethod); });
  run.ledger().countRestOf(channel, {ItemOutcome::Kind::NotReached, kErrorStopped});
  return true;
}

PodcastDeviceToDevice::Next PodcastDeviceToDevice::sendEpisode(PodcastRun& run, const PodcastChannel& channel,
                                                               const ChannelPlace& place, ChannelIndex& index,
                                                               const Value& element) {
  if (run.endsForCancel(kDeviceToDeviceMethod)) return Next::EndOfChannel;
  PodcastEpisode episode;
  if (auto next = run.resolve(element, place, kSendRefusals, episode, kDeviceToDeviceMethod)) return *next;
  if (run.endsForRelease(kDeviceToDeviceMethod)) return Next::EndOfChannel;
  FileOutcome outcome = write(run, place, episode);
  if (isStopCode(*outcome.errorNumber)) return run.stopped(episode, outcome);
  if (outcome.errorNumber == kErrorFileExists) {
    if (auto next = settleConflict(run, place, episode, outcome)) return *next;
  }
  return conclude(run, channel, place, index, episode, outcome);
}

FileOutcome PodcastDeviceToDevice::write(PodcastRun& run, const ChannelPlace& place,
                                         const PodcastEpisode& episode) {
  OVUmsDeviceNotifier& notifier = run.notifier();
  const uint64_t before = notifier.currentTransferSize();
  uint32_t errorNumber = kErrorNone;  // the destination leaves it alone after a good write
  FileOutcome outcome;
  outcome.result =
      destination_->syncWriteFileToDevice(describedFor(episode), place.name, request_.storageIndex,
                                          request_.mediaType, false, progress_, &notifier, &errorNumber);
  outcome.errorNumber = errorNumber;
  outcome.bytes = notifier.currentTransferSize() - before;
  run.setError(errorNumber);
  return outcome;
}

/// For destinations that report an existing file; a `UMSService` replaces it without a word.
std::optional<PodcastDeviceToDevice::Next> PodcastDeviceToDevice::settleConflict(
    PodcastRun& run, const ChannelPlace& place, const PodcastEpisode& episode, FileOutcome& outcome) {
  const uint64_t size = tools_.media.files.mediaFileSize(episode.source);
  if (!run.conversation().replaces(*delegate_, *episode.source)) return run.skipped(episode, size);
  outcome = write(run, place, episode);
  if (isStopCode(*outcome.errorNumber)) return run.stopped(episode, outcome);
  return std::nullopt;
}

PodcastDeviceToDevice::Next PodcastDeviceToDevice::conclude(PodcastRun& run, const PodcastChannel& channel,
                                                            const ChannelPlace& place, ChannelIndex& index,
                                                            PodcastEpisode& episode,
                                                            const FileOutcome& outcome) {
  run.notifier().setTransferResult(*outcome.errorNumber);
  if (outcome.errorNumber == kErrorVolumeFull) return run.volumeFull(channel, episode, outcome);
  if (!outcome.result || outcome.errorNumber != kErrorNone) {
    context_.log.write(1, kDeviceToDeviceMethod, "Podcast Download %@ to %@ failed.", episode.source,
                       episode.target);
    return run.failed(episode, place, outcome);
  }
  // A destination that could not make its folder answers YES all the same; the observer is told the truth.
  const bool nothingCame = outcome.bytes == 0 && observedSize(*episode.source) > 0;
  episode.dictionary->set(key::kFilePath, lastPathComponent(*episode.source));
  index.add(*episode.dictionary);
  run.show(place, index);
  attachMediaInfo(tools_.media, run.notifier(), *episode.target);
  if (!nothingCame) return run.done(episode, outcome);
  inAnyCase(
      context_, [&] { run.notifier().incCurrentTransferFileCount(); },
      [&] {
        run.ledger().count({ItemOutcome::Kind::Failed, kErrorCreateFolderFailed, episode.target});
      });
  return Next::GoOn;
}

/// For the observer's sake only: 0 when nobody listens.
uint64_t PodcastDeviceToDevice::observedSize(const std::string& source) const {
  auto found = context_.files().linkAttributes(source);
  return context_.environment.itemObserver && found ? found->size : 0;
}

}  // namespace umsservice
