#include "DeviceToDevice.h"

#include "OnException.h"
#include "PeerProgress.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kDeviceToDeviceMethod = "-[UMSService doDeviceToDevcieContents:]";

/// A write that was stopped: the destination says NO and gives a stop code.
bool wasStopped(const FileOutcome& outcome) {
  return !outcome.result && isStopCode(outcome.errorNumber.value_or(kErrorNone));
}

}  // namespace

bool DeviceToDevice::run() {
  if (!findDestination()) return false;
  if (request_.mediaType == kMediaPodcast) {
    context_.log.write(3, kDeviceToDeviceMethod, "Media Type is podcast.");
    return false;
  }
  MediaRun run(tools_, request_, kDeviceToDeviceMethod, request_.srcLocationID, request_.destLocationID,
               destination_->modelName());
  if (request_.playlistName) run.notifier().setPlaylistName(request_.playlistName);
  progress_ = std::make_shared<PeerProgress>(tools_, request_.serviceID);
  return run.carryOut({}, [&](MediaItem item) { return sendItem(run, std::move(item)); });
}

bool DeviceToDevice::findDestination() {
  delegate_ = context_.identity.confirmDelegate();
  if (!delegate_) {
    context_.log.write(3, kDeviceToDeviceMethod, "Delegate is nil");
    return false;
  }
  destination_ = delegate_->getFileServiceObject(request_.destLocationID);
  if (!destination_) context_.log.write(3, kDeviceToDeviceMethod, "Get target file service object fail");
  return destination_ != nullptr;
}

DeviceToDevice::Next DeviceToDevice::sendItem(MediaRun& run, MediaItem item) {
  if (run.endsForCancel()) return Next::EndRun;
  run.begin();
  if (auto next = run.refuseIncomplete(item, kErrorBadCopyItem)) return *next;
  item.destFolder = request_.destPath;
  if (auto next = run.formTarget(item, kErrorBadCopyItem)) return *next;
  if (run.endsForRelease(item)) return Next::EndRun;
  FileOutcome outcome = write(run, item, false);
  if (wasStopped(outcome)) return run.stopped(item, outcome);
  if (outcome.errorNumber == kErrorFileExists) {
    if (auto next = settleConflict(run, item, outcome)) return *next;
  }
  return conclude(run, item, outcome);
}

FileOutcome DeviceToDevice::write(MediaRun& run, const MediaItem& item, bool isOverWrite) {
  OVUmsDeviceNotifier& notifier = run.notifier();
  const uint64_t before = notifier.currentTransferSize();
  uint32_t errorNumber = kErrorNone;
  FileOutcome outcome;
  outcome.result = destination_->syncWriteFileToDevice(item.content, std::nullopt, request_.storageIndex,
                                                       request_.mediaType, isOverWrite, progress_, &notifier,
                                                       &errorNumber);
  outcome.errorNumber = errorNumber;
  outcome.bytes = notifier.currentTransferSize() - before;
  run.setLastResult(outcome.result);
  return outcome;
}

/// For destinations that report an existing file; a `UMSService` replaces it without a word.
std::optional<DeviceToDevice::Next> DeviceToDevice::settleConflict(MediaRun& run, const MediaItem& item,
                                                                   FileOutcome& outcome) {
  const uint64_t size = tools_.files.mediaFileSize(item.filePath);
  if (!conversation_.replaces(*delegate_, *item.filePath)) return run.skipped(item, size);
  outcome = write(run, item, true);
  if (wasStopped(outcome)) return run.stopped(item, outcome);
  return std::nullopt;
}

DeviceToDevice::Next DeviceToDevice::conclude(MediaRun& run, const MediaItem& item,
                                              const FileOutcome& outcome) {
  const uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  run.notifier().setTransferResult(errorNumber);
  if (errorNumber == kErrorVolumeFull) return run.volumeFull(item, outcome);
  if (!outcome.result || errorNumber != kErrorNone) return run.failed(item, outcome);
  run.attachMediaInfo(*item.filePath, item.destPath);
  if (hasArrived(item, outcome)) return run.done(item, outcome);
  inAnyCase(
      context_, [&] { run.notifier().incCurrentTransferFileCount(); },
      [&] { run.tell(item, ItemOutcome::Kind::Failed, kErrorCreateFolderFailed); });
  return Next::GoOn;
}

/// A destination that could not make its folder answers YES all the same. The host takes the file for done
/// then; the observer is told the truth.
bool DeviceToDevice::hasArrived(const MediaItem& item, const FileOutcome& outcome) const {
  if (outcome.bytes > 0 || !context_.environment.itemObserver) return true;
  // Nothing was reported: an empty file, or a destination that reports nothing.
  auto source = context_.files().attributes(*item.filePath);
  auto arrived = context_.files().attributes(*item.destPath);
  return source && arrived && source->size == arrived->size;
}

}  // namespace umsservice
