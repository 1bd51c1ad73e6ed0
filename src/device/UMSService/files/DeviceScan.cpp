#include "DeviceScan.h"

#include <algorithm>
#include <cerrno>

#include "FolderOperations.h"
#include "ListedFiles.h"
#include "NoMedia.h"
#include "StringPaths.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

bool leadsNowhere(const FileError& error) {
  return error.systemNumber == ENOENT || error.systemNumber == ELOOP;
}

}  // namespace

/// The state of one scan. Paths are relative to its root.
struct DeviceScan::Walk {
  /// Queues a folder unless it has been queued before: a damaged file system can show one twice.
  void queue(std::string path, const FileAttributes& attributes) {
    if (known.emplace(attributes.device, attributes.inode).second) folders.push_back(std::move(path));
  }

  const std::string& root;
  const bool skipNoMedia;
  std::deque<std::string> folders;
  std::set<std::pair<uint64_t, uint64_t>> known;
  PathList found;
  std::vector<uint64_t> sizes;  ///< of what was found, bytes
};

MaybeArray DeviceScan::subpathsAtDisk(uint32_t diskIndex, bool skipNoMedia) const {
  auto volume = context_.volumes.diskInfoFromIndex(diskIndex);
  MaybeString path = volume ? volume->string(key::kVolumePath) : std::nullopt;
  if (!path) return std::nullopt;
  if (context_.isReleased()) {
    context_.log.write(1, "-[UMSService subpathsAtDisk:diskIndex:skipNoMedia:]",
                       "Device is not connected. Processing is Stop");
    return std::nullopt;
  }
  return fileScan(*path, skipNoMedia);
}

MaybeArray DeviceScan::fileScan(const std::string& folder, bool skipNoMedia) const {
  Walk walk{folder, skipNoMedia, {}, {}, {}, {}};
  auto root = files_.attributes(folder);
  if (root) walk.queue("", *root);
  while (!walk.folders.empty()) {
    std::string current = std::move(walk.folders.front());
    walk.folders.pop_front();
    scanFolder(current, walk);
  }
  if (walk.found.empty()) return std::nullopt;
  return listedFiles({.folder = folder}, std::move(walk.found), std::move(walk.sizes));
}

void DeviceScan::scanFolder(const std::string& subpath, Walk& walk) const {
  const std::string path = subpath.empty() ? walk.root : joinedPath(walk.root, subpath);
  auto folder = files_.openFolder(path);
  auto entries = folder ? (*folder)->list() : folder.error();
  if (!entries) return;
  auto isMarker = [&](const DirectoryEntry& entry) { return isNoMediaMarker(entry.name); };
  auto end = walk.skipNoMedia ? std::find_if(entries->begin(), entries->end(), isMarker) : entries->end();
  const bool isMarked = end != entries->end();  // its files are lost, folders met before the marker stay
  const std::string prefix = subpath.empty() ? subpath : subpath + "/";
  for (auto entry = entries->begin(); entry != end; ++entry) {
    if (!isEntryName(entry->name) || (walk.skipNoMedia && isHiddenName(entry->name))) continue;
    if (isMarked && entry->type == FileType::Regular) continue;
    examine(**folder, prefix, *entry, isMarked, walk);
  }
}

void DeviceScan::examine(FolderHandle& folder, const std::string& prefix, const DirectoryEntry& entry,
                         bool isMarked, Walk& walk) const {
  auto attributes = folder.attributes(entry.name);
  const bool isLink = entry.type == FileType::SymbolicLink;
  // An entry whose attributes cannot be read is a file all the same; a link that leads nowhere is nothing.
  if (!attributes && (isLink || leadsNowhere(attributes.error()))) return;
  const FileType type = attributes ? attributes->type : entry.type;
  if (type == FileType::Directory) {
    std::string path = prefix + entry.name;
    bool linkInDisguise = entry.type == FileType::Unknown && isSymbolicLink(joinedPath(walk.root, path));
    if (attributes && !isLink && !linkInDisguise) walk.queue(std::move(path), *attributes);
    return;
  }
  if (isMarked) return;
  walk.found.append(prefix, entry.name, type);
  walk.sizes.push_back(attributes ? attributes->size : 0);
}

bool DeviceScan::isSymbolicLink(const std::string& path) const {
  auto found = files_.linkAttributes(path);
  return found && found->type == FileType::SymbolicLink;
}

bool isHiddenFile(std::string_view path) {
  return isHiddenName(path) || path.find("/.") != std::string_view::npos;
}

}  // namespace umsservice
