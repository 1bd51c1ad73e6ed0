/// The closing report of a transfer: what failed and why on standard error, the counts on standard output.
#pragma once

#include "Contents.h"
#include "Device.h"
#include "ExitStatus.h"
#include "Outcomes.h"

namespace umsctl {

/// Gives the exit status.
ExitStatus report(Device& device, const Contents& contents, const Outcomes& outcomes, bool wasCancelled);

}  // namespace umsctl
