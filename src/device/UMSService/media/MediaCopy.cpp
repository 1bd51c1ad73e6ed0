#include "MediaCopy.h"

#include "MediaTypes.h"
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
      method_(direction == Direction::DeviceToMac ? kToMacMethod : kToDeviceMethod) {}

bool MediaCopy::run() {
  if (direction_ == Direction::DeviceToMac && request_.mediaType == kMediaPodcast) {
    context_.log.write(3, method_, "Media Type is not podcast. Media Type = %d", request_.mediaType);
    return false;
  }
  const MaybeString location = context_.identity.currentLocationID();
  MediaRun run(tools_, request_, method_, location, location, context_.identity.modelName());
  if (request_.playlistName) run.notifier().setPlaylistName(request_.playlistName);
  run.setLastResult(direction_ == Direction::MacToDevice);
  return run.carryOut([&] { return prepare(run); },
                      [&](MediaItem item) { return copyItem(run, std::move(item)); });
}

bool MediaCopy::prepare(MediaRun& run) {
  if (direction_ == Direction::MacToDevice) {
    volumePath_ = context_.volumes.diskVolumeNameFromIndex(request_.storageIndex);
    return true;
  }
  std::string words;
  if (tools_.folders.createFolder(request_.destPath, &words)) return true;
  context_.log.write(1, method_, "Create Folder for %@ is failed", request_.destPath);
  run.notifier().setTransferResult(kErrorCreateFolderFailed);
  run.notifier().setFilePath(request_.destPath);
  run.allFailed(kErrorCreateFolderFailed, words);
  return false;
}

MediaCopy::Next MediaCopy::copyItem(MediaRun& run, MediaItem item) {
  if (run.endsForCancel()) return Next::EndRun;
  run.begin();
  if (auto next = resolveTarget(run, item)) return *next;
  if (run.endsForRelease(item)) return Next::EndRun;
  FileOutcome outcome = run.copyFile(item);
  if (isStopCode(outcome.errorNumber.value_or(0))) return run.stopped(item, outcome);
  if (outcome.errorNumber == kErrorFileExists) {
    if (auto next = run.settleConflict(item, conversation_, outcome)) return *next;
  }
  return conclude(run, item, outcome);
}

/// Finds where the item goes, or counts it as failed.
std::optional<MediaCopy::Next> MediaCopy::resolveTarget(MediaRun& run, MediaItem& item) {
  if (auto next = run.refuseIncomplete(item, kErrorBadCopyItem)) return next;
  item.destFolder = request_.destPath;
  if (direction_ == Direction::MacToDevice) {
    if (auto next = chooseFolder(run, item)) return next;
  }
  return run.formTarget(item, kErrorBadCopyItem);
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
  std::string words;
  if (!tools_.folders.createFolder(item.destFolder, &words)) {
    context_.log.write(1, method_, "Create Folder for %@ is failed", item.destFolder);
    run.notifier().setFilePath(item.destFolder);
    return run.refused(item, kErrorCreateFolderFailed, words);
  }
  context_.log.write(6, method_, "Contents File Path = %@, Name = %@", item.filePath, item.fileName);
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
