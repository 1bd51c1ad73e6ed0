#include "MediaFallOver.h"

#include "StringPaths.h"
#include "TargetPath.h"
#include "umsservice/ErrorNumbers.h"

namespace umsservice {
namespace {

constexpr auto kFallOverMethod = "-[UMSService syncUmsFile:atPath:index:mediaType:mediaData:context:]";

}  // namespace

FileOutcome MediaFallOver::place(const MaybeString& srcPath, const FileOutcome& first) {
  srcPath_ = srcPath;
  outcome_ = {.errorNumber = notifier_.transferResult(), .bytes = first.bytes, .reason = first.reason};
  if (!isPossible()) {
    outcome_.errorNumber = kErrorInvalidInput;
    return outcome_;
  }
  Step step = Step::NextVolume;
  const auto volumes = static_cast<uint32_t>(context_.volumes.count());
  for (uint32_t i = 0; i < volumes && step == Step::NextVolume; ++i) {
    if (i != failedIndex_) step = tryVolume(i);
  }
  if (step == Step::Placed) return outcome_;
  if (!outcome_.result || outcome_.errorNumber != kErrorNone) {
    context_.log.write(1, kFallOverMethod, "Sync %@ failed.", srcPath_);
  }
  return outcome_;
}

bool MediaFallOver::isPossible() const {
  if (!srcPath_) {
    context_.log.write(1, kFallOverMethod, "Input Parameters is nil.");
    return false;
  }
  size_t count = context_.volumes.count();
  if (failedIndex_ < count) return true;
  context_.log.write(1, kFallOverMethod,
                     "Input Parameter is invalid. Volume is not support. volumeIndex = %d, disk count = %d",
                     failedIndex_, count);
  return false;
}

MediaFallOver::Step MediaFallOver::tryVolume(uint32_t index) {
  if (!prepareFolder(index)) return Step::NextVolume;
  destPath_ = targetPath(destFolder_, lastPathComponent(*srcPath_));
  if (!destPath_) {
    context_.log.write(1, kFallOverMethod, "Consist of Target Path Name is failed");
    return Step::NextVolume;
  }
  if (isCancelled() || isReleased()) return Step::Stop;
  std::optional<uint32_t> errorNumber = copyNow();
  if (isStopCode(errorNumber.value_or(kErrorNone))) return Step::Stop;
  if (errorNumber == kErrorFileExists) {
    if (auto step = settleConflict()) return *step;
  }
  if (outcome_.result && outcome_.errorNumber == kErrorNone) return Step::Placed;
  context_.log.write(1, kFallOverMethod, "Sync %@ to %@ failed. Send Next Storage", srcPath_, destPath_);
  return Step::NextVolume;
}

bool MediaFallOver::prepareFolder(uint32_t index) {
  const PlacementRules& placement = *context_.environment.placementRules;
  MaybeString volumePath = context_.volumes.volumePath(placement.fallOverVolume(failedIndex_, index));
  if (!volumePath) {
    context_.log.write(3, kFallOverMethod, "Get Volume Path is failed.");
    return false;
  }
  notifier_.setStorageIndex(index);
  MaybeString folder = context_.defaultFolders.defaultUmsMediaPath(index, mediaType_);
  if (!folder) {
    context_.log.write(3, kFallOverMethod, "Consist of Media Default Path is failed.");
    return false;
  }
  destFolder_ = placement.syncFolder(*volumePath, *folder);
  std::string made = placement.fallOverFolder(*destFolder_, *folder);
  if (tools_.folders.createFolder(made)) return true;
  context_.log.write(1, kFallOverMethod, "Create Folder for %@ is failed", made);
  notifier_.setTransferResult(kErrorCreateFolderFailed);
  notifier_.setFilePath(made);
  return false;
}

bool MediaFallOver::isCancelled() {
  if (!context_.cancelList.isCancelServiceId(serviceID_)) return false;
  outcome_ = {.errorNumber = kErrorStopped};
  return true;
}

/// The number stays what it is: a shutdown has none of its own here.
bool MediaFallOver::isReleased() {
  if (!context_.isReleased()) return false;
  context_.log.write(5, kFallOverMethod, "Device Disconnected - %@", context_.identity.currentLocationID());
  notifier_.cancelFileTransfer();
  return true;
}

/// Copies to the present candidate and gives the copy's own number. Where it has none, the number of the
/// volume before stays.
std::optional<uint32_t> MediaFallOver::copyNow() {
  const auto before = outcome_.errorNumber;
  outcome_ = tools_.files.copy(serviceID_, srcPath_, destPath_, &notifier_);
  const auto own = outcome_.errorNumber;
  if (!own) outcome_.errorNumber = before;
  return own;
}

std::optional<MediaFallOver::Step> MediaFallOver::settleConflict() {
  auto delegate = context_.identity.confirmDelegate();
  if (!delegate || !tools_.files.isReplaceable(destPath_)) return std::nullopt;
  const uint64_t size = tools_.files.mediaFileSize(srcPath_);
  if (tools_.files.isSameFile(srcPath_, destPath_) || !conversation_.replaces(*delegate, *srcPath_)) {
    notifySkipped(tools_, notifier_, size);
    declined_ = true;
    return Step::NextVolume;  // declined here, the file may still go to a further volume
  }
  outcome_ = tools_.files.removeInFavourOf(*srcPath_, *destPath_);
  if (!outcome_.result) return std::nullopt;
  outcome_.result = false;  // the file is gone and nothing has taken its place yet
  if (isReleased() || isStopCode(copyNow().value_or(kErrorNone))) return Step::Stop;
  return std::nullopt;
}

}  // namespace umsservice
