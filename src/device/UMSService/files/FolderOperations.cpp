#include "FolderOperations.h"

#include <algorithm>
#include <cerrno>

#include "NoMedia.h"
#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kListerMethod = "-[UMSService fileLists:fileName:enumChild:contents:]";

/// Listed paths have no separator at their end, so the last component needs no copy.
std::string_view lastComponentOf(std::string_view listedPath) {
  return listedPath.substr(listedPath.rfind('/') + 1);
}

std::vector<std::string> markersIn(const std::vector<std::string>& entries) {
  std::vector<std::string> markers;
  for (const std::string& entry : entries) {
    if (isNoMediaMarker(lastComponentOf(entry))) markers.push_back(entry);
  }
  return markers;
}

Array arrayOf(std::vector<std::string> texts) {
  std::vector<Value> values;
  values.reserve(texts.size());
  for (std::string& text : texts) values.emplace_back(std::move(text));
  return Array(std::move(values));
}

FileError missingPath() {
  return FileError{EINVAL, FileError::Action::Reading, {}};
}

}  // namespace

bool isEntryName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

FileType FolderOperations::typeOf(const std::string& path, FileType listedType) const {
  if (listedType != FileType::Unknown) return listedType;
  auto found = files_.linkAttributes(path);
  return found ? found->type : FileType::Unknown;
}

std::optional<std::vector<ListedPath>> FolderOperations::entriesAtPath(const std::string& folder) const {
  auto entries = files_.list(folder);
  if (!entries) return std::nullopt;
  std::vector<ListedPath> listed;
  listed.reserve(entries->size());
  for (DirectoryEntry& entry : *entries) {
    if (isEntryName(entry.name)) listed.push_back({std::move(entry.name), entry.type});
  }
  return listed;
}

std::optional<std::vector<ListedPath>> FolderOperations::subpathsAtPath(const std::string& folder) const {
  struct Level {
    std::string prefix;  ///< of the entries, relative to the listed folder
    std::vector<ListedPath> entries;
    size_t next = 0;
  };
  auto top = entriesAtPath(folder);
  if (!top) return std::nullopt;
  std::vector<ListedPath> subpaths;
  std::vector<Level> levels;
  levels.push_back({"", std::move(*top)});
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.entries.size()) {
      levels.pop_back();
      continue;
    }
    ListedPath& entry = level.entries[level.next++];
    std::string path = level.prefix + entry.path;
    const FileType type = typeOf(joinedPath(folder, path), entry.type);
    subpaths.push_back({path, type});
    if (type != FileType::Directory) continue;
    auto below = entriesAtPath(joinedPath(folder, path));
    if (below) levels.push_back({path + "/", std::move(*below)});
  }
  return subpaths;
}

std::vector<std::string> FolderOperations::deepNames(const std::string& folder) const {
  std::vector<std::string> names;
  auto subpaths = subpathsAtPath(folder);
  if (!subpaths) return names;  // a folder that cannot be walked counts as empty here
  names.reserve(subpaths->size());
  for (ListedPath& subpath : *subpaths) names.push_back(std::move(subpath.path));
  return names;
}

std::optional<std::vector<std::string>> FolderOperations::shallowNames(const std::string& folder) const {
  auto entries = files_.list(folder);
  if (!entries) {
    context_.log.write(3, kListerMethod, "fileLists Failed. error = %@", entries.error());
    return std::nullopt;
  }
  std::vector<std::string> names;
  names.reserve(entries->size());
  for (DirectoryEntry& entry : *entries) {
    if (isEntryName(entry.name)) names.push_back(std::move(entry.name));
  }
  return names;
}

std::optional<std::vector<std::string>> FolderOperations::listed(const MaybeString& folder,
                                                                 bool enumChild) const {
  if (!folder) {
    context_.log.write(3, kListerMethod, "Input parameters is invalid. FolderNameString = %@", folder);
    return std::nullopt;
  }
  auto entries = enumChild ? std::optional(deepNames(*folder)) : shallowNames(*folder);
  if (!entries) return std::nullopt;
  std::vector<std::string> markers = markersIn(*entries);
  if (!markers.empty()) {
    NoMediaFolders hidden(markers);
    std::erase_if(*entries, [&](const std::string& entry) { return hidden.hides(entry); });
  }
  return entries;
}

bool FolderOperations::fileLists(uint32_t, const MaybeString& fileName, bool enumChild,
                                 MaybeArray& contents) const {
  auto entries = listed(fileName, enumChild);
  if (entries) contents = arrayOf(std::move(*entries));
  return entries.has_value();
}

MaybeArray FolderOperations::directChildren(const MaybeString& folder, bool folders,
                                            const char* method) const {
  if (!folder) {
    context_.log.write(3, method, "Input parameters is invalid. FolderNameString = %@", folder);
    return std::nullopt;
  }
  auto listed = files_.list(*folder);
  if (!listed) {
    context_.log.write(3, method, "fileLists Failed. error = %@", listed.error());
    return std::nullopt;
  }
  std::vector<std::string> names;
  for (DirectoryEntry& entry : *listed) {
    if (!isEntryName(entry.name)) {
      context_.log.write(5, method, "Data is nil. Next Data Dictionary search.");
      continue;
    }
    if (isHiddenName(entry.name)) continue;
    bool isFolder = entry.type == FileType::Directory;
    if (entry.type == FileType::Unknown || entry.type == FileType::SymbolicLink) {
      auto found = files_.attributes(joinedPath(*folder, entry.name));
      if (!found) continue;
      isFolder = found->type == FileType::Directory;
    }
    if (isFolder == folders) names.push_back(std::move(entry.name));
  }
  return arrayOf(std::move(names));
}

MaybeArray FolderOperations::folderLists(const MaybeString& folder) const {
  return directChildren(folder, true, "-[UMSService folderLists:]");
}

MaybeArray FolderOperations::fileLists(const MaybeString& folder) const {
  return directChildren(folder, false, "-[UMSService fileLists:]");
}

Array FolderOperations::recursiveFolderLists(const std::string& folder) const {
  std::vector<std::string> paths;
  std::vector<std::string> waiting{folder};  // last in, first out: depth first without a deep call stack
  while (!waiting.empty()) {
    std::string current = std::move(waiting.back());
    waiting.pop_back();
    if (!paths.empty()) {
      context_.log.write(7, "-[UMSService recursiveFolderLists:]", "Entry = %@", lastPathComponent(current));
    }
    paths.push_back(current);
    auto itself = files_.linkAttributes(current);
    bool isLink = paths.size() > 1 && itself && itself->type == FileType::SymbolicLink;
    MaybeArray names = isLink ? std::nullopt : folderLists(current);
    if (!names) continue;
    auto children = names->snapshot();
    for (auto name = children.rbegin(); name != children.rend(); ++name) {
      waiting.push_back(joinedPath(current, *name->stringIfAny()));
    }
  }
  return arrayOf(std::move(paths));
}

MaybeArray FolderOperations::getDeviceAllFolderLists() const {
  constexpr auto kMethod = "-[UMSService getDeviceAllFolderLists]";
  Array trees;
  for (const Value& element : context_.volumes.diskInformation().snapshot()) {
    auto volume = element.dictionary();
    if (!volume) {
      context_.log.write(3, kMethod, "Volume Info is nil.");
      continue;
    }
    MaybeString path = volume->string(key::kVolumePath);
    if (!path) {
      context_.log.write(3, kMethod, "Volume Path is nil.");
      continue;
    }
    trees.append(Dictionary{{key::kDiskIndex, volume->get(key::kDiskIndex)},
                            {key::kVolumePath, *path},
                            {"folderLists", recursiveFolderLists(*path)}});
  }
  context_.log.write(7, kMethod, "All Folder List is %@", Value(trees));
  return trees.empty() ? MaybeArray() : MaybeArray(trees);
}

bool FolderOperations::fileExistsAtPath(const MaybeString& path, bool* isDirectory) const {
  constexpr auto kMethod = "-[UMSService fileExistsAtPath:isDirectory:]";
  context_.log.write(7, kMethod, "ENTER");
  bool exists = false;
  if (!path) {
    context_.log.write(3, kMethod, "File path is nil");
  } else {
    auto found = files_.attributes(*path);
    exists = static_cast<bool>(found);
    if (isDirectory) *isDirectory = found && found->type == FileType::Directory;
  }
  context_.log.write(7, kMethod, "EXIT");
  return exists;
}

uint64_t FolderOperations::fileSizeAtDevice(const MaybeString& path) const {
  FileResult<FileAttributes> found = path ? files_.attributes(*path) : missingPath();
  if (found) return found->size;
  context_.log.write(3, "-[UMSService fileSizeAtDevice:]", "Get Attributes Error : [%@]", found.error());
  return 0;
}

bool FolderOperations::deletefileAtDevice(const MaybeString& path, uint32_t* error) const {
  uint32_t ignored = 0;
  uint32_t& number = error ? *error : ignored;
  number = kErrorDeleteFailed;
  if (!path) return false;
  number = kErrorNone;
  FileStatus removed = files_.remove(*path);
  if (removed) return true;
  context_.log.write(3, "-[UMSService deletefileAtDevice:error:]", "Delete file is Failed. error = %@",
                     removed.error());
  number = kErrorDeleteFailed;
  return false;
}

bool FolderOperations::deleteFolder(const MaybeString& path) const {
  if (!path) return false;
  if (files_.remove(*path)) return true;
  context_.log.write(3, "-[UMSService deleteFolder:]", "Delete folder is failed.");
  return false;
}

bool FolderOperations::createFolder(const MaybeString& path, std::string* words) const {
  if (!path) return false;
  if (files_.isFolder(*path)) return true;
  FileStatus made = files_.createFolders(*path);
  if (made) return true;
  if (words) *words = made.error().words();
  context_.log.write(1, "-[UMSService createFolder:]", "Create download folder is filed. Error = %@",
                     made.error());
  return false;
}

}  // namespace umsservice
