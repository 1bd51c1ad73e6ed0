/// Where a file goes and which volume holds a path: the one place in which a host's view of a device
/// ("/Volumes/NAME") differs from that of a person at a shell.
///
/// Two presets: `hostPlacementRules()` for hosts whose volumes live below "/Volumes", and
/// `devicePlacementRules()` for volumes mounted anywhere. Stateless; safe from any thread.
#pragma once

#include <memory>
#include <string>

#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsservice {

class PlacementRules {
 public:
  virtual ~PlacementRules() = default;

  /// The volume that holds a path, whether the path exists or not.
  virtual std::string volumeOf(FileSystem& files, const std::string& path) const = 0;
  /// The space of the volume that holds a path; what `volumeOf` gives, without needing its name.
  virtual FileResult<VolumeSpace> spaceOf(FileSystem& files, const std::string& path) const = 0;
};

/// The volume is found by walking the path over "Volumes" (in any letter case): "/Volumes/CARD/" holds
/// "/Volumes/CARD/Music/a.mp3"; a path elsewhere belongs to the root file system, "//".
std::shared_ptr<const PlacementRules> hostPlacementRules();

/// The volume is the mount point of the nearest existing folder on the path's way up.
std::shared_ptr<const PlacementRules> devicePlacementRules();

}  // namespace umsservice
