#include "FileNames.h"
#include "Lookups.h"
#include "MediaFallOver.h"
#include "MediaTypes.h"
#include "NoMedia.h"
#include "Rooms.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/UMSService.h"

namespace umsservice {
namespace {

/// Hands the outcome of a file step to a caller who passed a number by pointer.
bool deliver(const FileOutcome& outcome, int32_t* error) {
  if (error && outcome.errorNumber) *error = static_cast<int32_t>(*outcome.errorNumber);
  return outcome.result;
}

}  // namespace

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
