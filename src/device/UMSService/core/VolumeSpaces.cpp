#include "VolumeSpaces.h"

#include "StringPaths.h"

namespace umsservice {
namespace {

/// Asked for every file that is copied, so most paths are told by their look.
bool hasTwoComponents(const std::string& path) {
  if (path.size() > 1 && path.front() == '/' && path[1] != '/') return true;
  return pathComponents(path).size() >= 2;
}

}  // namespace

VolumeSpace VolumeSpaces::spaceOfIndex(uint32_t diskIndex, const char* method) const {
  MaybeString diskName = volumes_.diskVolumeNameFromIndex(diskIndex);
  if (!diskName) {
    log_.write(3, method, "Input parameters is invalid. diskName = %@", diskName);
    return {};
  }
  auto space = files_.space(*diskName);
  return space ? *space : VolumeSpace{};
}

uint64_t VolumeSpaces::freeSpace(uint32_t diskIndex) const {
  return spaceOfIndex(diskIndex, "-[UMSService freeSpace:diskIndex:]").free;
}

uint64_t VolumeSpaces::totalSpace(uint32_t diskIndex) const {
  return spaceOfIndex(diskIndex, "-[UMSService totalSpace:diskIndex:]").total;
}

uint64_t VolumeSpaces::volumeFreeSpace(const MaybeString& path) const {
  return freeSpaceAt(path, &PlacementRules::spaceOf);
}

uint64_t VolumeSpaces::volumeFreeSpaceForNewFile(const MaybeString& path) const {
  return freeSpaceAt(path, &PlacementRules::spaceForNewFile);
}

uint64_t VolumeSpaces::freeSpaceAt(const MaybeString& path, Asking asking) const {
  constexpr auto kMethod = "-[UMSService volumeFreeSpace:]";
  if (!path) {
    log_.write(3, kMethod, "filePath is nil.");
    return 0;
  }
  if (!hasTwoComponents(*path)) {
    log_.write(3, kMethod, "Get Volume Path is failed.");
    return 0;
  }
  constexpr int kTrace = 6;
  if (log_.isWritten(kTrace))
    log_.always(kMethod, "Volume Name string = %@", placement_.volumeOf(files_, *path));
  auto space = (placement_.*asking)(files_, *path);
  return space ? space->free : 0;
}

}  // namespace umsservice
