#include "AskingDevice.h"

#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsctl {

using namespace umsservice;

MaybeString AskingDevice::placeOf(const std::string& name, uint32_t mediaType, uint32_t diskIndex) {
  auto volume = service_.diskInfoFromIndex(diskIndex);
  if (!volume) return std::nullopt;
  auto folder = service_.defaultMediaContentsPath(volume->string(key::kVolumePath),
                                                  volume->get(key::kDiskType).intValue(),
                                                  static_cast<int32_t>(mediaType));
  return folder ? MaybeString(*folder + "/" + name) : std::nullopt;
}

bool AskingDevice::syncWriteFileToDevice(const MaybeDictionary& fileInformation,
                                         const MaybeString& subFolderName, uint32_t diskIndex,
                                         uint32_t mediaType, bool isOverWrite,
                                         const std::shared_ptr<TransferCallback>& callbackObject,
                                         TransferContext* context, uint32_t* error) {
  MaybeString name = fileInformation ? fileInformation->string(key::kFileName) : std::nullopt;
  MaybeString place = name ? placeOf(*name, mediaType, diskIndex) : std::nullopt;
  if (place && !isOverWrite && files_.linkAttributes(*place)) {
    if (error) *error = kErrorFileExists;
    return false;
  }
  return service_.syncWriteFileToDevice(fileInformation, subFolderName, diskIndex, mediaType, isOverWrite,
                                        callbackObject, context, error);
}

}  // namespace umsctl
