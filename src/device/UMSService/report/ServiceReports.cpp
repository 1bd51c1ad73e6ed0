#include "ServiceReports.h"

#include "umsservice/Notifications.h"
#include "umsservice/OVUmsDeviceNotifier.h"

namespace umsservice {

void ServiceReports::sendResultEvent(const _serviceinfo& serviceInfo, uint32_t eventType, uint32_t status,
                                     uint32_t errornumber, uint64_t diskSpace, uint32_t storageIndex) {
  Dictionary userInfo{{key::kServiceID, static_cast<int32_t>(serviceInfo.serviceID)},
                      {key::kEventType, static_cast<int32_t>(eventType)},
                      {key::kStatus, static_cast<int32_t>(status)},
                      {key::kErrorNumber, static_cast<int32_t>(errornumber)},
                      {key::kDiskSize, diskSpace},
                      {key::kVolumeIndex, static_cast<int32_t>(storageIndex)}};
  if (serviceInfo.filePath) userInfo.set(key::kSourcePath, *serviceInfo.filePath);
  if (serviceInfo.destPath) userInfo.set(key::kDestPath, *serviceInfo.destPath);
  context_.environment.notificationCenter->post(kUmsResultNotification, userInfo);
}

void ServiceReports::sendCancelProgressEvent(uint32_t serviceID, const MaybeString& locationId,
                                             uint32_t mediaType, uint32_t currentFile, uint32_t maxFile,
                                             uint32_t transferStatus) {
  Dictionary userInfo{{key::kServiceID, serviceID},
                      {key::kMediaNotiType, mediaType},
                      {key::kCurrent, currentFile},
                      {key::kMax, maxFile},
                      {key::kTransferStatus, transferStatus}};
  MaybeString location = locationId ? locationId : context_.identity.currentLocationID();
  if (location) userInfo.set(key::kLocationId, *location);
  context_.environment.notificationCenter->post(kTransferProgressNotification, userInfo);
}

bool ServiceReports::transferProgressInfo(TransferContext* context, uint32_t, uint32_t currentTransferSize) {
  auto* notifier = dynamic_cast<OVUmsDeviceNotifier*>(context);
  if (!notifier || notifier->currentTransferStatus() == kTransferCancelled) return false;
  notifier->addCurrentSendBytesEx(currentTransferSize);
  return true;
}

bool ServiceReports::transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                                            uint64_t currentTransferSize) {
  constexpr auto kMethod = "-[UMSService transferProgressInfoEx:maxTransferSize:currentTransferSize:]";
  auto* notifier = dynamic_cast<OVUmsDeviceNotifier*>(context);
  if (!notifier) {
    context_.log.write(3, kMethod, "Progress Object is nil");
    return false;
  }
  if (notifier->currentTransferStatus() == kTransferCancelled) {
    context_.log.write(6, kMethod, "Cancel Transfering");
    return false;
  }
  if (notifier->maxSendBytes() == 0) notifier->setMaxSendBytes(maxTransferSize);
  notifier->addCurrentSendBytesEx(currentTransferSize);
  if (currentTransferSize == maxTransferSize) notifier->setMaxSendBytes(0);
  return true;
}

}  // namespace umsservice
