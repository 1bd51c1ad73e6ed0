#include "MediaCopy.h"

#include "MediaTypes.h"
#include "TargetPath.h"
#include "umsservice/ErrorNumbers.h"

namespace umsservice {
namespace {

constexpr auto kToMacMethod = "-[UMSService doCopyMediaContents:]";
constexpr auto kToDeviceMethod = "-[UMSService doCopyMediaContentsForAnyMediaType:]";

}  // namespace

MediaCopy::MediaCopy(MediaTools& tools, const _serviceinfo& request, Direction direction)
    : tools_(tools),
      context_(tools.context),
      request_(request),
      direction_(direction),
      method_(direction == Direction::DeviceToMac ? kToMacMethod : kToDeviceMethod),
      lastResult_(direction == Direction::MacToDevice) {}

bool MediaCopy::run() {
  if (direction_ == Direction::DeviceToMac && request_.mediaType == kMediaPodcast) {
    context_.log.write(3, method_, "Media Type is not podcast. Media Type = %d", request_.mediaType);
    return false;
  }
  const MaybeString location = context_.identity.currentLocationID();
  MediaRun run(tools_, request_, method_, location, location, context_.identity.modelName());
  if (request_.playlistName) run.notifier().setPlaylistName(request_.playlistName);
  if (!prepare(run)) return false;
  for (size_t i = 0; i < run.count(); ++i) {
    if (copyItem(run, run.item(i)) == Next::EndRun) break;
  }
  return lastResult_;
}

bool MediaCopy::prepare(MediaRun& run) {
  if (direction_ == Direction::MacToDevice) {
    volumePath_ = context_.volumes.diskVolumeNameFromIndex(request_.storageIndex);
    return true;
  }
  if (tools_.folders.createFolder(request_.destPath)) return true;
  context_.log.write(1, method_, "Create Folder for %@ is failed", request_.destPath);
  run.notifier().setTransferResult(kErrorCreateFolderFailed);
  run.notifier().setFilePath(request_.destPath);
  run.allFailed(kErrorCreateFolderFailed);
  return false;
}

MediaCopy::Next MediaCopy::copyItem(MediaRun& run, MediaItem item) {
  if (run.endsForCancel(item)) return Next::EndRun;
  run.begin();
  if (auto next = resolveTarget(run, item)) return *next;
  if (run.endsForRelease(item)) return Next::EndRun;
  FileOutcome outcome = copyFile(run, item);
  if (isStopCode(outcome.errorNumber.value_or(0))) return run.stopped(item, outcome);
  if (outcome.errorNumber == kErrorFileExists) {
    if (auto next = settleConflict(run, item, outcome)) return *next;
  }
  return conclude(run, item, outcome);
}

FileOutcome MediaCopy::copyFile(MediaRun& run, const MediaItem& item) {
  FileOutcome outcome = tools_.files.copy(request_.serviceID, item.filePath, item.destPath, &run.notifier());
  lastResult_ = outcome.result;
  return outcome;
}

/// Finds where the item goes, or counts it as failed.
std::optional<MediaCopy::Next> MediaCopy::resolveTarget(MediaRun& run, MediaItem& item) {
  if (!item.content) {
    context_.log.write(1, method_, "Contents data is nil. Next data search");
    return run.refused(item, kErrorBadCopyItem);
  }
  if (!item.filePath || !item.fileName) {
    context_.log.write(1, method_, "Get contents information is failed. filePath = %@, name = %@",
                       item.filePath, item.fileName);
    return run.refused(item, kErrorBadCopyItem);
  }
  item.destFolder = request_.destPath;
  if (direction_ == Direction::MacToDevice) {
    if (auto next = chooseFolder(run, item)) return next;
  }
  item.destPath = targetPath(item.destFolder, *item.fileName);
  if (!item.destPath) {
    context_.log.write(1, method_, "Consist of Target Path Name is failed");
    return run.refused(item, kErrorBadCopyItem);
  }
  run.notifier().setFilePath(item.destPath);
  return std::nullopt;
}

/// One request may mix music, images and video: the folder follows the file's own type.
std::optional<MediaCopy::Next> MediaCopy::chooseFolder(MediaRun& run, MediaItem& item) {
  int32_t mediaType = context_.isReleased() ? int32_t{kMediaUnknown} : mediaTypeOf(*item.fileName);
  if (mediaType == kMediaUnknown || mediaType == kMediaPodcast) {
    context_.log.write(1, method_, "Media type is unknown or podcast. filePath = %@, name = %@",
                       item.filePath, item.fileName);
    return run.refused(item, kErrorUnknownMediaType);
  }
  run.notifier().setMediaType(static_cast<uint32_t>(mediaType));
  // Hosts choose the folder by the volume's index here, not by its type.
  item.destFolder = context_.defaultFolders.defaultMediaContentsPath(
      volumePath_, static_cast<int32_t>(request_.storageIndex), mediaType);
  if (!tools_.folders.createFolder(item.destFolder)) {
    context_.log.write(1, method_, "Create Folder for %@ is failed", item.destFolder);
    run.notifier().setFilePath(item.destFolder);
    return run.refused(item, kErrorCreateFolderFailed);
  }
  context_.log.write(6, method_, "Contents File Path = %@, Name = %@", item.filePath, item.fileName);
  return std::nullopt;
}

/// The destination exists: ask, then replace it or skip the item. Without a delegate, and where nothing may
/// be replaced, the conflict stays the outcome.
std::optional<MediaCopy::Next> MediaCopy::settleConflict(MediaRun& run, const MediaItem& item,
                                                         FileOutcome& outcome) {
  auto delegate = context_.identity.confirmDelegate();
  if (!delegate || !run.isReplaceable(item)) return std::nullopt;
  if (run.isSameFile(item) || !conversation_.replaces(*delegate, *item.filePath)) return run.skipped(item);
  outcome = tools_.files.remove(item.destPath);
  lastResult_ = outcome.result;
  if (!outcome.result) return std::nullopt;
  if (run.endsForRelease(item)) return Next::EndRun;
  outcome = copyFile(run, item);
  if (isStopCode(outcome.errorNumber.value_or(0))) return run.stopped(item, outcome);
  return std::nullopt;
}

MediaCopy::Next MediaCopy::conclude(MediaRun& run, const MediaItem& item, const FileOutcome& outcome) {
  const uint32_t errorNumber = outcome.errorNumber.value_or(0);
  run.notifier().setTransferResult(errorNumber);
  if (errorNumber == kErrorVolumeFull) return run.volumeFull(item, outcome);
  if (outcome.result && errorNumber == kErrorNone) {
    tools_.companions.sendSmiFile(item.filePath, item.destFolder, request_.mediaType);
    run.attachMediaInfo(*item.filePath);
    return run.done(item, outcome);
  }
  context_.log.write(1, method_, "Copy %@ to %@ failed.", item.filePath, item.destPath);
  return run.failed(item, outcome);
}

}  // namespace umsservice
