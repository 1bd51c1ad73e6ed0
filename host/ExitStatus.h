/// What umsctl tells the shell when it ends. Scripts rely on these numbers.
#pragma once

namespace umsctl {

enum class ExitStatus {
  AllDone = 0,       ///< everything asked for is done; skipped items count as done
  SomeFailed = 1,    ///< at least one item failed; each is named on standard error with its cause
  Usage = 2,         ///< the command line makes no sense
  NoSuchVolume = 3,  ///< a volume's folder is not there, or no volume has the number asked for
  Cancelled = 130,   ///< stopped by the person, as shells count an interrupt
};

}  // namespace umsctl
