#include "DirectCopy.h"

#include "Paths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;

class Progress final : public TransferCallback {
 public:
  explicit Progress(const DirectCopy& copy) : copy_(copy) {}

  /// Sizes arrive cut to 32 bits; what was added since the last call never is more than that.
  bool transferProgressInfo(TransferContext*, uint32_t maxTransferSize,
                            uint32_t currentTransferSize) override {
    bytes_ += currentTransferSize - static_cast<uint32_t>(bytes_);
    copy_.moved(bytes_);
    return currentTransferSize == maxTransferSize || copy_.isWanted();
  }
  bool transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                              uint64_t currentTransferSize) override {
    return transferProgressInfo(context, static_cast<uint32_t>(maxTransferSize),
                                static_cast<uint32_t>(currentTransferSize));
  }

  uint64_t bytes() const { return bytes_; }

 private:
  const DirectCopy& copy_;
  uint64_t bytes_ = 0;
};

/// One number stands for several failures; a look at both ends tells which it was.
void explain(FileSystem& files, ItemOutcome& outcome) {
  if (outcome.errorNumber != kErrorInvalidInput) return;
  auto opened = files.openForReading(*outcome.path);
  auto made = files.createFolders(outcome.destPath->substr(0, outcome.destPath->rfind('/')));
  outcome.errorNumber = opened ? kErrorCreateFolderFailed : kErrorOpenFailed;
  if (!opened) outcome.reason = opened.error().words();
  if (opened && !made) outcome.reason = made.error().words();
}

}  // namespace

ItemOutcome DirectCopy::run(Device& device, Method method, bool isOverWrite) const {
  ItemOutcome outcome;
  outcome.path = source;
  outcome.destPath = destination;
  // In full: the free space is held against it.
  Dictionary information{{key::kFilePath, source},
                         {key::kFileName, lastComponent(source)},
                         {key::kFileSize, device.service().fileSizeAtDevice(source)}};
  auto progress = std::make_shared<Progress>(*this);
  bool isDone = (device.service().*method)(information, destination, 0, 0, isOverWrite, progress, nullptr,
                                           &outcome.errorNumber);
  outcome.bytes = progress->bytes();
  if (isDone) {
    outcome.errorNumber = kErrorNone;
    return outcome;
  }
  outcome.kind = isStopCode(outcome.errorNumber) ? ItemOutcome::Kind::NotReached : ItemOutcome::Kind::Failed;
  explain(device.files(), outcome);
  return outcome;
}

}  // namespace umsctl
