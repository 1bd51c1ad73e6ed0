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

/// The second write of a file follows the first one at once, and only when the person agrees.
bool PodcastPeer::isInTheWay(const std::string& source, const std::string& place) {
  auto existing = files_.linkAttributes(place);
  if (!existing) return false;
  std::string report = source + '\0' + place;
  bool isAgreed = existing->type != FileType::Directory && report == reported_;
  reported_ = isAgreed ? "" : report;
  return !isAgreed;
}

}  // namespace umsctl
