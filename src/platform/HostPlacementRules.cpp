#include "CaseFolding.h"
#include "StringPaths.h"
#include "umsservice/PlacementRules.h"

namespace umsservice {
namespace {

class HostPlacementRules final : public PlacementRules {
 public:
  std::string volumeOf(FileSystem&, const std::string& path) const override {
    std::string volume;
    bool nextNamesVolume = false;
    for (const std::string& component : pathComponents(path)) {
      if (component == "/") {
        if (volume.empty()) volume = "/";
      } else if (nextNamesVolume) {
        volume += component;
        break;
      } else if (equalIgnoringCase(component, "volumes")) {
        volume += component + "/";
        nextNamesVolume = true;
      }
    }
    return volume + "/";
  }

  FileResult<VolumeSpace> spaceOf(FileSystem& files, const std::string& path) const override {
    return files.space(volumeOf(files, path));
  }

  std::string syncFolder(const std::string& volumePath, const std::string& folder) const override {
    return volumePath + folder;
  }
  uint32_t fallOverVolume(uint32_t failedIndex, uint32_t) const override { return failedIndex; }
  std::string fallOverFolder(const std::string&, const std::string& folder) const override { return folder; }
};

}  // namespace

std::shared_ptr<const PlacementRules> hostPlacementRules() {
  static const auto rules = std::make_shared<HostPlacementRules>();
  return rules;
}

}  // namespace umsservice
