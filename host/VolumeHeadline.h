/// The line above what is listed of a volume.
#pragma once

#include "Device.h"
#include "Events.h"

namespace umsctl {

/// "0  internal  /media/PHONE"; `isForEyes` is false where the lines below say enough by themselves.
Shown volumeHeadline(const Device::Volume& volume, bool isForEyes = true);

}  // namespace umsctl
