/// umsctl podcast ls: the channels on a device and their episodes.
#pragma once

#include "Device.h"
#include "ExitStatus.h"

namespace umsctl {

ExitStatus podcastList(const VolumeFolders& volumes, const Errand& errand);

}  // namespace umsctl
