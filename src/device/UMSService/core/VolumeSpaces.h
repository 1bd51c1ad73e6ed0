/// Free and total space, by volume index and by path. Safe from any thread.
///
/// An unreadable file system counts as 0 bytes: a host cannot tell it from a full volume.
#pragma once

#include "Log.h"
#include "VolumeRegistry.h"

namespace umsservice {

class VolumeSpaces {
 public:
  VolumeSpaces(const Environment& environment, const Log& log, const VolumeRegistry& volumes)
      : files_(*environment.fileSystem),
        placement_(*environment.placementRules),
        log_(log),
        volumes_(volumes) {}

  /// Bytes that may still be written to a volume.
  uint64_t freeSpace(uint32_t diskIndex) const;
  /// Bytes of a volume.
  uint64_t totalSpace(uint32_t diskIndex) const;
  /// Bytes that may still be written to the volume that holds a path, whether the path exists or not.
  uint64_t volumeFreeSpace(const MaybeString& path) const;
  /// The same for a file that is to be made there (see `PlacementRules`).
  uint64_t volumeFreeSpaceForNewFile(const MaybeString& path) const;

 private:
  using Asking = FileResult<VolumeSpace> (PlacementRules::*)(FileSystem&, const std::string&) const;

  uint64_t freeSpaceAt(const MaybeString& path, Asking asking) const;
  VolumeSpace spaceOfIndex(uint32_t diskIndex, const char* method) const;

  FileSystem& files_;
  const PlacementRules& placement_;
  const Log& log_;
  const VolumeRegistry& volumes_;
};

}  // namespace umsservice
