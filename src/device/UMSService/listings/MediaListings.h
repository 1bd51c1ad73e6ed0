/// What media lies on the device: by type with or without tags, for all types at once, and by extension in
/// any folder.
///
/// Runs on the caller's thread without locks, beside whatever the worker does; safe from any thread. Folders
/// under ".nomedia" markers contribute nothing and hidden entries are passed over. One bad file never fails a
/// listing. Tags come from the host's reader.
#pragma once

#include "FolderOperations.h"
#include "PodcastSource.h"
#include "SingleFile.h"

namespace umsservice {

class MediaListings {
 public:
  MediaListings(const ServiceContext& context, const FolderOperations& folders, const SingleFile& sizes,
                const PodcastSource& podcasts)
      : context_(context), folders_(folders), sizes_(sizes), podcasts_(podcasts) {}

  /// Dictionaries with tags of one type on one volume (for podcasts: podcast dictionaries). Nil for an
  /// unknown volume or type and for a volume that cannot be listed.
  MaybeArray fileInformationList(uint32_t mediaType, uint32_t diskIndex) const;
  /// "diskIndex", "FilePath" and "FileName" of music, images or videos; nil also while the service shuts
  /// down.
  MaybeArray fileNameList(uint32_t mediaType, uint32_t diskIndex) const;
  /// The same with "FileSize", and with the path below the volume as the name; behind "External/" on cards.
  MaybeArray fileNameListWithFolderStructure(uint32_t mediaType, uint32_t diskIndex) const;
  /// Four groups for each volume: music, images, videos, podcasts.
  MaybeArray fileInformationListForAllMediaType() const;
  /// Files of given extensions in any folder, with name, path, size, and the folder when recursive.
  MaybeArray fileInformationList(const MaybeString& folder, const MaybeArray& extensionList,
                                 bool recursive) const;
  /// The tag dictionaries of such files directly in a folder, as the reader gives them.
  MaybeArray fileInformationList(const MaybeString& folder, const MaybeArray& extensionList) const;
  /// The description of a file that was just placed at a path.
  MaybeDictionary mediaFileInfoFromDevice(const MaybeDictionary& fileInformation,
                                          const MaybeString& path) const;
  /// Whether a path contains the default folder of a media type, in any letter case.
  bool checkMediaContent(const MaybeString& volumePath, const MaybeString& filePath, int32_t diskType,
                         int32_t mediaType) const;

 private:
  struct Volume {
    uint32_t index = 0;
    int32_t diskType = 0;
    MaybeString path;  ///< nil volumes cannot be listed
  };
  /// The entries of four media types on one volume, in the order of the types.
  struct Groups {
    std::vector<Value> byType[4];
  };
  enum class Collected { Next, ShuttingDown };

  std::optional<Volume> volumeOf(uint32_t diskIndex) const;
  std::optional<PathList> mediaPaths(const Volume& volume, uint32_t mediaType) const;
  std::optional<PathList> nameListPaths(const Volume& volume, uint32_t mediaType, const char* method) const;
  bool isThumbnail(const std::string& path) const;
  MaybeDictionary tagsOf(const std::string& path) const;
  MaybeArray taggedFiles(const Volume& volume, uint32_t mediaType) const;
  MaybeArray podcastsOf(const Volume& volume) const;
  void collectPodcast(const std::string& folder, const Value& entry, Array& podcasts) const;
  Collected collect(const std::string& volumePath, std::string_view subpath, Groups& groups) const;
  void collectTagged(const std::string& path, int32_t mediaType, const Dictionary& tags,
                     Groups& groups) const;
  MaybeDictionary fileByExtension(const std::string& folder, std::string_view subpath, bool recursive) const;
  bool isListable(const std::string& folder, std::string_view subpath, const MaybeArray& extensions,
                  const char* method) const;
  bool isFile(const std::string& path, FileType listedType) const;

  const ServiceContext& context_;
  const FolderOperations& folders_;
  const SingleFile& sizes_;
  const PodcastSource& podcasts_;
};

}  // namespace umsservice
