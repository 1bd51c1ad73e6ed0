#include "DeviceScan.h"

#include <cerrno>
#include <iterator>

#include "FolderOperations.h"
#include "NoMedia.h"
#include "StringPaths.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

bool leadsNowhere(const FileError& error) {
  return error.systemNumber == ENOENT || error.systemNumber == ELOOP;
}

}  // namespace

/// The state of one scan.
struct DeviceScan::Walk {
  /// Queues a folder unless it has been queued before: a damaged file system can show one twice.
  void queue(std::string path, const FileAttributes& attributes) {
    if (known.emplace(attributes.device, attributes.inode).second) folders.push_back(std::move(path));
  }

  std::deque<std::string> folders;
  std::set<std::pair<uint64_t, uint64_t>> known;
  std::vector<Value> found;
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
  Walk walk;
  auto root = files_.attributes(folder);
  if (root) walk.queue(folder, *root);
  while (!walk.folders.empty()) {
    std::string current = std::move(walk.folders.front());
    walk.folders.pop_front();
    scanFolder(current, skipNoMedia, walk);
  }
  if (walk.found.empty()) return std::nullopt;
  return Array(std::move(walk.found));
}

void DeviceScan::scanFolder(const std::string& folder, bool skipNoMedia, Walk& walk) const {
  auto entries = files_.list(folder);
  if (!entries) return;
  std::vector<Value> batch;
  for (const DirectoryEntry& entry : *entries) {
    if (!isEntryName(entry.name)) continue;
    if (skipNoMedia && isNoMediaMarker(entry.name)) return;  // the batch is lost, queued folders stay
    if (skipNoMedia && isHiddenName(entry.name)) continue;
    examine(joinedPath(folder, entry.name), entry, walk, batch);
  }
  std::move(batch.begin(), batch.end(), std::back_inserter(walk.found));
}

void DeviceScan::examine(const std::string& path, const DirectoryEntry& entry, Walk& walk,
                         std::vector<Value>& batch) const {
  auto attributes = files_.attributes(path);
  const bool isLink = entry.type == FileType::SymbolicLink;
  // An entry whose attributes cannot be read is a file all the same; a link that leads nowhere is nothing.
  if (!attributes && (isLink || leadsNowhere(attributes.error()))) return;
  const FileType type = attributes ? attributes->type : entry.type;
  if (type == FileType::Directory) {
    bool linkInDisguise = entry.type == FileType::Unknown && isSymbolicLink(path);
    if (attributes && !isLink && !linkInDisguise) walk.queue(path, *attributes);
    return;
  }
  batch.emplace_back(Dictionary{{key::kFilePath, path},
                                {key::kFileName, entry.name},
                                {key::kFileSize, attributes ? attributes->size : uint64_t{0}}});
}

bool DeviceScan::isSymbolicLink(const std::string& path) const {
  auto found = files_.linkAttributes(path);
  return found && found->type == FileType::SymbolicLink;
}

bool isHiddenFile(std::string_view path) {
  return isHiddenName(path) || path.find("/.") != std::string_view::npos;
}

}  // namespace umsservice
