/// "QDORVEL_NOTI_MEDIA_TRASFER_RESULT" as a struct: how one media item of a request ended.
///
/// The dictionary of the notification stays the contract; this reads it once and refers to nothing of it but
/// `podcastXmlInfo` and containers among the tags. Reading is safe from any thread and never fails: a key
/// that is missing or holds no number gives 0, text of digits counts as its number, and a key that is missing
/// or holds no text or dictionary gives an absent one.
#pragma once

#include <cstdint>
#include <optional>

#include "umsservice/ErrorNumbers.h"
#include "umsservice/Export.h"
#include "umsservice/NotificationCenter.h"
#include "umsservice/ServiceInfo.h"

namespace umsservice {

struct UMS_EXPORT MediaResult {
  uint32_t serviceID = 0;               ///< the host's number of the request
  MediaType mediaType = kMediaUnknown;  ///< a code without a name of its own stays as it is
  uint32_t volumeIndex = 0;             ///< 0-based
  ErrorNumber resultStatus = kErrorNone;
  MaybeString locationID;          ///< the device that the item went to
  MaybeString filePath;            ///< full path of the item
  MaybeString playlistName;        ///< of the request
  MaybeString deviceName;          ///< model name of the device
  MaybeString channelName;         ///< podcast channel of the item
  MaybeDictionary podcastXmlInfo;  ///< the channel's record: the dictionary itself, not a copy
  Dictionary tags;                 ///< a new dictionary of all other entries: what the tag reader told

  /// Whether the item is where it should be.
  bool isDone() const { return resultStatus == kItemTransferred; }

  /// From the dictionary of such a notification.
  static MediaResult read(const Dictionary& userInfo);
  /// From a notification of any name; absent for another one.
  static std::optional<MediaResult> read(const Notification& notification);
};

}  // namespace umsservice
