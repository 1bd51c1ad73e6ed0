/// What happens where a file of that name is on the device already.
///
/// The service asks on its worker thread, in the middle of a run; see `Transfer` for who owns this.
#pragma once

#include <string>

#include "Interrupt.h"
#include "ProgressDisplay.h"
#include "umsservice/QDDeviceConfirmDelegate.h"

namespace umsctl {

enum class OnConflict {
  NotSaid,    ///< ask where there is somebody to ask; elsewhere skip, and say so
  Ask,        ///< ask on standard error, take the answer from standard input
  Skip,       ///< keep what is there
  Overwrite,  ///< replace what is there
};

class ConflictPolicy final : public umsservice::QDDeviceConfirmDelegate {
 public:
  ConflictPolicy(OnConflict choice, ProgressDisplay& display, Interrupt& interrupt);

  bool confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) override;
  /// A person at a shell works with one device; there is never another.
  std::shared_ptr<umsservice::OVFileService> getFileServiceObject(
      const umsservice::MaybeString& locationID) override;

 private:
  bool ask(const std::string& path, bool& isOverwrite, bool& isNotAsk);
  std::optional<std::string> readAnswer();

  const OnConflict choice_;
  const bool saysSo_;  ///< each skip is told: nobody chose it
  ProgressDisplay& display_;
  Interrupt& interrupt_;
  std::string typed_;  ///< what was read and not yet used
};

}  // namespace umsctl
