/// A command that brings episodes to a device: one request from its channels to its closing report.
///
/// What `Transfer` is for files: brings together the device, the display, the question about existing files,
/// Ctrl-C and the outcomes. Used once, by the main thread.
#pragma once

#include <functional>

#include "ConflictPolicy.h"
#include "Device.h"
#include "Interrupt.h"
#include "Outcomes.h"
#include "ProgressDisplay.h"
#include "WrittenPlace.h"
#include "podcast/EpisodeItems.h"

namespace umsctl {

class PodcastTransfer {
 public:
  /// Throws `Refusal` for a volume that is not there.
  PodcastTransfer(const Errand& errand, const VolumeFolders& volumes, EpisodeItems items);

  Device& device() { return device_; }
  /// Asked by the service about existing files.
  const std::shared_ptr<ConflictPolicy>& policy() const { return policy_; }

  /// Queues a request under the given number; false when the service refuses it.
  using Queue = std::function<bool(uint32_t serviceID, const umsservice::Array& channels)>;

  /// Queues, shows the progress, waits for the end, has the device keep what was written, compares it where
  /// that is wished for, and reports.
  ExitStatus run(const Queue& queue, const std::vector<WrittenPlace>& written);

 private:
  void itemCounted(const umsservice::ItemOutcome& outcome);
  umsservice::Array settleHopelessChannels(std::vector<size_t>& positions);
  void perform(const Queue& queue);
  bool flushAll(const std::vector<WrittenPlace>& written);
  std::map<size_t, std::string> verify();

  // In the order of need: the service goes first, then what its worker may still be calling.
  const Errand& errand_;
  const EpisodeItems items_;
  ProgressDisplay display_;
  std::mutex endMutex_;
  size_t counted_ = 0;
  std::function<void()> end_;  ///< called once every episode has been counted
  const std::shared_ptr<Outcomes> outcomes_;
  Interrupt& interrupt_;
  const std::shared_ptr<ConflictPolicy> policy_;
  Device device_;
  bool wasCancelled_ = false;
};

}  // namespace umsctl
