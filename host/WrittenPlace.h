/// A place that a command writes to: it is flushed at the end, and its room is told.
#pragma once

#include <optional>
#include <string>

#include "Device.h"

namespace umsctl {

struct WrittenPlace {
  std::string path;                      ///< full; need not be there
  std::optional<Device::Volume> volume;  ///< of a device; none for a folder of the computer
};

/// A whole volume.
inline WrittenPlace writtenVolume(const Device::Volume& volume) {
  return {volume.path, volume};
}

/// Every volume of a device.
inline std::vector<WrittenPlace> writtenVolumes(const Device& device) {
  std::vector<WrittenPlace> places;
  for (const Device::Volume& volume : device.volumes()) places.push_back(writtenVolume(volume));
  return places;
}

}  // namespace umsctl
