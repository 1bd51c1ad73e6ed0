#include "umsservice/UMSService.h"

#include <chrono>

#include "CaseFolding.h"
#include "FileNames.h"
#include "MediaTypes.h"
#include "NoMedia.h"
#include "Rooms.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

/// Set on every worker thread of every service. A worker never waits for a worker: two services that let go
/// of each other at once would wait for ever.
thread_local bool onWorkerThread = false;

std::string describedAs(const void* service) {
  return stringWithFormat("<UMSService: %p>", {service});
}

void waitForTransfer(const ServiceContext& context) {
  while (context.fileTransferStatus == kTransferRunning) std::this_thread::sleep_for(std::chrono::seconds(1));
}

/// Hands the outcome of a file step to a caller who passed a number by pointer.
bool deliver(const FileOutcome& outcome, int32_t* error) {
  if (error && outcome.errorNumber) *error = static_cast<int32_t>(*outcome.errorNumber);
  return outcome.result;
}

}  // namespace

// -------------------------------------------------------------------- core: life and identity

UMSService::UMSService(const Environment& environment)
    : rooms_(std::make_shared<Rooms>(environment, describedAs(this), std::nullopt)) {
  rooms_->context.log.write(6, "-[UMSService init]", "ENTER");
  startWorker();
  rooms_->context.log.write(6, "-[UMSService init]", "EXIT");
}

UMSService::UMSService(const Environment& environment, const MaybeString& locationID)
    : rooms_(std::make_shared<Rooms>(environment, describedAs(this), locationID)) {
  startWorker();
}

void UMSService::startWorker() {
  worker_ = std::thread([rooms = rooms_] {
    onWorkerThread = true;
    rooms->queue.umsFileServiceQueueThread(
        [&](_serviceinfo& request) { rooms->dispatcher.doUmsFileService(&request); });
  });
}

UMSService::~UMSService() {
  constexpr auto kMethod = "-[UMSService dealloc]";
  ServiceContext& context = rooms_->context;
  context.log.write(6, kMethod, "ENTER");
  rooms_->queue.releaseAndDropAll();
  context.cancelList.clear();
  rooms_->queue.signal();
  waitForTransfer(context);
  context.volumes.clear();
  context.identity.setLocationID(std::nullopt);
  context.identity.setModelName(std::nullopt);
  context.log.write(6, kMethod, "EXIT");
  if (onWorkerThread) {
    worker_.detach();
  } else {
    worker_.join();
  }
}

void UMSService::setConfirmDelegate(const std::shared_ptr<QDDeviceConfirmDelegate>& delegate) {
  if (delegate) rooms_->context.identity.setConfirmDelegate(delegate);
}

void UMSService::setLocationID(const MaybeString& locationID) {
  rooms_->context.identity.setLocationID(locationID);
}

MaybeString UMSService::locationID() {
  return rooms_->context.identity.currentLocationID();
}

void UMSService::setDeviceInformation(const MaybeDictionary& deviceInformation) {
  MaybeString name = deviceInformation ? deviceInformation->string(key::kDeviceName) : std::nullopt;
  if (name) rooms_->context.identity.setModelName(name);
}

MaybeString UMSService::modelName() {
  return rooms_->context.identity.modelName();
}

void UMSService::disconnectDevice(const MaybeString& locationID) {
  MaybeString current = rooms_->context.identity.currentLocationID();
  if (locationID && current && equalIgnoringCase(*locationID, *current)) rooms_->context.releaseState = 1;
  waitForTransfer(rooms_->context);
}

bool UMSService::exitServiceThread() {
  return rooms_->queue.exitServiceThread();
}

uint8_t UMSService::getReleaseState() {
  return rooms_->context.releaseState;
}

int32_t UMSService::fileTransferStatus() {
  return rooms_->context.fileTransferStatus;
}

void UMSService::setFileTransferStatus(int32_t status) {
  rooms_->context.fileTransferStatus = status;
}

std::recursive_mutex& UMSService::synchronizedSection() {
  return rooms_->context.synchronizedSection;
}

// -------------------------------------------------------------------- core: volumes and folders

void UMSService::addDiskInformation(const MaybeDictionary& diskInformation) {
  rooms_->context.volumes.addDiskInformation(diskInformation);
}

void UMSService::removeDiskInformation(const MaybeDictionary& diskInformation) {
  rooms_->context.volumes.removeDiskInformation(diskInformation);
}

MaybeArray UMSService::diskInformation() {
  return rooms_->context.volumes.diskInformation();
}

MaybeDictionary UMSService::diskInfoFromIndex(uint32_t index) {
  return rooms_->context.volumes.diskInfoFromIndex(index);
}

MaybeDictionary UMSService::diskInfoFromDiskInfoList(const MaybeArray& diskInfoList, uint32_t index) {
  return VolumeRegistry::diskInfoFromDiskInfoList(diskInfoList, index);
}

MaybeString UMSService::diskVolumeNameFromIndex(uint32_t index) {
  return rooms_->context.volumes.diskVolumeNameFromIndex(index);
}

MaybeString UMSService::volumePath(uint32_t index) {
  return rooms_->context.volumes.volumePath(index);
}

MaybeString UMSService::volumePathWithOption(bool internal, uint32_t* index) {
  uint32_t ignored = 0;
  return rooms_->context.volumes.volumePathWithOption(internal, index ? *index : ignored);
}

uint64_t UMSService::freeSpace(uint32_t, uint32_t diskIndex) {
  return rooms_->context.spaces.freeSpace(diskIndex);
}

uint64_t UMSService::totalSpace(uint32_t, uint32_t diskIndex) {
  return rooms_->context.spaces.totalSpace(diskIndex);
}

uint64_t UMSService::volumeFreeSpace(const MaybeString& path) {
  return rooms_->context.spaces.volumeFreeSpace(path);
}

MaybeString UMSService::defaultMediaContentsPath(const MaybeString& volumePath, int32_t diskType,
                                                 int32_t mediaType) {
  return rooms_->context.defaultFolders.defaultMediaContentsPath(volumePath, diskType, mediaType);
}

MaybeString UMSService::defaultUmsMediaPath(uint32_t diskIndex, uint32_t mediaType) {
  return rooms_->context.defaultFolders.defaultUmsMediaPath(diskIndex, mediaType);
}

MaybeString UMSService::getMediaDefaultPath(int32_t mediaType) {
  return rooms_->context.defaultFolders.getMediaDefaultPath(mediaType);
}

MaybeString UMSService::defaultMediaContentsPath(const MaybeArray& diskInfoList, uint32_t index,
                                                 int32_t mediaType) {
  return DefaultFolders::defaultMediaContentsPath(diskInfoList, index, mediaType);
}

// -------------------------------------------------------------------- core: requests

bool UMSService::syncContents(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                              bool isStartInternal) {
  return rooms_->entry.syncContents(serviceID, contents, mediaType, isStartInternal);
}

bool UMSService::copyContentsMacToDevice(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                                         uint32_t storageIndex) {
  return rooms_->entry.copyContentsMacToDevice(serviceID, contents, mediaType, storageIndex);
}

bool UMSService::copyContentsDeviceToMac(uint32_t serviceID, const MaybeArray& contents,
                                         const MaybeString& destinationPath, uint32_t mediaType,
                                         const MaybeString& playlistName) {
  return rooms_->entry.copyContentsDeviceToMac(serviceID, contents, destinationPath, mediaType, playlistName);
}

bool UMSService::copyContentsDeviceToDevice(uint32_t serviceID, const MaybeArray& contents,
                                            const MaybeString& srcLocationId,
                                            const MaybeString& destLocationId, uint32_t mediaType,
                                            uint32_t destStorageIndex) {
  return rooms_->entry.copyContentsDeviceToDevice(serviceID, contents, srcLocationId, destLocationId,
                                                  mediaType, destStorageIndex);
}

bool UMSService::deleteContents(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                                uint32_t diskIndex) {
  return rooms_->entry.deleteContents(serviceID, contents, mediaType, diskIndex);
}

bool UMSService::reEnumerateAtFolder(const MaybeString&) {
  return true;
}

void UMSService::cancelFileAction(uint32_t serviceID) {
  rooms_->queue.cancelFileAction(serviceID);
}

void UMSService::emptyQueue() {
  rooms_->queue.emptyQueue();
}

bool UMSService::emptyQueue(uint32_t serviceID) {
  return rooms_->queue.emptyQueue(serviceID);
}

bool UMSService::isCancelServiceId(uint32_t serviceID) {
  return rooms_->context.cancelList.isCancelServiceId(serviceID);
}

bool UMSService::removeCancelServiceId(uint32_t serviceID) {
  return rooms_->context.cancelList.removeCancelServiceId(serviceID);
}

bool UMSService::doUmsFileService(const _serviceinfo* serviceInfo) {
  return rooms_->dispatcher.doUmsFileService(serviceInfo);
}

// -------------------------------------------------------------------- report

void UMSService::sendResultEvent(const _serviceinfo& serviceInfo, uint32_t eventType, uint32_t status,
                                 uint32_t errornumber, uint64_t diskSpace, uint32_t storageIndex) {
  rooms_->reports.sendResultEvent(serviceInfo, eventType, status, errornumber, diskSpace, storageIndex);
}

void UMSService::sendCancelProgressEvent(uint32_t serviceID, const MaybeString& locationId,
                                         uint32_t mediaType, uint32_t currentFile, uint32_t maxFile,
                                         uint32_t transferStatus) {
  rooms_->reports.sendCancelProgressEvent(serviceID, locationId, mediaType, currentFile, maxFile,
                                          transferStatus);
}

bool UMSService::transferProgressInfo(TransferContext* context, uint32_t maxTransferSize,
                                      uint32_t currentTransferSize) {
  return rooms_->reports.transferProgressInfo(context, maxTransferSize, currentTransferSize);
}

bool UMSService::transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                                        uint64_t currentTransferSize) {
  return rooms_->reports.transferProgressInfoEx(context, maxTransferSize, currentTransferSize);
}

// -------------------------------------------------------------------- media

int32_t UMSService::checkMediaType(const MaybeString& path) {
  if (rooms_->context.isReleased() || !path) return kMediaUnknown;
  return mediaTypeOf(*path);
}

bool UMSService::checkContentWithExtentions(const MaybeString& extension, const MaybeArray& extLists) {
  return umsservice::checkContentWithExtentions(extension, extLists);
}

MaybeString UMSService::convertAvailableFileName(const MaybeString& name) {
  return umsservice::convertAvailableFileName(rooms_->context.log, name);
}

MaybeString UMSService::convertAvailableString(const MaybeString& path) {
  return umsservice::convertAvailableString(rooms_->context.log, path);
}

bool UMSService::umsCopyFile(uint32_t serviceID, const MaybeString& srcPath, const MaybeString& destPath,
                             OVUmsDeviceNotifier* context, int32_t* error) {
  return deliver(rooms_->media.files.copy(serviceID, srcPath, destPath, context), error);
}

bool UMSService::umsMoveFile(uint32_t, const MaybeString& srcPath, const MaybeString& destPath,
                             OVUmsDeviceNotifier* context, int32_t* error) {
  return deliver(rooms_->media.files.move(srcPath, destPath, context), error);
}

bool UMSService::umsDeleteFile(uint32_t, const MaybeString& srcPath, int32_t* error) {
  return deliver(rooms_->media.files.remove(srcPath), error);
}

uint64_t UMSService::mediaFileSize(const MaybeString& path) {
  return rooms_->media.files.mediaFileSize(path);
}

uint64_t UMSService::totalMediaContentsSize(const MaybeArray& contents) {
  return rooms_->media.files.totalMediaContentsSize(contents);
}

bool UMSService::sendSmiFile(uint32_t, const MaybeString& srcVideoPath, const MaybeString& destPath,
                             uint32_t mediaType) {
  return rooms_->media.companions.sendSmiFile(srcVideoPath, destPath, mediaType);
}

bool UMSService::deleteSmiFile(uint32_t, const MaybeString& filePath, uint32_t mediaType) {
  return rooms_->media.companions.deleteSmiFile(filePath, mediaType);
}

bool UMSService::doCopyMediaContents(const _serviceinfo& serviceInfo) {
  return rooms_->operations.doCopyMediaContents(serviceInfo);
}

bool UMSService::doCopyMediaContentsForAnyMediaType(const _serviceinfo& serviceInfo) {
  return rooms_->operations.doCopyMediaContentsForAnyMediaType(serviceInfo);
}

// -------------------------------------------------------------------- files

bool UMSService::fileLists(uint32_t unused, const MaybeString& fileName, bool enumChild,
                           MaybeArray* contents) {
  MaybeArray listed;
  bool success = rooms_->folders.fileLists(unused, fileName, enumChild, listed);
  if (success && contents) *contents = listed;
  return success;
}

MaybeArray UMSService::folderLists(const MaybeString& folder) {
  return rooms_->folders.folderLists(folder);
}

MaybeArray UMSService::fileLists(const MaybeString& folder) {
  return rooms_->folders.fileLists(folder);
}

MaybeArray UMSService::getDeviceAllFolderLists() {
  return rooms_->folders.getDeviceAllFolderLists();
}

MaybeArray UMSService::recursiveFolderLists(const MaybeString& folder) {
  return folder ? MaybeArray(rooms_->folders.recursiveFolderLists(*folder)) : std::nullopt;
}

bool UMSService::checkNoMedia(const MaybeString& path, const MaybeArray& nomediaList) {
  return umsservice::checkNoMedia(path, nomediaList);
}

MaybeArray UMSService::removeFileListByNoMedia(const MaybeArray& paths, const MaybeArray& nomediaList) {
  return umsservice::removeFileListByNoMedia(paths, nomediaList);
}

bool UMSService::fileExistsAtPath(const MaybeString& path, bool* isDirectory) {
  return rooms_->folders.fileExistsAtPath(path, isDirectory);
}

uint64_t UMSService::fileSizeAtDevice(const MaybeString& path) {
  return rooms_->folders.fileSizeAtDevice(path);
}

bool UMSService::deletefileAtDevice(const MaybeString& path, uint32_t* error) {
  return rooms_->folders.deletefileAtDevice(path, error);
}

bool UMSService::deleteFolder(const MaybeString& path) {
  return rooms_->folders.deleteFolder(path);
}

bool UMSService::createFolder(const MaybeString& path) {
  return rooms_->folders.createFolder(path);
}

}  // namespace umsservice
