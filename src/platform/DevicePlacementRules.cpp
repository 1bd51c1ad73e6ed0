#include <algorithm>
#include <cerrno>
#include <iterator>

#include "StringPaths.h"
#include "umsservice/PlacementRules.h"

namespace umsservice {
namespace {

/// Whether a call failed because of the path and not because of the device: a folder above may answer.
bool isFaultOfPath(int systemNumber) {
  constexpr int kFaults[] = {ENOENT, ENOTDIR, ENAMETOOLONG, ELOOP, EACCES, EINVAL};
  return std::find(std::begin(kFaults), std::end(kFaults), systemNumber) != std::end(kFaults);
}

/// The longest part of a path that can exist, without a separator at its end: a volume has one name.
std::string startOfSearch(const std::string& path) {
  constexpr size_t kLongestPath = 4096;  // longer than any system's, so nothing that exists is passed over
  std::string start = path.substr(0, kLongestPath);
  while (start.size() > 1 && start.ends_with('/')) start.pop_back();
  return start;
}

/// The folder above a path; "." above a bare name, and nothing above the root.
std::string folderAbove(const std::string& path) {
  std::string folder = stringByDeletingLastPathComponent(path);
  if (folder.empty() && path != ".") return ".";
  return folder == path ? std::string() : folder;
}

class DevicePlacementRules final : public PlacementRules {
 public:
  std::string volumeOf(FileSystem& files, const std::string& path) const override {
    std::string folder = startOfSearch(path);
    auto found = files.attributes(folder);
    while (!found) {
      std::string above = folderAbove(folder);
      if (above.empty()) return folder;
      folder = above;
      found = files.attributes(folder);
    }
    return mountPointAbove(files, folder, found->device);
  }

  FileResult<VolumeSpace> spaceOf(FileSystem& files, const std::string& path) const override {
    return spaceUpFrom(files, startOfSearch(path));
  }

  FileResult<VolumeSpace> spaceForNewFile(FileSystem& files, const std::string& path) const override {
    std::string folder = folderAbove(startOfSearch(path));
    return folder.empty() ? spaceOf(files, path) : spaceUpFrom(files, std::move(folder));
  }

  std::string syncFolder(const std::string& volumePath, const std::string& folder) const override {
    return folder.starts_with('/') ? volumePath + folder : joinedPath(volumePath, folder);
  }
  uint32_t fallOverVolume(uint32_t, uint32_t candidateIndex) const override { return candidateIndex; }
  std::string fallOverFolder(const std::string& fullFolder, const std::string&) const override {
    return fullFolder;
  }

 private:
  static FileResult<VolumeSpace> spaceUpFrom(FileSystem& files, std::string folder) {
    auto space = files.space(folder);
    while (!space && isFaultOfPath(space.error().systemNumber)) {
      folder = folderAbove(folder);
      if (folder.empty()) return space;
      space = files.space(folder);
    }
    return space;
  }

  /// The highest folder on the way up that still lies on the same file system.
  static std::string mountPointAbove(FileSystem& files, std::string folder, uint64_t device) {
    for (;;) {
      std::string above = folderAbove(folder);
      if (above.empty()) return folder;
      auto found = files.attributes(above);
      if (!found || found->device != device) return folder;
      folder = above;
    }
  }
};

}  // namespace

std::shared_ptr<const PlacementRules> devicePlacementRules() {
  static const auto rules = std::make_shared<DevicePlacementRules>();
  return rules;
}

}  // namespace umsservice
