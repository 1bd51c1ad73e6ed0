#include "MediaSync.h"

#include "MediaFallOver.h"
#include "OnException.h"
#include "umsservice/ErrorNumbers.h"

namespace umsservice {
namespace {

constexpr auto kSyncMethod = "-[UMSService doSyncMediaContents:]";

}  // namespace

bool MediaSync::run() {
  if (request_.mediaType == kMediaPodcast) {
    context_.log.write(3, kSyncMethod, "Media Type is not podcast. Media Type = %d", request_.mediaType);
    return false;
  }
  const MaybeString location = context_.identity.currentLocationID();
  MediaRun run(tools_, request_, kSyncMethod, location, location, context_.identity.modelName());
  return run.carryOut([&] { return chooseVolume(run) && prepareFolder(run); },
                      [&](MediaItem item) { return syncItem(run, std::move(item)); });
}

bool MediaSync::chooseVolume(MediaRun& run) {
  MaybeString path = context_.volumes.volumePathWithOption(request_.isStartInternal != 0, storageIndex_);
  if (path) {
    volumePath_ = *path;
    run.notifier().setStorageIndex(storageIndex_);
    return true;
  }
  context_.log.write(3, kSyncMethod, "Get Volume Path is failed.");
  inAnyCase(
      context_, [&] { run.notifier().incFailTransferFileCount(); },  // one failure for the whole list
      [&] { run.tellAll(ItemOutcome::Kind::Failed, kErrorInvalidInput); });
  return false;
}

bool MediaSync::prepareFolder(MediaRun& run) {
  MaybeString folder = context_.defaultFolders.defaultUmsMediaPath(storageIndex_, request_.mediaType);
  if (!folder) {
    context_.log.write(3, kSyncMethod, "Consist of Media Default Path is failed.");
    run.notifier().setTransferResult(kErrorBadSyncItem);
    run.allFailed(kErrorBadSyncItem);
    return false;
  }
  folder_ = context_.environment.placementRules->syncFolder(volumePath_, *folder);
  if (context_.isReleased()) return true;  // the first item tells of it; the volume may be another one by now
  std::string words;
  if (tools_.folders.createFolder(folder_, &words)) return true;
  context_.log.write(1, kSyncMethod, "Create Folder for %@ is failed", folder);
  run.notifier().setTransferResult(kErrorCreateFolderFailed);
  run.notifier().setFilePath(folder);
  run.allFailed(kErrorCreateFolderFailed, words);
  return false;
}

MediaSync::Next MediaSync::syncItem(MediaRun& run, MediaItem item) {
  if (run.endsForCancel()) return Next::EndRun;
  run.begin();
  if (auto next = run.refuseIncomplete(item, kErrorBadSyncItem)) return *next;
  item.destFolder = folder_;
  if (auto next = run.formTarget(item, kErrorBadSyncItem)) return *next;
  if (run.endsForRelease(item)) return Next::EndRun;
  FileOutcome outcome = run.copyFile(item);
  if (isStopCode(outcome.errorNumber.value_or(0))) return run.stopped(item, outcome);
  if (outcome.errorNumber == kErrorFileExists) {
    if (auto next = settleConflict(run, item, outcome)) return *next;
  }
  const uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  run.notifier().setTransferResult(errorNumber);
  if (!outcome.result || errorNumber != kErrorNone) return tryOtherVolumes(run, item, outcome);
  run.attachMediaInfo(*item.filePath);
  return run.done(item, outcome);
}

std::optional<MediaSync::Next> MediaSync::settleConflict(MediaRun& run, const MediaItem& item,
                                                         FileOutcome& outcome) {
  if (!replacesUnasked(request_.serviceID)) return run.settleConflict(item, conversation_, outcome);
  if (!tools_.files.isReplaceable(item.destPath)) return std::nullopt;
  if (tools_.files.isSameFile(item.filePath, item.destPath))
    return run.skipped(item, tools_.files.mediaFileSize(item.filePath));
  return run.replaceExisting(item, outcome);
}

MediaSync::Next MediaSync::tryOtherVolumes(MediaRun& run, const MediaItem& item, const FileOutcome& first) {
  context_.log.write(1, kSyncMethod, "Sync %@ to %@ failed. Send Next Storage.", item.filePath,
                     item.destPath);
  MediaFallOver fallOver(tools_, run.notifier(), request_.serviceID, storageIndex_, request_.mediaType);
  FileOutcome outcome = fallOver.place(item.filePath, first);
  const uint32_t answer = outcome.errorNumber.value_or(kErrorNone);
  if (isStopCode(answer)) return run.stopped(item, outcome);
  inAnyCase(
      context_, [&] { concludeFallOver(run, item, answer); },
      [&] { tellFallOver(run, item, fallOver, outcome); });
  return Next::GoOn;
}

void MediaSync::concludeFallOver(MediaRun& run, const MediaItem& item, uint32_t answer) {
  run.notifier().setTransferResult(answer);
  if (answer == kErrorNone) {
    run.attachMediaInfo(*item.filePath);
    run.notifier().incCurrentTransferFileCount();
  } else {
    run.notifier().incFailTransferFileCount();
  }
  if (answer != kErrorVolumeFull || fullVolumeAnnounced_) return;
  run.notifier().sendResultNotification();
  fullVolumeAnnounced_ = true;
}

/// The observer is told what really became of the file, whatever the answer made of it.
void MediaSync::tellFallOver(MediaRun& run, const MediaItem& item, const MediaFallOver& fallOver,
                             const FileOutcome& outcome) {
  MediaItem placed = item;
  placed.destPath = fallOver.destPath();
  const uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  if (outcome.result && errorNumber == kErrorNone) {
    run.tell(placed, ItemOutcome::Kind::Done, kErrorNone, outcome.bytes);
  } else if (fallOver.wasDeclined()) {
    run.tell(placed, ItemOutcome::Kind::Skipped, kErrorFileExists);
  } else {
    run.tell(item, ItemOutcome::Kind::Failed,
             errorNumber == kErrorNone ? uint32_t{kErrorCopyFailed} : errorNumber, outcome.bytes,
             outcome.reason);
  }
}

}  // namespace umsservice
