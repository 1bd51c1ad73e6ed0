/// Where a file goes and which volume holds a path: the one place in which a host's view of a device
/// ("/Volumes/NAME") differs from that of a person at a shell.
///
/// Two presets: `hostPlacementRules()` for hosts whose volumes live below "/Volumes", and
/// `devicePlacementRules()` for volumes mounted anywhere. Stateless; safe from any thread.
#pragma once

#include <memory>
#include <string>

#include "umsservice/Export.h"
#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsservice {

class UMS_EXPORT PlacementRules {
 public:
  virtual ~PlacementRules() = default;

  /// The volume that holds a path, whether the path exists or not.
  virtual std::string volumeOf(FileSystem& files, const std::string& path) const = 0;
  /// The space of the volume that holds a path; what `volumeOf` gives, without needing its name.
  virtual FileResult<VolumeSpace> spaceOf(FileSystem& files, const std::string& path) const = 0;
  /// The same for a file that is to be made there: it comes to lie on the volume of its folder, so the path
  /// itself need not be looked for.
  virtual FileResult<VolumeSpace> spaceForNewFile(FileSystem& files, const std::string& path) const {
    return spaceOf(files, path);
  }

  /// The full folder that a sync uses on a volume, given the volume's path and its default folder as the
  /// profile or the fixed names give it.
  virtual std::string syncFolder(const std::string& volumePath, const std::string& folder) const = 0;
  /// A file did not go onto one volume and another is tried: the index of the volume whose path is used.
  virtual uint32_t fallOverVolume(uint32_t failedIndex, uint32_t candidateIndex) const = 0;
  /// What is made there before the copy: the full folder of `syncFolder`, or the default folder as it stands.
  virtual std::string fallOverFolder(const std::string& fullFolder, const std::string& folder) const = 0;
};

/// The volume is found by walking the path over "Volumes" (in any letter case): "/Volumes/CARD/" holds
/// "/Volumes/CARD/Music/a.mp3"; a path elsewhere belongs to the root file system, "//". A sync joins volume
/// and folder with nothing between; a fall-over stays on the failed volume's path, with the candidate's
/// folder.
UMS_EXPORT std::shared_ptr<const PlacementRules> hostPlacementRules();

/// The volume is the mount point of the nearest existing folder on the path's way up. A sync puts a separator
/// where the folder does not begin with one; a fall-over goes to the candidate volume itself.
UMS_EXPORT std::shared_ptr<const PlacementRules> devicePlacementRules();

}  // namespace umsservice
