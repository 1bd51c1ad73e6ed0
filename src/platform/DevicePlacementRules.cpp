#include <cerrno>

#include "StringPaths.h"
#include "umsservice/PlacementRules.h"

namespace umsservice {
namespace {

/// The folder above a path; "." above a bare name, and nothing above the root.
std::string folderAbove(const std::string& path) {
  std::string folder = stringByDeletingLastPathComponent(path);
  if (folder.empty() && path != ".") return ".";
  return folder == path ? std::string() : folder;
}

class DevicePlacementRules final : public PlacementRules {
 public:
  std::string volumeOf(FileSystem& files, const std::string& path) const override {
    std::string folder = path;
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
    std::string folder = path;
    auto space = files.space(folder);
    while (!space && (space.error().systemNumber == ENOENT || space.error().systemNumber == ENOTDIR)) {
      folder = folderAbove(folder);
      if (folder.empty()) return space;
      space = files.space(folder);
    }
    return space;
  }

 private:
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
