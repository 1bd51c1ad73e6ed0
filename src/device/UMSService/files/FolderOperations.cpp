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

std::vector<std::string> markersIn(const PathList& paths) {
  std::vector<std::string> markers;
  for (size_t i = 0; i < paths.size(); ++i) {
    if (isNoMediaMarker(lastComponentOf(paths[i]))) markers.emplace_back(paths[i]);
  }
  return markers;
}

PathList entriesOf(const std::vector<DirectoryEntry>& entries) {
  PathList names;
  for (const DirectoryEntry& entry : entries) {
    if (isEntryName(entry.name)) names.append("", entry.name, entry.type);
  }
  return names;
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

FileType FolderOperations::typeOf(const std::string& path) const {
  auto found = files_.linkAttributes(path);
  return found ? found->type : FileType::Unknown;
}

std::optional<PathList> FolderOperations::entriesAtPath(const std::string& folder) const {
  auto entries = files_.list(folder);
  return entries ? std::optional(entriesOf(*entries)) : std::nullopt;
}

std::optional<PathList> FolderOperations::subpathsAtPath(const std::string& folder) const {
  struct Level {
    std::string prefix;  ///< of the entries, relative to the listed folder
    std::vector<DirectoryEntry> entries;
    size_t next = 0;
  };
  auto top = files_.list(folder);
  if (!top) return std::nullopt;
  PathList subpaths;
  std::vector<Level> levels;
  levels.push_back({"", std::move(*top)});
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.entries.size()) {
      levels.pop_back();
      continue;
    }
    const DirectoryEntry& entry = level.entries[level.next++];
    if (!isEntryName(entry.name)) continue;
    FileType type = entry.type;
    if (type == FileType::Unknown) type = typeOf(joinedPath(folder, level.prefix + entry.name));
    subpaths.append(level.prefix, entry.name, type);
    if (type != FileType::Directory) continue;
    const std::string path = level.prefix + entry.name;
    auto below = files_.list(joinedPath(folder, path));
    if (below) levels.push_back({path + "/", std::move(*below)});
  }
  return subpaths;
}

std::optional<PathList> FolderOperations::shallowNames(const std::string& folder) const {
  auto entries = files_.list(folder);
  if (entries) return entriesOf(*entries);
  context_.log.write(3, kListerMethod, "fileLists Failed. error = %@", entries.error());
  return std::nullopt;
}

std::optional<PathList> FolderOperations::listed(const MaybeString& folder, bool enumChild) const {
  if (!folder) {
    context_.log.write(3, kListerMethod, "Input parameters is invalid. FolderNameString = %@", folder);
    return std::nullopt;
  }
  auto paths = enumChild ? subpathsAtPath(*folder) : shallowNames(*folder);
  if (!paths && !enumChild) return std::nullopt;
  if (!paths) return PathList();  // a folder that cannot be walked counts as empty
  std::vector<std::string> markers = markersIn(*paths);
  if (!markers.empty()) {
    NoMediaFolders hidden(markers);
    paths->keepIf([&](std::string_view path) { return !hidden.hides(path); });
  }
  return paths;
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
