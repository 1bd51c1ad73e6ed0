#include "VolumeHeadline.h"

#include "EscapedName.h"

namespace umsctl {

Shown volumeHeadline(const Device::Volume& volume, bool isForEyes) {
  std::string line = std::to_string(volume.index) + "  " + volume.kind + "  " + escaped(volume.path) + "\n";
  return {isForEyes ? line : "",
          "volume",
          {{"index", uint64_t{volume.index}}, {"kind", volume.kind}, {"path", volume.path}}};
}

}  // namespace umsctl
