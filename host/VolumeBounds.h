/// Where a device ends. A path that a person names as the device's may lead elsewhere: by mistake, through
/// "..", or through a link that somebody else put there.
#pragma once

#include "Device.h"

namespace umsctl {

class VolumeBounds {
 public:
  explicit VolumeBounds(const VolumeFolders& volumes);

  /// Whether the item itself lies on a volume: links on the way to it are followed, a link of that name is
  /// not. What is to be made need not be there.
  bool holdsItem(const std::string& path) const;
  /// Whether what the path leads to lies on a volume, links followed to their end.
  bool holdsContents(const std::string& path) const;

  /// What is said of a path that is not held.
  /// Behind the name of a destination.
  static constexpr auto kLeadsElsewhere = " is on none of the device's volumes";
  static constexpr auto kElsewhere = "it is on none of the device's volumes";

 private:
  bool holdsResolved(const std::string& resolved) const;

  std::vector<std::string> roots_;  ///< without links
};

}  // namespace umsctl
