#include "RequestEntry.h"

#include <new>

#include "StringPaths.h"
#include "umsservice/Notifications.h"

namespace umsservice {

bool RequestEntry::isEmptyRequest(const MaybeArray& contents, const char* method) const {
  if (contents && !contents->empty()) return false;
  context_.log.write(7, method, "Contents Count is 0");
  return true;
}

std::unique_ptr<_serviceinfo> RequestEntry::newRecord(uint32_t serviceID, uint32_t command,
                                                      const MaybeArray& contents, uint32_t mediaType,
                                                      const char* method) const {
  std::unique_ptr<_serviceinfo> record(new (std::nothrow) _serviceinfo);
  if (!record) {
    context_.log.write(3, method, "Memory alloc for File Service is FAILED.");
    return nullptr;
  }
  record->serviceID = serviceID;
  record->command = command;
  record->contents = contents;
  record->mediaType = mediaType;
  return record;
}

bool RequestEntry::volumeOf(const MaybeDictionary& diskInfo, const char* method, Volume& volume) const {
  if (!diskInfo) {
    context_.log.write(1, method, "diskInfo is nil");
    return false;
  }
  volume.path = diskInfo->string(key::kVolumePath);
  volume.diskType = diskInfo->get(key::kDiskType).intValue();
  if (volume.path) return true;
  context_.log.write(1, method, "volumePath is nil");
  return false;
}

bool RequestEntry::syncContents(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                                bool isStartInternal) {
  constexpr auto kMethod = "-[UMSService syncContents:contents:mediaType:isStartInternal:]";
  if (isEmptyRequest(contents, kMethod)) return false;
  auto record = newRecord(serviceID, kCommandSyncContents, contents, mediaType, kMethod);
  if (!record) return false;
  record->isStartInternal = isStartInternal ? 1 : 0;
  return queue_.enqueue(std::move(record));
}

bool RequestEntry::copyContentsMacToDevice(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                                           uint32_t storageIndex) {
  constexpr auto kMethod = "-[UMSService copyContentsMacToDevice:contents:mediaType:storageIndex:]";
  if (isEmptyRequest(contents, kMethod)) return false;
  Volume volume;
  if (!volumeOf(context_.volumes.diskInfoFromIndex(storageIndex), kMethod, volume)) return false;
  MaybeString contentsPath = context_.defaultFolders.defaultMediaContentsPath(
      volume.path, volume.diskType, static_cast<int32_t>(mediaType));
  if (!contentsPath || contentsPath->empty()) {
    context_.log.write(7, kMethod, "contentsPath is invalid");
    return false;
  }
  auto record = newRecord(serviceID, kCommandCopyToDevice, contents, mediaType, kMethod);
  if (!record) return false;
  record->destPath = contentsPath;
  record->storageIndex = storageIndex;
  return queue_.enqueue(std::move(record));
}

bool RequestEntry::copyContentsDeviceToMac(uint32_t serviceID, const MaybeArray& contents,
                                           const MaybeString& destinationPath, uint32_t mediaType,
                                           const MaybeString& playlistName) {
  constexpr auto kMethod =
      "-[UMSService copyContentsDeviceToMac:contents:destinationPath:mediaType:playlistName:]";
  if (isEmptyRequest(contents, kMethod)) return false;
  auto record = newRecord(serviceID, kCommandCopyFile, contents, mediaType, kMethod);
  if (!record) return false;
  record->destPath = destinationPath;
  record->playlistName = playlistName;
  return queue_.enqueue(std::move(record));
}

bool RequestEntry::copyContentsDeviceToDevice(uint32_t serviceID, const MaybeArray& contents,
                                              const MaybeString& srcLocationId,
                                              const MaybeString& destLocationId, uint32_t mediaType,
                                              uint32_t destStorageIndex) {
  constexpr auto kMethod =
      "-[UMSService "
      "copyContentsDeviceToDevice:contents:srcLocationId:destLocationId:mediaType:destStorageIndex:]";
  if (isEmptyRequest(contents, kMethod)) return false;
  auto delegate = context_.identity.confirmDelegate();
  auto destination = delegate ? delegate->getFileServiceObject(destLocationId) : nullptr;
  MaybeArray volumes = destination ? destination->diskInformation() : std::nullopt;
  if (!volumes) return false;
  Volume volume;
  if (!volumeOf(VolumeRegistry::diskInfoFromDiskInfoList(volumes, destStorageIndex), kMethod, volume))
    return false;
  // The folder is this device's: its profile is asked, with its own location.
  MaybeString contentsPath = context_.defaultFolders.defaultMediaContentsPath(
      volume.path, volume.diskType, static_cast<int32_t>(mediaType));
  if (!contentsPath) {
    context_.log.write(3, kMethod, "contentsPath is nil.");
    return false;
  }
  auto record = newRecord(serviceID, kCommandDeviceToDevice, contents, mediaType, kMethod);
  if (!record) return false;
  record->destPath = contentsPath;
  record->storageIndex = destStorageIndex;
  record->srcLocationID = srcLocationId;
  record->destLocationID = destLocationId;
  return queue_.enqueue(std::move(record));
}

bool RequestEntry::podcastFolderOfFirstVolume(const char* method, MaybeString& folder) const {
  auto diskInfo = context_.volumes.diskInfoFromIndex(0);
  if (!diskInfo) {
    context_.log.write(1, method, "diskInfo is nil");
    return false;
  }
  MaybeString volumePath = diskInfo->string(key::kVolumePath);
  if (!volumePath) return false;
  folder = context_.defaultFolders.defaultMediaContentsPath(
      volumePath, diskInfo->get(key::kDiskType).intValue(), kMediaPodcast);
  if (!folder) folder = joinedPath(*volumePath, "Podcast");
  return true;
}

bool RequestEntry::deleteContents(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                                  uint32_t diskIndex) {
  constexpr auto kMethod = "-[UMSService deleteContents:contents:mediaType:diskIndex:]";
  if (isEmptyRequest(contents, kMethod)) return false;
  MaybeString podcastFolder;
  // Podcasts live on the first volume, whichever volume the host names.
  if (mediaType == kMediaPodcast && !podcastFolderOfFirstVolume(kMethod, podcastFolder)) return false;
  auto record = newRecord(serviceID, kCommandDeleteFile, contents, mediaType, kMethod);
  if (!record) return false;
  record->destPath = podcastFolder;
  record->storageIndex = diskIndex;
  return queue_.enqueue(std::move(record));
}

}  // namespace umsservice
