/// Small synchronous operations on device paths, and the folder lister on which the media listings rest.
///
/// Run on the caller's thread without locks; safe from any thread. Links to folders are named, never
/// entered, so a loop on a device cannot hold a listing.
#pragma once

#include "PathList.h"
#include "ServiceContext.h"

namespace umsservice {

/// Whether a listed name can be one of the folder's entries. A damaged file system can hand out names that
/// are none, or that lead back to the folder or out of it.
bool isEntryName(std::string_view name);

class FolderOperations {
 public:
  explicit FolderOperations(const ServiceContext& context) : context_(context), files_(context.files()) {}

  /// Lists a folder, deeply (paths relative to it, every depth) or not, without what lies under ".nomedia"
  /// folders; folders are entries too. The first argument is not used.
  bool fileLists(uint32_t unused, const MaybeString& fileName, bool enumChild, MaybeArray& contents) const;
  /// The same as plain text; nothing when the folder cannot be listed.
  std::optional<PathList> listed(const MaybeString& folder, bool enumChild) const;
  /// Everything below a folder, depth first, without any rule; nothing when the folder cannot be listed.
  std::optional<PathList> subpathsAtPath(const std::string& folder) const;
  /// The direct entries of a folder, without any rule.
  std::optional<PathList> entriesAtPath(const std::string& folder) const;
  /// Names of the direct sub-folders that are not hidden; nil when the folder cannot be listed.
  MaybeArray folderLists(const MaybeString& folder) const;
  /// Names of the direct files that are not hidden; nil when the folder cannot be listed.
  MaybeArray fileLists(const MaybeString& folder) const;
  /// The folder itself and every folder below it that is not hidden, depth first.
  Array recursiveFolderLists(const std::string& folder) const;
  /// For every volume its folder tree; nil when there is none.
  MaybeArray getDeviceAllFolderLists() const;

  bool fileExistsAtPath(const MaybeString& path, bool* isDirectory) const;
  uint64_t fileSizeAtDevice(const MaybeString& path) const;
  /// Removes an item, a folder with everything in it.
  bool deletefileAtDevice(const MaybeString& path, uint32_t* error) const;
  bool deleteFolder(const MaybeString& path) const;
  /// Makes a folder with all folders above it; an existing one is success, a file of that name is not.
  /// `words`, where given, receives the system's own words for a failure.
  bool createFolder(const MaybeString& path, std::string* words = nullptr) const;

 private:
  MaybeArray directChildren(const MaybeString& folder, bool folders, const char* method) const;
  std::optional<PathList> shallowNames(const std::string& folder) const;
  FileType typeOf(const std::string& path) const;

  const ServiceContext& context_;
  FileSystem& files_;
};

}  // namespace umsservice
