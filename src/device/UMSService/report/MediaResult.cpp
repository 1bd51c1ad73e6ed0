#include "umsservice/MediaResult.h"

#include <algorithm>
#include <array>

#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr std::array<std::string_view, 10> kOwnKeys{
    key::kServiceID, key::kMediaNotiType, key::kVolumeIndex, key::kResultStatus, key::kLocationId,
    key::kFilePath,  key::kPlaylistName,  key::kDeviceName,  key::kChannelName,  key::kPodcastXmlInfo};

/// The item's tags lie in the same dictionary, under whatever keys the host's tag reader uses.
Dictionary tagsOf(const Dictionary& userInfo) {
  Dictionary tags;
  for (const std::string& name : userInfo.keys())
    if (std::find(kOwnKeys.begin(), kOwnKeys.end(), name) == kOwnKeys.end())
      tags.set(name, userInfo.get(name));
  return tags;
}

}  // namespace

MediaResult MediaResult::read(const Dictionary& userInfo) {
  auto number = [&userInfo](const char* name) { return userInfo.get(name).unsignedIntValue(); };
  MediaResult result;
  result.serviceID = number(key::kServiceID);
  result.mediaType = static_cast<MediaType>(number(key::kMediaNotiType));
  result.volumeIndex = number(key::kVolumeIndex);
  result.resultStatus = static_cast<ErrorNumber>(number(key::kResultStatus));
  result.locationID = userInfo.string(key::kLocationId);
  result.filePath = userInfo.string(key::kFilePath);
  result.playlistName = userInfo.string(key::kPlaylistName);
  result.deviceName = userInfo.string(key::kDeviceName);
  result.channelName = userInfo.string(key::kChannelName);
  result.podcastXmlInfo = userInfo.get(key::kPodcastXmlInfo).dictionary();
  result.tags = tagsOf(userInfo);
  return result;
}

std::optional<MediaResult> MediaResult::read(const Notification& notification) {
  if (notification.name != kMediaResultNotification) return std::nullopt;
  return read(notification.userInfo);
}

}  // namespace umsservice
