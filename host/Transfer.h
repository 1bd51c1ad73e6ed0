/// A command that moves a list of files: one request from its FILE arguments to its closing report.
///
/// Brings together the device, the display, the question about existing files, Ctrl-C and the outcomes; what
/// is asked of the service is the command's own line. Used once, by the main thread.
#pragma once

#include <functional>

#include "ConflictPolicy.h"
#include "Contents.h"
#include "Device.h"
#include "Interrupt.h"
#include "Outcomes.h"
#include "ProgressDisplay.h"

namespace umsctl {

class Transfer {
 public:
  /// Throws `Refusal` for a volume that is not there.
  Transfer(const VolumeFolders& volumes, const std::vector<std::string>& files, OnConflict onConflict);

  Device& device() { return device_; }

  /// Queues a request under the given number; false when the service refuses it.
  using Queue = std::function<bool(uint32_t serviceID, const umsservice::Array& contents)>;

  /// Queues, shows the progress, waits for the end, has the device keep what was written below `flushed`, and
  /// reports.
  ExitStatus run(const Queue& queue, const std::string& flushed);

 private:
  void waitForEnd(const Queue& queue);
  bool flush(const std::string& folder);

  // In the order of need: the service goes first, then what its worker may still be calling.
  const std::shared_ptr<umsservice::FileSystem> files_ = umsservice::posixFileSystem();
  const Contents contents_;
  ProgressDisplay display_;
  const std::shared_ptr<Outcomes> outcomes_;
  Interrupt interrupt_;
  const std::shared_ptr<ConflictPolicy> policy_;
  Device device_;
  bool wasCancelled_ = false;
};

}  // namespace umsctl
