#include "VolumeSpaces.h"

#include "StringPaths.h"

namespace umsservice {

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
  constexpr auto kMethod = "-[UMSService volumeFreeSpace:]";
  if (!path) {
    log_.write(3, kMethod, "filePath is nil.");
    return 0;
  }
  if (pathComponents(*path).size() < 2) {
    log_.write(3, kMethod, "Get Volume Path is failed.");
    return 0;
  }
  constexpr int kTrace = 6;
  if (log_.isWritten(kTrace))
    log_.always(kMethod, "Volume Name string = %@", placement_.volumeOf(files_, *path));
  auto space = placement_.spaceOf(files_, *path);
  return space ? space->free : 0;
}

}  // namespace umsservice
