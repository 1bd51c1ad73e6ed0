#include "MediaRun.h"

#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {

MediaRun::MediaRun(MediaTools& tools, const _serviceinfo& request, const char* method,
                   const MaybeString& srcLocationID, const MaybeString& destLocationID,
                   const MaybeString& deviceName)
    : tools_(tools),
      context_(tools.context),
      cancelList_(tools.context.cancelList),
      request_(request),
      method_(method),
      contents_(request.contents ? request.contents->snapshot() : std::vector<Value>()),
      notifier_(context_.environment, srcLocationID, destLocationID, request.serviceID, request.mediaType,
                deviceName, request.storageIndex, static_cast<uint32_t>(contents_.size()),
                tools.files.totalMediaContentsSize(request.contents)) {
  notifier_.setCurrentTransferStatus(kTransferRunning);
}

MediaItem MediaRun::item(size_t index) const {
  MediaItem item;
  item.index = index;
  if (index < contents_.size()) item.content = contents_[index].dictionary();
  if (!item.content) return item;
  item.filePath = item.content->string(key::kFilePath);
  item.fileName = item.content->string(key::kFileName);
  return item;
}

void MediaRun::begin() {
  notifier_.setMediaInfo(std::nullopt);
}

bool MediaRun::endsForCancel(const MediaItem& item) {
  if (!cancelList_.isCancelServiceId(request_.serviceID)) return false;
  notifier_.cancelFileTransfer();
  cancelList_.removeCancelServiceId(request_.serviceID);
  tellRestNotReached(item.index, kErrorStopped);
  return true;
}

bool MediaRun::endsForRelease(const MediaItem& item) {
  if (!context_.isReleased()) return false;
  context_.log.write(5, method_, "Device Disconnected - %@", context_.identity.currentLocationID());
  notifier_.cancelFileTransfer();
  tellRestNotReached(item.index, kErrorStopped);
  return true;
}

MediaRun::Next MediaRun::stopped(const MediaItem& item, const FileOutcome& outcome) {
  notifier_.cancelFileTransfer();
  cancelList_.removeCancelServiceId(request_.serviceID);
  tell(item, ItemOutcome::Kind::NotReached, outcome.errorNumber.value_or(kErrorStopped), outcome.bytes);
  tellRestNotReached(item.index + 1, kErrorStopped);
  return Next::EndRun;
}

MediaRun::Next MediaRun::volumeFull(const MediaItem& item, const FileOutcome& outcome) {
  notifier_.addFailTransferFileCount(static_cast<uint32_t>(count() - item.index));
  notifier_.sendResultNotification();
  tell(item, ItemOutcome::Kind::Failed, kErrorVolumeFull, outcome.bytes, outcome.reason);
  tellRestNotReached(item.index + 1, kErrorVolumeFull);
  return Next::EndRun;
}

MediaRun::Next MediaRun::failed(const MediaItem& item, const FileOutcome& outcome) {
  notifier_.incFailTransferFileCount();
  // A file that could not be created keeps the result that was there before; the observer is told the cause.
  uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  if (errorNumber == kErrorNone) errorNumber = kErrorCopyFailed;
  tell(item, ItemOutcome::Kind::Failed, errorNumber, outcome.bytes, outcome.reason);
  return Next::GoOn;
}

MediaRun::Next MediaRun::refused(const MediaItem& item, uint32_t errorNumber) {
  notifier_.setTransferResult(errorNumber);
  return failed(item, FileOutcome{.errorNumber = errorNumber});
}

MediaRun::Next MediaRun::skipped(const MediaItem& item) {
  uint64_t size = tools_.files.mediaFileSize(item.filePath);
  notifier_.setTransferResult(kErrorFileExists);
  tools_.reports.transferProgressInfoEx(&notifier_, size, size);
  notifier_.incCurrentTransferFileCount();
  tell(item, ItemOutcome::Kind::Skipped, kErrorFileExists);
  return Next::GoOn;
}

MediaRun::Next MediaRun::done(const MediaItem& item, const FileOutcome& outcome) {
  notifier_.incCurrentTransferFileCount();
  tell(item, ItemOutcome::Kind::Done, kErrorNone, outcome.bytes);
  return Next::GoOn;
}

void MediaRun::allFailed(uint32_t errorNumber) {
  notifier_.addFailTransferFileCount(static_cast<uint32_t>(count()));
  for (size_t i = 0; i < count(); ++i) tell(item(i), ItemOutcome::Kind::Failed, errorNumber);
}

bool MediaRun::isReplaceable(const MediaItem& item) const {
  auto existing = context_.files().linkAttributes(*item.destPath);
  return !existing || existing->type != FileType::Directory;
}

bool MediaRun::isSameFile(const MediaItem& item) const {
  auto source = context_.files().attributes(*item.filePath);
  auto existing = context_.files().attributes(*item.destPath);
  return source && existing && source->device == existing->device && source->inode == existing->inode;
}

void MediaRun::attachMediaInfo(const std::string& path) {
  const auto& factory = context_.environment.mediaInfoFactory;
  auto builder = factory ? factory->getBuilder(path) : nullptr;
  MaybeDictionary mediaInfo = builder ? builder->build(path) : std::nullopt;
  if (mediaInfo) notifier_.setMediaInfo(mediaInfo);
}

void MediaRun::tell(const MediaItem& item, ItemOutcome::Kind kind, uint32_t errorNumber, uint64_t bytes,
                    const std::string& reason) {
  const auto& observer = context_.environment.itemObserver;
  if (!observer) return;
  observer->itemCounted(
      {request_.serviceID, item.index, kind, item.filePath, item.destPath, errorNumber, bytes, reason});
}

void MediaRun::tellRestNotReached(size_t from, uint32_t errorNumber) {
  for (size_t i = from; i < count(); ++i) tell(item(i), ItemOutcome::Kind::NotReached, errorNumber);
}

}  // namespace umsservice
