#include "FolderOperations.h"

#include <algorithm>
#include <cerrno>

#include "NoMedia.h"
#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

std::vector<std::string> markersIn(const std::vector<std::string>& entries) {
  std::vector<std::string> markers;
  for (const std::string& entry : entries) {
    if (isNoMediaMarker(lastPathComponent(entry))) markers.push_back(entry);
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

FileType FolderOperations::typeOf(const std::string& path, FileType listedType) const {
  if (listedType != FileType::Unknown) return listedType;
  auto found = files_.linkAttributes(path);
  return found ? found->type : FileType::Unknown;
}

std::vector<std::string> FolderOperations::subpathsAtPath(const std::string& folder) const {
  std::vector<std::string> subpaths;
  struct Level {
    std::string prefix;  ///< of the entries, relative to the listed folder
    std::vector<DirectoryEntry> entries;
    size_t next = 0;
  };
  std::vector<Level> levels;
  auto enter = [&](const std::string& path, std::string prefix) {
    auto entries = files_.list(path);
    if (entries) levels.push_back({std::move(prefix), std::move(*entries), 0});
  };
  enter(folder, "");
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.entries.size()) {
      levels.pop_back();
      continue;
    }
    const DirectoryEntry& entry = level.entries[level.next++];
    subpaths.push_back(level.prefix + entry.name);
    std::string path = joinedPath(folder, subpaths.back());
    if (typeOf(path, entry.type) == FileType::Directory) enter(path, subpaths.back() + "/");
  }
  return subpaths;
}

bool FolderOperations::listShallow(const std::string& folder, std::vector<std::string>& entries) const {
  auto listed = files_.list(folder);
  if (!listed) {
    context_.log.write(3, "-[UMSService fileLists:fileName:enumChild:contents:]",
                       "fileLists Failed. error = %@", listed.error());
    return false;
  }
  for (DirectoryEntry& entry : *listed) entries.push_back(std::move(entry.name));
  return true;
}

bool FolderOperations::fileLists(uint32_t, const MaybeString& fileName, bool enumChild,
                                 MaybeArray& contents) const {
  if (!fileName) {
    context_.log.write(3, "-[UMSService fileLists:fileName:enumChild:contents:]",
                       "Input parameters is invalid. FolderNameString = %@", fileName);
    return false;
  }
  std::vector<std::string> entries;
  if (enumChild) {
    entries = subpathsAtPath(*fileName);
  } else if (!listShallow(*fileName, entries)) {
    return false;
  }
  std::vector<std::string> markers = markersIn(entries);
  if (!markers.empty()) {
    NoMediaFolders hidden(markers);
    std::erase_if(entries, [&](const std::string& entry) { return hidden.hides(entry); });
  }
  contents = arrayOf(std::move(entries));
  return true;
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
    if (entry.name.empty()) {  // a damaged file system can hand out an entry without a name
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

bool FolderOperations::createFolder(const MaybeString& path) const {
  if (!path) return false;
  if (files_.isFolder(*path)) return true;
  FileStatus made = files_.createFolders(*path);
  if (made) return true;
  context_.log.write(1, "-[UMSService createFolder:]", "Create download folder is filed. Error = %@",
                     made.error());
  return false;
}

}  // namespace umsservice
