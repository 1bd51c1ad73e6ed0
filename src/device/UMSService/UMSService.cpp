#include "umsservice/UMSService.h"

#include <chrono>

#include "CaseFolding.h"
#include "RequestInHand.h"
#include "Rooms.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

std::string describedAs(const void* service) {
  return stringWithFormat("<UMSService: %p>", {service});
}

void waitForTransfer(const ServiceContext& context) {
  while (context.fileTransferStatus == kTransferRunning) std::this_thread::sleep_for(std::chrono::seconds(1));
}

}  // namespace

// -------------------------------------------------------------------- core: life and identity

UMSService::UMSService(const Environment& environment, std::shared_ptr<SynchronizedObject> object)
    : rooms_(std::make_shared<Rooms>(environment, describedAs(this), std::nullopt, std::move(object))) {
  rooms_->context.log.write(6, "-[UMSService init]", "ENTER");
  startWorker();
  rooms_->context.log.write(6, "-[UMSService init]", "EXIT");
}

UMSService::UMSService(const Environment& environment, const MaybeString& locationID,
                       std::shared_ptr<SynchronizedObject> object)
    : rooms_(std::make_shared<Rooms>(environment, describedAs(this), locationID, std::move(object))) {
  startWorker();
}

void UMSService::startWorker() {
  worker_ = std::thread([rooms = rooms_] {
    rooms->context.workerEnd.begun();
    serveQueue(rooms);
    rooms->context.workerEnd.reached();
  });
}

void UMSService::serveQueue(const std::shared_ptr<Rooms>& rooms) {
  RequestInHand inHand;
  rooms->queue.umsFileServiceQueueThread([&](_serviceinfo& request) { rooms->dispatcher.serve(request); });
}

UMSService::~UMSService() {
  constexpr auto kMethod = "-[UMSService dealloc]";
  ServiceContext& context = rooms_->context;
  context.log.write(6, kMethod, "ENTER");
  rooms_->queue.releaseAndDropAll();
  context.cancelList.clear();
  rooms_->queue.signal();
  waitForTransfer(context);
  // Volumes and names go with the rooms, once the worker needs them no more; a list that the host holds
  // stays.
  context.log.write(6, kMethod, "EXIT");
  if (!RequestInHand::isAny() && context.workerEnd.await()) {
    worker_.join();
  } else {
    worker_.detach();
  }
}

void UMSService::setConfirmDelegate(const std::shared_ptr<QDDeviceConfirmDelegate>& delegate) {
  if (delegate) rooms()->context.identity.setConfirmDelegate(delegate);
}

void UMSService::setLocationID(const MaybeString& locationID) {
  rooms()->context.identity.setLocationID(locationID);
}

MaybeString UMSService::locationID() {
  return rooms()->context.identity.currentLocationID();
}

void UMSService::setDeviceInformation(const MaybeDictionary& deviceInformation) {
  MaybeString name = deviceInformation ? deviceInformation->string(key::kDeviceName) : std::nullopt;
  if (name) rooms()->context.identity.setModelName(name);
}

MaybeString UMSService::modelName() {
  return rooms()->context.identity.modelName();
}

void UMSService::disconnectDevice(const MaybeString& locationID) {
  auto kept = rooms();
  MaybeString current = kept->context.identity.currentLocationID();
  if (locationID && current && equalIgnoringCase(*locationID, *current)) kept->context.releaseState = 1;
  waitForTransfer(kept->context);
}

bool UMSService::exitServiceThread() {
  return rooms()->queue.exitServiceThread();
}

uint8_t UMSService::getReleaseState() {
  return rooms()->context.releaseState;
}

int32_t UMSService::fileTransferStatus() {
  return rooms()->context.fileTransferStatus;
}

void UMSService::setFileTransferStatus(int32_t status) {
  rooms()->context.fileTransferStatus = status;
}

SynchronizedObject& UMSService::synchronizedSection() {
  return rooms()->context.synchronizedSection();
}

// -------------------------------------------------------------------- core: volumes and folders

void UMSService::addDiskInformation(const MaybeDictionary& diskInformation) {
  rooms()->context.volumes.addDiskInformation(diskInformation);
}

void UMSService::removeDiskInformation(const MaybeDictionary& diskInformation) {
  rooms()->context.volumes.removeDiskInformation(diskInformation);
}

MaybeArray UMSService::diskInformation() {
  return rooms()->context.volumes.diskInformation();
}

MaybeDictionary UMSService::diskInfoFromIndex(uint32_t index) {
  return rooms()->context.volumes.diskInfoFromIndex(index);
}

MaybeDictionary UMSService::diskInfoFromDiskInfoList(const MaybeArray& diskInfoList, uint32_t index) {
  return VolumeRegistry::diskInfoFromDiskInfoList(diskInfoList, index);
}

MaybeString UMSService::diskVolumeNameFromIndex(uint32_t index) {
  return rooms()->context.volumes.diskVolumeNameFromIndex(index);
}

MaybeString UMSService::volumePath(uint32_t index) {
  return rooms()->context.volumes.volumePath(index);
}

MaybeString UMSService::volumePathWithOption(bool internal, uint32_t* index) {
  uint32_t ignored = 0;
  return rooms()->context.volumes.volumePathWithOption(internal, index ? *index : ignored);
}

uint64_t UMSService::freeSpace(uint32_t, uint32_t diskIndex) {
  return rooms()->context.spaces.freeSpace(diskIndex);
}

uint64_t UMSService::totalSpace(uint32_t, uint32_t diskIndex) {
  return rooms()->context.spaces.totalSpace(diskIndex);
}

uint64_t UMSService::volumeFreeSpace(const MaybeString& path) {
  return rooms()->context.spaces.volumeFreeSpace(path);
}

MaybeString UMSService::defaultMediaContentsPath(const MaybeString& volumePath, int32_t diskType,
                                                 int32_t mediaType) {
  return rooms()->context.defaultFolders.defaultMediaContentsPath(volumePath, diskType, mediaType);
}

MaybeString UMSService::defaultUmsMediaPath(uint32_t diskIndex, uint32_t mediaType) {
  return rooms()->context.defaultFolders.defaultUmsMediaPath(diskIndex, mediaType);
}

MaybeString UMSService::getMediaDefaultPath(int32_t mediaType) {
  return rooms()->context.defaultFolders.getMediaDefaultPath(mediaType);
}

MaybeString UMSService::defaultMediaContentsPath(const MaybeArray& diskInfoList, uint32_t index,
                                                 int32_t mediaType) {
  return DefaultFolders::defaultMediaContentsPath(diskInfoList, index, mediaType);
}

// -------------------------------------------------------------------- core: requests

bool UMSService::syncContents(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                              bool isStartInternal) {
  return rooms()->entry.syncContents(serviceID, contents, mediaType, isStartInternal);
}

bool UMSService::copyContentsMacToDevice(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                                         uint32_t storageIndex) {
  return rooms()->entry.copyContentsMacToDevice(serviceID, contents, mediaType, storageIndex);
}

bool UMSService::copyContentsDeviceToMac(uint32_t serviceID, const MaybeArray& contents,
                                         const MaybeString& destinationPath, uint32_t mediaType,
                                         const MaybeString& playlistName) {
  return rooms()->entry.copyContentsDeviceToMac(serviceID, contents, destinationPath, mediaType,
                                                playlistName);
}

bool UMSService::copyContentsDeviceToDevice(uint32_t serviceID, const MaybeArray& contents,
                                            const MaybeString& srcLocationId,
                                            const MaybeString& destLocationId, uint32_t mediaType,
                                            uint32_t destStorageIndex) {
  return rooms()->entry.copyContentsDeviceToDevice(serviceID, contents, srcLocationId, destLocationId,
                                                   mediaType, destStorageIndex);
}

bool UMSService::deleteContents(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                                uint32_t diskIndex) {
  return rooms()->entry.deleteContents(serviceID, contents, mediaType, diskIndex);
}

bool UMSService::reEnumerateAtFolder(const MaybeString&) {
  return true;
}

void UMSService::cancelFileAction(uint32_t serviceID) {
  rooms()->queue.cancelFileAction(serviceID);
}

void UMSService::emptyQueue() {
  rooms()->queue.emptyQueue();
}

bool UMSService::emptyQueue(uint32_t serviceID) {
  return rooms()->queue.emptyQueue(serviceID);
}

bool UMSService::isCancelServiceId(uint32_t serviceID) {
  return rooms()->context.cancelList.isCancelServiceId(serviceID);
}

bool UMSService::removeCancelServiceId(uint32_t serviceID) {
  return rooms()->context.cancelList.removeCancelServiceId(serviceID);
}

bool UMSService::doUmsFileService(const _serviceinfo* serviceInfo) {
  RequestInHand inHand;
  return rooms()->dispatcher.doUmsFileService(serviceInfo);
}

void UMSService::umsFileServiceQueueThread() {
  serveQueue(rooms());
}

// -------------------------------------------------------------------- report

void UMSService::sendResultEvent(const _serviceinfo& serviceInfo, uint32_t eventType, uint32_t status,
                                 uint32_t errornumber, uint64_t diskSpace, uint32_t storageIndex) {
  rooms()->reports.sendResultEvent(serviceInfo, eventType, status, errornumber, diskSpace, storageIndex);
}

void UMSService::sendCancelProgressEvent(uint32_t serviceID, const MaybeString& locationId,
                                         uint32_t mediaType, uint32_t currentFile, uint32_t maxFile,
                                         uint32_t transferStatus) {
  rooms()->reports.sendCancelProgressEvent(serviceID, locationId, mediaType, currentFile, maxFile,
                                           transferStatus);
}

bool UMSService::transferProgressInfo(TransferContext* context, uint32_t maxTransferSize,
                                      uint32_t currentTransferSize) {
  RequestInHand inHand;  // a destination may report on a thread of its own, for which a worker waits
  return rooms()->reports.transferProgressInfo(context, maxTransferSize, currentTransferSize);
}

bool UMSService::transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                                        uint64_t currentTransferSize) {
  RequestInHand inHand;
  return rooms()->reports.transferProgressInfoEx(context, maxTransferSize, currentTransferSize);
}

}  // namespace umsservice
