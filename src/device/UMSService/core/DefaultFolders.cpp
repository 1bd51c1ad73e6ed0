#include "DefaultFolders.h"

#include "StringPaths.h"
#include "umsservice/Notifications.h"
#include "umsservice/ServiceInfo.h"

namespace umsservice {
namespace {

using ProfileQuery = MaybeString (ProfileInfo::*)(const MaybeString&);

/// One row for each media type that has a folder.
struct MediaFolder {
  int32_t mediaType;
  ProfileQuery internal;
  ProfileQuery external;
  const char* fixedName;
  const char* hostKey;
};

constexpr MediaFolder kMediaFolders[] = {
    {kMediaMusic, &ProfileInfo::contentsMusicDefaultFolderInternal,
     &ProfileInfo::contentsMusicDefaultFolderExternal, "Music", "DefaultMusicPath"},
    {kMediaImage, &ProfileInfo::contentsImageDefaultFolderInternal,
     &ProfileInfo::contentsImageDefaultFolderExternal, "DCIM/Camera", "DefaultImagePath"},
    {kMediaVideo, &ProfileInfo::contentsMovieDefaultFolderInternal,
     &ProfileInfo::contentsMovieDefaultFolderExternal, "DCIM/Camera", "DefaultMoviePath"},
    {kMediaPodcast, &ProfileInfo::contentsPodcastDefaultFolderInternal,
     &ProfileInfo::contentsPodcastDefaultFolderExternal, "Podcast", "DefaultPodcastPath"},
};

const MediaFolder* mediaFolder(int32_t mediaType) {
  for (const MediaFolder& folder : kMediaFolders) {
    if (folder.mediaType == mediaType) return &folder;
  }
  return nullptr;
}

}  // namespace

MaybeString DefaultFolders::profileFolder(bool internal, int32_t mediaType) const {
  const MediaFolder* folder = mediaFolder(mediaType);
  if (!profile_ || !folder) return std::nullopt;
  return ((*profile_).*(internal ? folder->internal : folder->external))(identity_.currentLocationID());
}

MaybeString DefaultFolders::defaultMediaContentsPath(const MaybeString& volumePath, int32_t diskType,
                                                     int32_t mediaType) const {
  if (mediaType == kMediaVolumeItself) return std::nullopt;
  const MediaFolder* folder = mediaFolder(mediaType);
  if (!folder) {
    log_.write(3, "-[UMSService defaultMediaContentsPath:diskType:mediaType:]",
               "Do not support media type. Media Type = %d", mediaType);
    return std::nullopt;
  }
  if (!volumePath) return std::nullopt;
  MaybeString answer = profileFolder(diskType == kInternalDisk, mediaType);
  if (answer && !answer->empty()) return *volumePath + *answer;
  return joinedPath(*volumePath, folder->fixedName);
}

MaybeString DefaultFolders::defaultUmsMediaPath(uint32_t diskIndex, uint32_t mediaType) const {
  const MediaFolder* folder = mediaFolder(static_cast<int32_t>(mediaType));
  if (!volumes_.diskInfoFromIndex(diskIndex) || !folder) return std::nullopt;
  MaybeString answer = profileFolder(diskIndex == 0, folder->mediaType);
  return answer ? answer : folder->fixedName;
}

MaybeString DefaultFolders::getMediaDefaultPath(int32_t mediaType) const {
  const MediaFolder* folder = mediaFolder(mediaType);
  if (!folder) {
    log_.write(3, "-[UMSService getMediaDefaultPath:]", "Do not support media type. Media Type = %d",
               mediaType);
    return std::nullopt;
  }
  MaybeString answer = profileFolder(true, mediaType);
  return answer ? *answer + "/" : "/" + std::string(folder->fixedName) + "/";
}

MaybeString DefaultFolders::defaultMediaContentsPath(const MaybeArray& diskInfoList, uint32_t index,
                                                     int32_t mediaType) {
  auto volume = VolumeRegistry::diskInfoFromDiskInfoList(diskInfoList, index);
  if (!volume) return std::nullopt;
  if (mediaType == kMediaVolumeItself) return volume->string(key::kVolumePath);
  const MediaFolder* folder = mediaFolder(mediaType);
  return folder ? volume->string(folder->hostKey) : std::nullopt;
}

}  // namespace umsservice
