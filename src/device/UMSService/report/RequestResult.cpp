#include "umsservice/RequestResult.h"

#include "umsservice/Notifications.h"

namespace umsservice {

RequestResult RequestResult::read(const Dictionary& userInfo) {
  RequestResult result;
  result.serviceID = userInfo.get(key::kServiceID).unsignedIntValue();
  result.eventType = userInfo.get(key::kEventType).intValue();
  result.status = static_cast<ErrorNumber>(userInfo.get(key::kStatus).unsignedIntValue());
  result.errorNumber = userInfo.get(key::kErrorNumber).intValue();
  result.diskSize = userInfo.get(key::kDiskSize).unsignedLongLongValue();
  result.volumeIndex = userInfo.get(key::kVolumeIndex).unsignedIntValue();
  result.sourcePath = userInfo.string(key::kSourcePath);
  result.destPath = userInfo.string(key::kDestPath);
  return result;
}

std::optional<RequestResult> RequestResult::read(const Notification& notification) {
  if (notification.name != kUmsResultNotification) return std::nullopt;
  return read(notification.userInfo);
}

}  // namespace umsservice
