#include "PodcastSync.h"

#include "umsservice/ErrorNumbers.h"

namespace umsservice {
namespace {

constexpr auto kSyncMethod = "-[UMSService doSyncPodcastContents:]";
/// Of an episode without a path only the count tells the host.
constexpr PodcastChannelSync::Manner kSyncManner = {
    kSyncMethod, {kErrorBadSyncItem, std::nullopt, kErrorBadSyncItem}, false};

}  // namespace

bool PodcastSync::run() {
  if (!PodcastRun::isForPodcasts(context_, request_, kSyncMethod)) return false;
  PodcastRun::Scope scope = PodcastRun::onThisDevice(context_, request_);
  scope.storageIndex = 0;  // not chosen yet
  scope.bytes = tools_.sizes.totalPodcastFileSize(request_.contents, scope.episodes);
  PodcastRun run(tools_, request_, scope);
  if (!chooseVolume(run)) return false;
  run.carryOut(kSyncMethod, [&](const PodcastChannel& channel) { return syncChannel(run, channel); });
  return status_;
}

bool PodcastSync::chooseVolume(PodcastRun& run) {
  MaybeString path = context_.volumes.volumePathWithOption(request_.isStartInternal != 0, storageIndex_);
  if (!path) {
    context_.log.write(3, kSyncMethod, "Get Storage Path is failed.");
    run.ledger().countRest({ItemOutcome::Kind::Failed, kErrorInvalidInput});
    return false;
  }
  volumePath_ = *path;
  MaybeString folder = context_.defaultFolders.defaultUmsMediaPath(storageIndex_, request_.mediaType);
  if (folder) podcastFolder_ = context_.environment.placementRules->syncFolder(volumePath_, *folder);
  return true;
}

bool PodcastSync::syncChannel(PodcastRun& run, const PodcastChannel& channel) {
  if (!channel.dictionary) {
    run.refuseNilChannel(channel, kErrorBadSyncItem, kSyncMethod);
    return true;
  }
  auto place = podcastFolder_ ? run.placeOf(channel, podcastFolder_) : std::nullopt;
  if (!place) {
    context_.log.write(3, kSyncMethod, "Consist of Podcast Default Path is failed.");
    run.refuseChannel(channel, kErrorBadSyncItem);
    return true;
  }
  if (!run.hasEpisodes(channel, kSyncMethod)) return true;
  if (!tools_.sizes.checkUmsPodcastEpisodeSize(volumePath_, Array(*channel.episodes))) {
    tryOtherVolumes(run, channel);
    return true;
  }
  run.notifier().setStorageIndex(storageIndex_);  // a fall-over before has left its own
  PodcastChannelSync sync(tools_, run, request_.serviceID, kSyncManner);
  auto end = sync.sync(channel, *place, place->folder);
  if (end == PodcastChannelSync::End::Released) return false;
  run.ledger().countRestOf(channel, {ItemOutcome::Kind::NotReached, kErrorStopped});
  status_ = end == PodcastChannelSync::End::Written;
  return true;
}

void PodcastSync::tryOtherVolumes(PodcastRun& run, const PodcastChannel& channel) {
  context_.log.write(5, kSyncMethod, "%@ volume not enought memory. Send Next volume", volumePath_);
  PodcastFallOver fallOver(tools_, run, request_);
  const uint32_t answer = fallOver.place(channel, storageIndex_);
  if (fallOver.wasTried()) status_ = fallOver.wasWritten();
  run.notifier().setTransferResult(answer);
  if (answer == kErrorNone) return;
  run.notifier().addFailTransferFileCount(static_cast<uint32_t>(channel.episodes->size()));
  if (answer != kErrorVolumeFull || fullVolumeAnnounced_) return;
  run.notifier().sendResultNotification();
  fullVolumeAnnounced_ = true;
}

}  // namespace umsservice
