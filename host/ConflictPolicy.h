/// What happens where a file of that name is on the device already.
///
/// At the question "all" and "none" hold for the rest of the command, and "quit" ends it as Ctrl-C does.
/// The service asks on its worker thread, in the middle of a run; see `Transfer` for who owns this.
#pragma once

#include <string>

#include "Errand.h"
#include "ProgressDisplay.h"
#include "TypedLines.h"
#include "umsservice/QDDeviceConfirmDelegate.h"

namespace umsctl {

class ConflictPolicy final : public umsservice::QDDeviceConfirmDelegate {
 public:
  /// `place` says where a file that is in the way is: "on the device", "there".
  ConflictPolicy(const Errand& errand, ProgressDisplay& display, std::string place = "on the device");

  /// What a person's choice comes to here and now: nobody is asked where nobody is.
  static OnConflict resolved(OnConflict choice);

  /// The other device of a copy from device to device; there is none before this is called.
  void setOtherDevice(std::shared_ptr<umsservice::OVFileService> device) { otherDevice_ = std::move(device); }

  bool confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) override;
  std::shared_ptr<umsservice::OVFileService> getFileServiceObject(
      const umsservice::MaybeString& locationID) override;

 private:
  void ask(const std::string& path, bool& isOverwrite);
  void quit();

  const Errand& errand_;
  const OnConflict choice_;
  const bool saysSo_;  ///< each skip is told: nobody chose it
  ProgressDisplay& display_;
  const std::string place_;
  std::shared_ptr<umsservice::OVFileService> otherDevice_;
  std::optional<bool> lasting_;  ///< what "all" or "none" has settled for every later file
  TypedLines typed_;
};

}  // namespace umsctl
