#include "podcast/PodcastPeer.h"

#include "Paths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsctl {

using namespace umsservice;

bool PodcastPeer::syncWriteFileToDevice(const MaybeDictionary& fileInformation,
                                        const MaybeString& subFolderName, uint32_t diskIndex,
                                        uint32_t mediaType, bool isOverWrite,
                                        const std::shared_ptr<TransferCallback>& callbackObject,
                                        TransferContext* context, uint32_t* error) {
  MaybeString source = fileInformation ? fileInformation->string(key::kFilePath) : std::nullopt;
  MaybeString name = fileInformation ? fileInformation->string(key::kFileName) : std::nullopt;
  if (source && !name) name = lastComponent(*source);
  if (source && isInTheWay(*source, podcastFolder_ + "/" + subFolderName.value_or("") + "/" + *name)) {
    if (error) *error = kErrorFileExists;
    return false;
  }
  return service_.syncWriteFileToDevice(fileInformation, subFolderName, diskIndex, mediaType, isOverWrite,
                                        callbackObject, context, error);
}

/// Only an answer tells the second write of a file from the first one of its next episode: channels list a
/// file twice after a sync that has replaced it.
bool PodcastPeer::isInTheWay(const std::string& source, const std::string& place) {
  auto existing = files_.linkAttributes(place);
  if (!existing) return false;
  std::string report = source + '\0' + place;
  const bool isReplaced = isAgreed_ && existing->type != FileType::Directory && report == reported_;
  isAgreed_ = false;
  reported_ = isReplaced ? "" : report;
  return !isReplaced;
}

}  // namespace umsctl
