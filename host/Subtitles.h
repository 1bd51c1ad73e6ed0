/// Subtitles ride along with their video without being counted; nobody hears when they do not arrive.
#pragma once

#include "Device.h"
#include "Outcomes.h"

namespace umsctl {

/// Names on standard error each ".smi" companion of a copied file that is not beside the copy, and gives
/// their number.
size_t reportLostSubtitles(Device& device, const Outcomes& outcomes);

}  // namespace umsctl
