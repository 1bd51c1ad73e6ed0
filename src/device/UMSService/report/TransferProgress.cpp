#include "umsservice/TransferProgress.h"

namespace umsservice {

TransferProgress TransferProgress::read(const Dictionary& userInfo) {
  auto number = [&userInfo](const char* name) { return userInfo.get(name).unsignedIntValue(); };
  TransferProgress progress;
  progress.serviceID = number(key::kServiceID);
  progress.mediaType = static_cast<MediaType>(number(key::kMediaNotiType));
  progress.current = number(key::kCurrent);
  progress.max = number(key::kMax);
  progress.fail = number(key::kFail);
  progress.transferStatus = static_cast<TransferStatus>(number(key::kTransferStatus));
  progress.currentProgress = number(key::kCurrentProgress);
  progress.maxProgress = number(key::kMaxProgress);
  progress.locationID = userInfo.string(key::kLocationId);
  progress.fileName = userInfo.string(key::kFileName);
  progress.deviceName = userInfo.string(key::kDeviceName);
  return progress;
}

std::optional<TransferProgress> TransferProgress::read(const Notification& notification) {
  if (notification.name != kTransferProgressNotification) return std::nullopt;
  return read(notification.userInfo);
}

}  // namespace umsservice
