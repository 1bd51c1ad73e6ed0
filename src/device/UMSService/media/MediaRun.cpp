#include "MediaRun.h"

#include "OnException.h"
#include "StoppedRun.h"
#include "TargetPath.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {

void notifySkipped(MediaTools& tools, OVUmsDeviceNotifier& notifier, uint64_t size) {
  notifier.setTransferResult(kErrorFileExists);
  tools.reports.transferProgressInfoEx(&notifier, size, size);
  notifier.incCurrentTransferFileCount();
}

void endForException(ServiceContext& context, const _serviceinfo& request, OVUmsDeviceNotifier& notifier) {
  context.cancelList.removeEvery(request.serviceID);
  auto tell = [&] {
    const int32_t status = notifier.currentTransferStatus();
    if (status != kTransferFinished && status != kTransferCancelled) notifier.cancelFileTransfer();
  };
  inAnyCase(context, tell, [&] { StoppedRun::hasToldItsEnd(request); });
}

void attachMediaInfo(const MediaTools& tools, OVUmsDeviceNotifier& notifier, const std::string& path,
                     const MaybeString& shownPath) {
  const auto& factory = tools.context.environment.mediaInfoFactory;
  auto builder = factory ? factory->getBuilder(path) : nullptr;
  MaybeDictionary mediaInfo = builder ? builder->build(path) : std::nullopt;
  if (!mediaInfo) return;
  if (shownPath) mediaInfo->set(key::kFilePath, *shownPath);
  notifier.setMediaInfo(mediaInfo);
}

MediaRun::MediaRun(MediaTools& tools, const _serviceinfo& request, const char* method,
                   const MaybeString& srcLocationID, const MaybeString& destLocationID,
                   const MaybeString& deviceName)
    : tools_(tools),
      context_(tools.context),
      cancelList_(tools.context.cancelList),
      request_(request),
      method_(method),
      contents_(request.contents.value_or(Array()).elements()),
      ownNotifier_(OVUmsDeviceNotifier::forRun(context_.environment, srcLocationID, destLocationID,
                                               request.serviceID, request.mediaType, deviceName,
                                               request.storageIndex, static_cast<uint32_t>(contents_->size()),
                                               tools.files.totalMediaContentsSize(request.contents))),
      notifier_(*ownNotifier_) {
  notifier_.setCurrentTransferStatus(kTransferRunning);
}

bool MediaRun::carryOut(const std::function<bool()>& prepare, const std::function<Next(MediaItem)>& step) {
  OnException end(context_, [this] {
    inAnyCase(
        context_, [this] { endForException(context_, request_, notifier_); },
        [this] { tellRestNotReached(kErrorOperationFailed); });
  });
  const bool isReady = !prepare || prepare();
  for (size_t i = 0; isReady && i < count(); ++i) {
    if (step(item(i)) == Next::EndRun) break;
  }
  end.over();
  return isReady && lastResult_;
}

MediaItem MediaRun::item(size_t index) const {
  MediaItem item;
  item.index = index;
  if (index < contents_->size()) item.content = (*contents_)[index].dictionary();
  if (!item.content) return item;
  item.filePath = item.content->string(key::kFilePath);
  item.fileName = item.content->string(key::kFileName);
  return item;
}

void MediaRun::begin() {
  notifier_.setMediaInfo(std::nullopt);
}

std::optional<MediaRun::Next> MediaRun::refuseIncomplete(const MediaItem& item, uint32_t errorNumber) {
  if (!item.content) {
    context_.log.write(1, method_, "Contents data is nil. Next data search");
    return refused(item, errorNumber);
  }
  if (item.filePath && item.fileName) return std::nullopt;
  context_.log.write(1, method_, "Get contents information is failed. filePath = %@, name = %@",
                     item.filePath, item.fileName);
  return refused(item, errorNumber);
}

std::optional<MediaRun::Next> MediaRun::formTarget(MediaItem& item, uint32_t errorNumber) {
  item.destPath = targetPath(item.destFolder, *item.fileName);
  if (!item.destPath) {
    context_.log.write(1, method_, "Consist of Target Path Name is failed");
    return refused(item, errorNumber);
  }
  notifier_.setFilePath(item.destPath);
  return std::nullopt;
}

FileOutcome MediaRun::copyFile(const MediaItem& item) {
  FileOutcome outcome = tools_.files.copy(request_.serviceID, item.filePath, item.destPath, &notifier_);
  lastResult_ = outcome.result;
  return outcome;
}

std::optional<MediaRun::Next> MediaRun::replaceExisting(const MediaItem& item, FileOutcome& outcome) {
  // The question may have been open for long: nothing is removed any more for a copy that will not be made.
  if (endsForRelease(item)) return Next::EndRun;
  if (cancelList_.isCancelServiceId(request_.serviceID)) return stopped(item, {.errorNumber = kErrorStopped});
  outcome = tools_.files.removeInFavourOf(*item.filePath, *item.destPath);
  lastResult_ = outcome.result;
  if (!outcome.result) return std::nullopt;
  if (endsForRelease(item)) return Next::EndRun;
  outcome = copyFile(item);
  if (isStopCode(outcome.errorNumber.value_or(0))) return stopped(item, outcome);
  return std::nullopt;
}

std::optional<MediaRun::Next> MediaRun::settleConflict(const MediaItem& item,
                                                       OverwriteConversation& conversation,
                                                       FileOutcome& outcome) {
  auto delegate = context_.identity.confirmDelegate();
  if (!delegate || !tools_.files.isReplaceable(item.destPath)) return std::nullopt;
  const uint64_t size = tools_.files.mediaFileSize(item.filePath);
  if (tools_.files.isSameFile(item.filePath, item.destPath) ||
      !conversation.replaces(*delegate, *item.filePath))
    return skipped(item, size);
  return replaceExisting(item, outcome);
}

bool MediaRun::endsForCancel() {
  if (!cancelList_.isCancelServiceId(request_.serviceID)) return false;
  notifier_.cancelFileTransfer();
  cancelList_.removeEvery(request_.serviceID);
  tellRestNotReached(kErrorStopped);
  return true;
}

bool MediaRun::endsForRelease(const MediaItem& item) {
  if (!context_.isReleased()) return false;
  context_.log.write(5, method_, "Device Disconnected - %@", context_.identity.currentLocationID());
  notifier_.cancelFileTransfer();
  tell(item, ItemOutcome::Kind::NotReached, kErrorStopped);
  tellRestNotReached(kErrorStopped);
  return true;
}

MediaRun::Next MediaRun::stopped(const MediaItem& item, const FileOutcome& outcome) {
  inAnyCase(
      context_, [&] { notifier_.cancelFileTransfer(); },
      [&] {
        tell(item, ItemOutcome::Kind::NotReached, outcome.errorNumber.value_or(kErrorStopped), outcome.bytes);
      });
  cancelList_.removeEvery(request_.serviceID);
  tellRestNotReached(kErrorStopped);
  return Next::EndRun;
}

MediaRun::Next MediaRun::volumeFull(const MediaItem& item, const FileOutcome& outcome) {
  inAnyCase(
      context_,
      [&] {
        notifier_.addFailTransferFileCount(static_cast<uint32_t>(count() - item.index));
        notifier_.sendResultNotification();
      },
      [&] {
        tell(item, ItemOutcome::Kind::Failed, kErrorVolumeFull, outcome.bytes, outcome.reason);
        tellRestNotReached(kErrorVolumeFull);
      });
  return Next::EndRun;
}

MediaRun::Next MediaRun::failed(const MediaItem& item, const FileOutcome& outcome) {
  // A file that could not be created keeps the result that was there before; the observer is told the cause.
  uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  if (errorNumber == kErrorNone) errorNumber = kErrorCopyFailed;
  inAnyCase(
      context_, [&] { notifier_.incFailTransferFileCount(); },
      [&] { tell(item, ItemOutcome::Kind::Failed, errorNumber, outcome.bytes, outcome.reason); });
  return Next::GoOn;
}

MediaRun::Next MediaRun::refused(const MediaItem& item, uint32_t errorNumber, const std::string& reason) {
  notifier_.setTransferResult(errorNumber);
  return failed(item, FileOutcome{.errorNumber = errorNumber, .reason = reason});
}

MediaRun::Next MediaRun::skipped(const MediaItem& item, uint64_t size) {
  inAnyCase(
      context_, [&] { notifySkipped(tools_, notifier_, size); },
      [&] { tell(item, ItemOutcome::Kind::Skipped, kErrorFileExists); });
  return Next::GoOn;
}

MediaRun::Next MediaRun::done(const MediaItem& item, const FileOutcome& outcome) {
  inAnyCase(
      context_, [&] { notifier_.incCurrentTransferFileCount(); },
      [&] { tell(item, ItemOutcome::Kind::Done, kErrorNone, outcome.bytes); });
  return Next::GoOn;
}

void MediaRun::allFailed(uint32_t errorNumber, const std::string& reason) {
  inAnyCase(
      context_, [&] { notifier_.addFailTransferFileCount(static_cast<uint32_t>(count())); },
      [&] { tellAll(ItemOutcome::Kind::Failed, errorNumber, reason); });
}

void MediaRun::tellAll(ItemOutcome::Kind kind, uint32_t errorNumber, const std::string& reason) {
  for (size_t i = 0; i < count(); ++i) tell(item(i), kind, errorNumber, 0, reason);
}

uint64_t MediaRun::observedSize(const std::string& path) const {
  if (!context_.environment.itemObserver) return 0;
  auto found = context_.files().linkAttributes(path);
  return found && found->type == FileType::Regular ? found->size : 0;
}

void MediaRun::tell(const MediaItem& item, ItemOutcome::Kind kind, uint32_t errorNumber, uint64_t bytes,
                    const std::string& reason) {
  untold_ = item.index + 1;
  const auto& observer = context_.environment.itemObserver;
  if (!observer) return;
  observer->itemCounted(
      {request_.serviceID, item.index, kind, item.filePath, item.destPath, errorNumber, bytes, reason});
}

void MediaRun::tellRestNotReached(uint32_t errorNumber) {
  if (!context_.environment.itemObserver) return;
  while (untold_ < count()) tell(readableItem(untold_), ItemOutcome::Kind::NotReached, errorNumber);
}

/// One whose dictionary throws is told by its place alone.
MediaItem MediaRun::readableItem(size_t index) const {
  MediaItem found;
  found.index = index;
  runsToItsEnd(context_, [&] { found = item(index); });
  return found;
}

}  // namespace umsservice
