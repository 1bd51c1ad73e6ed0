#include "MediaListings.h"

#include "CaseFolding.h"
#include "DeviceScan.h"
#include "ListedFiles.h"
#include "MediaTypes.h"
#include "StringPaths.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

/// Images up to this size are thumbnails that players and cameras make for themselves.
constexpr int32_t kLargestThumbnail = 5000;

bool isNameListed(uint32_t mediaType) {
  return mediaType == kMediaMusic || mediaType == kMediaImage || mediaType == kMediaVideo;
}

constexpr auto kListFailed = "Get UMS Music list failed";  // for every media type

}  // namespace

std::optional<MediaListings::Volume> MediaListings::volumeOf(uint32_t diskIndex) const {
  auto diskInfo = context_.volumes.diskInfoFromIndex(diskIndex);
  if (!diskInfo) return std::nullopt;
  return Volume{diskIndex, diskInfo->get(key::kDiskType).intValue(), diskInfo->string(key::kVolumePath)};
}

MaybeDictionary MediaListings::tagsOf(const std::string& path) const {
  const auto& factory = context_.environment.mediaInfoFactory;
  auto builder = factory ? factory->getBuilder(path) : nullptr;
  return builder ? builder->build(path) : std::nullopt;
}

bool MediaListings::isThumbnail(const std::string& path) const {
  auto attributes = context_.files().attributes(path);
  return attributes && static_cast<int32_t>(attributes->size) <= kLargestThumbnail;
}

/// The visible files of one type, as paths below the volume.
std::optional<PathList> MediaListings::mediaPaths(const Volume& volume, uint32_t mediaType) const {
  auto paths = folders_.listed(volume.path, true);
  if (!paths) return std::nullopt;
  const auto& extensions = extensionsOf(static_cast<int32_t>(mediaType));
  paths->keepIf([&](std::string_view path) {
    std::string_view extension = pathExtensionIn(path);
    return !extension.empty() && !isHiddenFile(path) && checkContentWithExtentions(extension, extensions);
  });
  return paths;
}

MaybeArray MediaListings::fileInformationList(uint32_t mediaType, uint32_t diskIndex) const {
  if (!isNameListed(mediaType) && mediaType != kMediaPodcast) return std::nullopt;
  auto volume = volumeOf(diskIndex);
  if (!volume) return std::nullopt;
  return mediaType == kMediaPodcast ? podcastsOf(*volume) : taggedFiles(*volume, mediaType);
}

MaybeArray MediaListings::taggedFiles(const Volume& volume, uint32_t mediaType) const {
  auto paths = mediaPaths(volume, mediaType);
  if (!paths) {
    context_.log.write(1, "-[UMSService fileInformationList:mediaType:diskIndex:]", kListFailed);
    return std::nullopt;
  }
  std::vector<Value> files;
  for (size_t i = 0; i < paths->size(); ++i) {
    std::string path = joinedPath(*volume.path, (*paths)[i]);
    MaybeDictionary tags = tagsOf(path);
    if (!tags || (mediaType == kMediaImage && isThumbnail(path))) continue;
    Dictionary file = tags->mutableCopy();
    file.set(key::kDiskIndex, volume.index);
    file.remove("AlbumArt");
    files.emplace_back(file);
  }
  return Array(std::move(files));
}

MaybeArray MediaListings::podcastsOf(const Volume& volume) const {
  MaybeString folder =
      context_.defaultFolders.defaultMediaContentsPath(volume.path, volume.diskType, kMediaPodcast);
  if (!folder && volume.path) folder = joinedPath(*volume.path, "Podcast");
  MaybeArray entries;
  if (!folder || !podcasts_.podcastXmlLists(folder, entries)) {
    context_.log.write(1, "-[UMSService fileInformationList:mediaType:diskIndex:]",
                       "UmsPodcastXmlList is failed");
    return std::nullopt;
  }
  Array podcasts;
  if (!entries) return podcasts;
  for (const Value& entry : entries->snapshot()) collectPodcast(*folder, entry, podcasts);
  return podcasts;
}

void MediaListings::collectPodcast(const std::string& folder, const Value& entry, Array& podcasts) const {
  constexpr auto kMethod = "-[UMSService fileInformationList:mediaType:diskIndex:]";
  const std::string* subpath = entry.stringIfAny();
  if (!subpath) {
    context_.log.write(1, kMethod, "Podcast File Path is nil. Next Podcast File search");
    return;
  }
  std::string extension = pathExtension(*subpath);
  if (extension.empty()) {
    context_.log.write(3, kMethod, "This File is not Podcast File.");
  } else if (!equalIgnoringCase(extension, "xml")) {
    context_.log.write(3, kMethod, "This is not podcast XML file. File Path = @");
  } else if (subpath->find('\0') != std::string::npos) {
    context_.log.write(3, kMethod, "Consist of XML Path is failed.");
  } else if (MaybeDictionary podcast = podcasts_.umsPodcastXmlData(joinedPath(folder, *subpath))) {
    podcasts.append(*podcast);
  }
}

/// The paths of a name listing; nothing when it has to end with nil. The release flag is looked at before
/// each entry: a listing of a device that is going away is worth nothing.
std::optional<PathList> MediaListings::nameListPaths(const Volume& volume, uint32_t mediaType,
                                                     const char* method) const {
  auto paths = folders_.listed(volume.path, true);
  if (!paths) {
    context_.log.write(1, method, kListFailed);
    return std::nullopt;
  }
  const auto& extensions = extensionsOf(static_cast<int32_t>(mediaType));
  bool isReleased = false;
  paths->keepIf([&](std::string_view path) {
    std::string_view extension = pathExtensionIn(path);
    if (extension.empty()) return false;
    isReleased = isReleased || context_.isReleased();
    return !isReleased && !isHiddenFile(path) && checkContentWithExtentions(extension, extensions);
  });
  return isReleased ? std::nullopt : std::move(paths);
}

MaybeArray MediaListings::fileNameList(uint32_t mediaType, uint32_t diskIndex) const {
  auto volume = isNameListed(mediaType) ? volumeOf(diskIndex) : std::nullopt;
  auto paths = volume ? nameListPaths(*volume, mediaType, "-[UMSService fileNameList:mediaType:diskIndex:]")
                      : std::nullopt;
  if (!paths) return std::nullopt;
  return listedFiles({.folder = *volume->path, .diskIndex = volume->index}, std::move(*paths));
}

MaybeArray MediaListings::fileNameListWithFolderStructure(uint32_t mediaType, uint32_t diskIndex) const {
  auto volume = isNameListed(mediaType) ? volumeOf(diskIndex) : std::nullopt;
  constexpr auto kMethod = "-[UMSService fileNameListWithFolderStructure:mediaType:diskIndex:]";
  auto paths = volume ? nameListPaths(*volume, mediaType, kMethod) : std::nullopt;
  if (!paths) return std::nullopt;
  std::vector<uint64_t> sizes;
  sizes.reserve(paths->size());
  for (size_t i = 0; i < paths->size(); ++i) {
    if (context_.isReleased()) return std::nullopt;
    sizes.push_back(sizes_.mediaFileSize(joinedPath(*volume->path, (*paths)[i])));
  }
  using FileName = ListedFilesForm::FileName;
  return listedFiles({.folder = *volume->path,
                      .fileName = volume->index == 0 ? FileName::Path : FileName::PathOnCard,
                      .diskIndex = volume->index},
                     std::move(*paths), std::move(sizes));
}

MaybeArray MediaListings::fileInformationListForAllMediaType() const {
  constexpr auto kMethod = "-[UMSService fileInformationListForAllMediaType:]";
  if (!context_.volumes.diskInfoFromIndex(0)) return std::nullopt;
  Array listing;
  for (uint32_t index = 0;; ++index) {
    auto volume = volumeOf(index);
    if (!volume || !volume->path) return listing;
    auto paths = folders_.listed(volume->path, true);
    if (!paths) {
      context_.log.write(1, kMethod, "UMS Media Scan is failed");
      continue;
    }
    Groups groups;
    for (size_t i = 0; i < paths->size(); ++i) {
      if (collect(*volume->path, (*paths)[i], groups) == Collected::ShuttingDown) return std::nullopt;
    }
    for (int32_t mediaType : {kMediaMusic, kMediaImage, kMediaVideo, kMediaPodcast}) {
      Dictionary group{{"DiskIndex", index}, {"ContentMediaType", static_cast<uint32_t>(mediaType)}};
      auto& files = groups.byType[mediaType - kMediaMusic];
      if (!files.empty()) group.set("ContentMediaTag", Array(std::move(files)));
      listing.append(group);
    }
  }
}

MediaListings::Collected MediaListings::collect(const std::string& volumePath, std::string_view subpath,
                                                Groups& groups) const {
  if (pathExtensionIn(subpath).empty()) return Collected::Next;
  if (context_.isReleased()) return Collected::ShuttingDown;
  if (isHiddenFile(subpath)) return Collected::Next;
  std::string path = joinedPath(volumePath, subpath);
  int32_t mediaType = mediaTypeOf(path);
  if (mediaType == kMediaUnknown) return Collected::Next;
  MaybeDictionary tags = tagsOf(path);
  if (context_.isReleased()) return Collected::ShuttingDown;
  if (tags) {
    collectTagged(path, mediaType, *tags, groups);
  } else {
    context_.log.write(3, "-[UMSService fileInformationListForAllMediaType:]",
                       "Get Media File Tag Information is failed.");
  }
  return Collected::Next;
}

void MediaListings::collectTagged(const std::string& path, int32_t mediaType, const Dictionary& tags,
                                  Groups& groups) const {
  auto& group = groups.byType[mediaType - kMediaMusic];
  if (mediaType == kMediaPodcast) {
    if (MaybeDictionary podcast = podcasts_.umsPodcastXmlData(path)) group.emplace_back(*podcast);
    return;
  }
  if (mediaType == kMediaImage && isThumbnail(path)) return;
  Dictionary file = tags;
  if (mediaType == kMediaMusic) file.remove("AlbumArt");
  group.emplace_back(file);
}

MaybeDictionary MediaListings::mediaFileInfoFromDevice(const MaybeDictionary& fileInformation,
                                                       const MaybeString& path) const {
  if (fileInformation && fileInformation->contains("Title")) {
    Dictionary file = fileInformation->mutableCopy();
    file.set(key::kFilePath, path);
    return file;
  }
  return path ? tagsOf(*path) : std::nullopt;
}

bool MediaListings::checkMediaContent(const MaybeString& volumePath, const MaybeString& filePath,
                                      int32_t diskType, int32_t mediaType) const {
  constexpr auto kMethod = "-[UMSService checkMediaContent:filePath:diskType:mediaType:]";
  if (!volumePath || !filePath) {
    context_.log.write(3, kMethod, "Input File Path is nil.");
    return false;
  }
  MaybeString folder = context_.defaultFolders.defaultMediaContentsPath(volumePath, diskType, mediaType);
  if (!folder) {
    context_.log.write(3, kMethod, "Get Default Path is failed");
    return false;
  }
  return containsIgnoringCase(*filePath, *folder);
}

}  // namespace umsservice
