/// The closing report of a transfer: what failed and why on standard error, the counts on standard output.
#pragma once

#include "Contents.h"
#include "Device.h"
#include "ExitStatus.h"
#include "Outcomes.h"
#include "TransferManner.h"

namespace umsctl {

struct ReportedRun {
  TransferManner manner;
  std::vector<bool> takesSubtitles;  ///< for each file of the list
  bool wasCancelled = false;
};

/// Gives the exit status.
ExitStatus report(Device& device, const Contents& contents, const Outcomes& outcomes, const ReportedRun& run);

}  // namespace umsctl
