#include "umsservice/UMSService.h"

#include <chrono>

#include "CaseFolding.h"
#include "FileNames.h"
#include "Lookups.h"
#include "MediaFallOver.h"
#include "MediaTypes.h"
#include "NoMedia.h"
#include "Rooms.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

/// How many requests of any service the calling thread is in the middle of. Such a thread never waits for a
/// worker: two services that let go of each other at once would wait for ever, and so would a release by the
/// thread that holds the synchronized section for which the worker waits.
thread_local int requestsInHand = 0;

class RequestInHand {
 public:
  RequestInHand() { ++requestsInHand; }
  ~RequestInHand() { --requestsInHand; }
  RequestInHand(const RequestInHand&) = delete;
  RequestInHand& operator=(const RequestInHand&) = delete;
};

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
  worker_ = std::thread([rooms = rooms_] { serveQueue(rooms); });
}

void UMSService::serveQueue(const std::shared_ptr<Rooms>& rooms) {
  RequestInHand inHand;
  rooms->queue.umsFileServiceQueueThread(
      [&](_serviceinfo& request) { rooms->dispatcher.doUmsFileService(&request); });
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
  if (requestsInHand > 0) {
    worker_.detach();
  } else {
    worker_.join();
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

std::recursive_mutex& UMSService::synchronizedSection() {
  return rooms()->context.synchronizedSection;
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
  return rooms()->reports.transferProgressInfo(context, maxTransferSize, currentTransferSize);
}

bool UMSService::transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                                        uint64_t currentTransferSize) {
  return rooms()->reports.transferProgressInfoEx(context, maxTransferSize, currentTransferSize);
}

// -------------------------------------------------------------------- media

int32_t UMSService::checkMediaType(const MaybeString& path) {
  if (rooms()->context.isReleased() || !path) return kMediaUnknown;
  return mediaTypeOf(*path);
}

bool UMSService::checkContentWithExtentions(const MaybeString& extension, const MaybeArray& extLists) {
  return umsservice::checkContentWithExtentions(extension, extLists);
}

MaybeString UMSService::convertAvailableFileName(const MaybeString& name) {
  return umsservice::convertAvailableFileName(rooms()->context.log, name);
}

MaybeString UMSService::convertAvailableString(const MaybeString& path) {
  return umsservice::convertAvailableString(rooms()->context.log, path);
}

bool UMSService::umsCopyFile(uint32_t serviceID, const MaybeString& srcPath, const MaybeString& destPath,
                             OVUmsDeviceNotifier* context, int32_t* error) {
  return deliver(rooms()->media.files.copy(serviceID, srcPath, destPath, context), error);
}

bool UMSService::umsMoveFile(uint32_t, const MaybeString& srcPath, const MaybeString& destPath,
                             OVUmsDeviceNotifier* context, int32_t* error) {
  return deliver(rooms()->media.files.move(srcPath, destPath, context), error);
}

bool UMSService::umsDeleteFile(uint32_t, const MaybeString& srcPath, int32_t* error) {
  return deliver(rooms()->media.files.remove(srcPath), error);
}

uint64_t UMSService::mediaFileSize(const MaybeString& path) {
  return rooms()->media.files.mediaFileSize(path);
}

uint64_t UMSService::totalMediaContentsSize(const MaybeArray& contents) {
  return rooms()->media.files.totalMediaContentsSize(contents);
}

bool UMSService::sendSmiFile(uint32_t, const MaybeString& srcVideoPath, const MaybeString& destPath,
                             uint32_t mediaType) {
  return rooms()->media.companions.sendSmiFile(srcVideoPath, destPath, mediaType);
}

bool UMSService::deleteSmiFile(uint32_t, const MaybeString& filePath, uint32_t mediaType) {
  return rooms()->media.companions.deleteSmiFile(filePath, mediaType);
}

bool UMSService::doCopyMediaContents(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doCopyMediaContents(serviceInfo);
}

bool UMSService::doCopyMediaContentsForAnyMediaType(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doCopyMediaContentsForAnyMediaType(serviceInfo);
}

bool UMSService::doSyncMediaContents(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doSyncMediaContents(serviceInfo);
}

bool UMSService::doDeleteMediaContents(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doDeleteMediaContents(serviceInfo);
}

bool UMSService::doDeviceToDevcieContents(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doDeviceToDevcieContents(serviceInfo);
}

int32_t UMSService::syncUmsFile(uint32_t serviceID, const MaybeString& atPath, uint32_t index,
                                uint32_t mediaType, const MaybeDictionary&, OVUmsDeviceNotifier* context) {
  if (!context) return static_cast<int32_t>(kErrorInvalidInput);
  auto kept = rooms();
  MediaFallOver fallOver(kept->media, *context, serviceID, index, mediaType);
  return static_cast<int32_t>(fallOver.place(atPath).errorNumber.value_or(kErrorNone));
}

// -------------------------------------------------------------------- files

bool UMSService::fileLists(uint32_t unused, const MaybeString& fileName, bool enumChild,
                           MaybeArray* contents) {
  MaybeArray listed;
  bool success = rooms()->folders.fileLists(unused, fileName, enumChild, listed);
  if (success && contents) *contents = listed;
  return success;
}

MaybeArray UMSService::folderLists(const MaybeString& folder) {
  return rooms()->folders.folderLists(folder);
}

MaybeArray UMSService::fileLists(const MaybeString& folder) {
  return rooms()->folders.fileLists(folder);
}

MaybeArray UMSService::getDeviceAllFolderLists() {
  return rooms()->folders.getDeviceAllFolderLists();
}

MaybeArray UMSService::recursiveFolderLists(const MaybeString& folder) {
  return folder ? MaybeArray(rooms()->folders.recursiveFolderLists(*folder)) : std::nullopt;
}

bool UMSService::checkNoMedia(const MaybeString& path, const MaybeArray& nomediaList) {
  return umsservice::checkNoMedia(path, nomediaList);
}

MaybeArray UMSService::removeFileListByNoMedia(const MaybeArray& paths, const MaybeArray& nomediaList) {
  return umsservice::removeFileListByNoMedia(paths, nomediaList);
}

bool UMSService::fileExistsAtPath(const MaybeString& path, bool* isDirectory) {
  return rooms()->folders.fileExistsAtPath(path, isDirectory);
}

uint64_t UMSService::fileSizeAtDevice(const MaybeString& path) {
  return rooms()->folders.fileSizeAtDevice(path);
}

bool UMSService::deletefileAtDevice(const MaybeString& path, uint32_t* error) {
  return rooms()->folders.deletefileAtDevice(path, error);
}

bool UMSService::deleteFolder(const MaybeString& path) {
  return rooms()->folders.deleteFolder(path);
}

bool UMSService::createFolder(const MaybeString& path) {
  return rooms()->folders.createFolder(path);
}

MaybeArray UMSService::subpathsAtDisk(uint32_t, uint32_t diskIndex, bool skipNoMedia) {
  return rooms()->scan.subpathsAtDisk(diskIndex, skipNoMedia);
}

MaybeArray UMSService::fileScan(const MaybeString& folder, bool skipNoMedia) {
  return folder ? rooms()->scan.fileScan(*folder, skipNoMedia) : std::nullopt;
}

MaybeArray UMSService::fileScan(const MaybeString& folder) {
  return fileScan(folder, true);
}

bool UMSService::isHiddenFile(const MaybeString& path) {
  return path && umsservice::isHiddenFile(*path);
}

bool UMSService::writeFileToDevice(const MaybeDictionary& fileInformation, const MaybeString& destinationPath,
                                   uint32_t, uint32_t, bool isOverWrite,
                                   const std::shared_ptr<TransferCallback>& callbackObject,
                                   TransferContext* context, uint32_t* error) {
  return rooms()->transfers.writeFileToDevice(fileInformation, destinationPath,
                                              {isOverWrite, callbackObject, context, error});
}

bool UMSService::readFileFromDevice(const MaybeDictionary& fileInformation,
                                    const MaybeString& destinationPath, uint32_t, uint32_t, bool isOverWrite,
                                    const std::shared_ptr<TransferCallback>& callbackObject,
                                    TransferContext* context, uint32_t* error) {
  return rooms()->transfers.readFileFromDevice(fileInformation, destinationPath,
                                               {isOverWrite, callbackObject, context, error});
}

bool UMSService::syncWriteFileToDevice(const MaybeDictionary& fileInformation,
                                       const MaybeString& subFolderName, uint32_t diskIndex,
                                       uint32_t mediaType, bool isOverWrite,
                                       const std::shared_ptr<TransferCallback>& callbackObject,
                                       TransferContext* context, uint32_t* error) {
  return rooms()->transfers.syncWriteFileToDevice(fileInformation, subFolderName, diskIndex, mediaType,
                                                  {isOverWrite, callbackObject, context, error});
}

bool UMSService::writeFileData(const MaybeString& path, const std::shared_ptr<const Data>& data) {
  return rooms()->transfers.writeFileData(path, data);
}

std::shared_ptr<const Data> UMSService::readFileData(const MaybeString& path) {
  return rooms()->transfers.readFileData(path);
}

MaybeString UMSService::copyContentToPlay(uint32_t, uint32_t, uint32_t,
                                          const MaybeDictionary& fileInformation) {
  return umsservice::copyContentToPlay(rooms()->context.log, fileInformation);
}

bool UMSService::isExistContentFromMac(uint32_t, uint32_t, uint32_t, const MaybeDictionary& fileInformation,
                                       Value*) {
  return umsservice::isExistContentFromMac(rooms()->context.log, fileInformation);
}

// -------------------------------------------------------------------- listings

MaybeArray UMSService::fileInformationList(uint32_t, uint32_t mediaType, uint32_t diskIndex) {
  return rooms()->listings.fileInformationList(mediaType, diskIndex);
}

MaybeArray UMSService::fileNameList(uint32_t, uint32_t mediaType, uint32_t diskIndex) {
  return rooms()->listings.fileNameList(mediaType, diskIndex);
}

MaybeArray UMSService::fileNameListWithFolderStructure(uint32_t, uint32_t mediaType, uint32_t diskIndex) {
  return rooms()->listings.fileNameListWithFolderStructure(mediaType, diskIndex);
}

MaybeArray UMSService::fileInformationListForAllMediaType(uint32_t) {
  return rooms()->listings.fileInformationListForAllMediaType();
}

MaybeArray UMSService::fileInformationList(const MaybeString& folder, const MaybeArray& extensionList,
                                           bool recursive) {
  return rooms()->listings.fileInformationList(folder, extensionList, recursive);
}

MaybeArray UMSService::fileInformationList(const MaybeString& folder, const MaybeArray& extensionList) {
  return rooms()->listings.fileInformationList(folder, extensionList);
}

MaybeDictionary UMSService::mediaFileInfoFromDevice(const MaybeDictionary& fileInformation,
                                                    const MaybeString& path) {
  return rooms()->listings.mediaFileInfoFromDevice(fileInformation, path);
}

bool UMSService::checkMediaContent(const MaybeString& volumePath, const MaybeString& filePath,
                                   int32_t diskType, int32_t mediaType) {
  return rooms()->listings.checkMediaContent(volumePath, filePath, diskType, mediaType);
}

// -------------------------------------------------------------------- podcast

MaybeDictionary UMSService::umsPodcastXmlData(const MaybeString& path) {
  return rooms()->podcasts.indexes.umsPodcastXmlData(path);
}

bool UMSService::podcastXmlLists(uint32_t, const MaybeString& fileName, MaybeArray* contents) {
  MaybeArray listed;
  bool success = rooms()->podcasts.indexes.podcastXmlLists(fileName, listed);
  if (success && contents) *contents = listed;
  return success;
}

MaybeDictionary UMSService::checkXmlData(const MaybeString& channelFolder, const MaybeString& channelName) {
  return rooms()->podcasts.indexes.checkXmlData(channelFolder, channelName);
}

bool UMSService::sendXmlData(uint32_t, const std::shared_ptr<const Data>& xmlDocument,
                             const MaybeString& filePath, const MaybeString& podcastName) {
  return rooms()->podcasts.indexes.sendXmlData(xmlDocument, filePath, podcastName);
}

void UMSService::makeEpisodeFullPath(const MaybeDictionary& podcast, const MaybeString& podcastChannelName) {
  if (podcast) PodcastIndexFiles::makeEpisodeFullPath(*podcast, podcastChannelName);
}

MaybeDictionary UMSService::makeXMLInfoFromFileData(const MaybeString& channelFolder,
                                                    const std::shared_ptr<const Data>& data) {
  return rooms()->podcasts.indexes.makeXMLInfoFromFileData(channelFolder, data);
}

uint32_t UMSService::totalPodcastCount(const MaybeArray& podcasts) {
  return rooms()->podcasts.sizes.totalPodcastCount(podcasts);
}

uint64_t UMSService::totalPodcastFileSize(const MaybeArray& podcasts, uint32_t* sendCount) {
  uint32_t ignored = 0;
  return rooms()->podcasts.sizes.totalPodcastFileSize(podcasts, sendCount ? *sendCount : ignored);
}

uint64_t UMSService::totalUmsPodcastEpisodeDataSize(const MaybeArray& episodes) {
  return rooms()->podcasts.sizes.totalUmsPodcastEpisodeDataSize(episodes);
}

bool UMSService::checkUmsPodcastEpisodeSize(const MaybeString& volumePath, const MaybeArray& episodeData) {
  return rooms()->podcasts.sizes.checkUmsPodcastEpisodeSize(volumePath, episodeData);
}

bool UMSService::doCopyPodcastContents(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doCopyPodcastContents(serviceInfo);
}

bool UMSService::doSyncPodcastContents(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doSyncPodcastContents(serviceInfo);
}

int32_t UMSService::syncUmsPodcastFile(uint32_t serviceID, uint32_t index, uint32_t mediaType,
                                       const MaybeDictionary& podcastInfo, OVUmsDeviceNotifier* context) {
  if (!context) return static_cast<int32_t>(kErrorInvalidInput);
  return static_cast<int32_t>(
      rooms()->operations.syncUmsPodcastFile(serviceID, index, mediaType, podcastInfo, *context));
}

bool UMSService::doDeletePodcastContents(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doDeletePodcastContents(serviceInfo);
}

bool UMSService::doDeviceToDevicePodcast(const _serviceinfo& serviceInfo) {
  return rooms()->operations.doDeviceToDevicePodcast(serviceInfo);
}

}  // namespace umsservice
