#include "VolumeBounds.h"

#include <algorithm>
#include <filesystem>

#include "Paths.h"

namespace umsctl {
namespace {

/// The path without links and dots; empty where it leads round in a circle or cannot be looked at.
std::string resolved(const std::string& path) {
  std::error_code failure;
  std::filesystem::path found = std::filesystem::weakly_canonical(path, failure);
  return failure ? "" : withoutTrailingSlashes(found.string());
}

}  // namespace

VolumeBounds::VolumeBounds(const VolumeFolders& volumes) {
  for (const auto& folder : {volumes.internal, volumes.card}) {
    std::string root = folder ? resolved(absolutePath(*folder)) : "";
    if (!root.empty()) roots_.push_back(root);
  }
}

bool VolumeBounds::holdsItem(const std::string& path) const {
  std::string item = withoutTrailingSlashes(path);
  std::string name = lastComponent(item);
  if (name.empty() || name == "." || name == "..") return false;
  std::string folder = resolved(item.substr(0, item.rfind('/') + 1));
  return !folder.empty() && holdsResolved(folder + "/" + name);
}

bool VolumeBounds::holdsContents(const std::string& path) const {
  return holdsResolved(resolved(path));
}

bool VolumeBounds::holdsResolved(const std::string& path) const {
  return std::any_of(roots_.begin(), roots_.end(), [&](const std::string& root) {
    return path.starts_with(root == "/" ? root : root + "/");
  });
}

}  // namespace umsctl
