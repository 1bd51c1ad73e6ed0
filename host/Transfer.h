/// A command that moves a list of files: from its FILE arguments to its closing report.
///
/// Brings together the device, the display, the question about existing files, Ctrl-C and the outcomes; what
/// is asked of the service is the command's own line. Used once, by the main thread.
#pragma once

#include <atomic>
#include <functional>

#include "ConflictPolicy.h"
#include "Contents.h"
#include "Device.h"
#include "Interrupt.h"
#include "Outcomes.h"
#include "ProgressDisplay.h"
#include "TransferManner.h"
#include "WrittenPlace.h"

namespace umsctl {

class Transfer {
 public:
  /// Throws `Refusal` for a volume that is not there.
  Transfer(const Errand& errand, const VolumeFolders& volumes, const std::vector<std::string>& files,
           const TransferManner& manner = {}, const Objection& objection = whyUnreadable);

  Device& device() { return device_; }
  ConflictPolicy& policy() { return *policy_; }
  const Contents& contents() const { return contents_; }

  /// Queues a request under the given number; false when the service refuses it.
  using Queue = std::function<bool(uint32_t serviceID, const umsservice::Array& contents)>;

  /// All files in one request. Queues, shows the progress, waits for the end, has the device keep what was
  /// written, compares it where that is wished for, and reports.
  ExitStatus run(const Queue& queue, const WrittenPlace& written);

  /// How one file is to be asked for, or that it is not: then the outcome says why.
  struct Part {
    uint32_t mediaType = 0;
    std::optional<umsservice::ItemOutcome> settled;
  };
  /// For requests in which the media type decides about subtitles only.
  static Part part(bool takesSubtitles) {
    constexpr uint32_t kWith = umsservice::kMediaVideo, kWithout = umsservice::kMediaMusic;
    return {takesSubtitles ? kWith : kWithout, {}};
  }
  /// By the file's name; a name of no known type is settled as failed.
  Part partByName(size_t index);
  using Sort = std::function<Part(size_t index)>;
  using QueueOfType =
      std::function<bool(uint32_t serviceID, const umsservice::Array& contents, uint32_t mediaType)>;

  /// The same where a request is of one media type: one request for each stretch of files of one type, in the
  /// order of the list. `sort` is asked about each file without an objection, before the first request.
  ExitStatus runByType(const Sort& sort, const QueueOfType& queue, const std::vector<WrittenPlace>& written);

  /// Moves the one file of the list by itself, on the calling thread. Asks `isWanted` in between; false stops
  /// the copy. `moved` hears the bytes so far.
  using Direct = std::function<umsservice::ItemOutcome(const std::function<bool()>& isWanted,
                                                       const std::function<void(uint64_t)>& moved)>;
  ExitStatus runDirectly(const Direct& direct, const WrittenPlace& written);

  /// Called with each outcome, besides what every transfer does about unfinished copies; before any request.
  void setCleaner(Outcomes::Cleaner cleaner) { outcomes_->setCleaner(std::move(cleaner)); }

 private:
  void performAll(const std::vector<Part>& parts, const QueueOfType& queue);
  void cancel();
  bool noteCancel();
  void performRequest(const std::vector<size_t>& positions, const Queue& queue);
  std::vector<Part> sortAll(const Sort& sort);
  void begin(const std::vector<WrittenPlace>& written);
  ExitStatus conclude(const std::vector<WrittenPlace>& written);
  std::map<size_t, std::string> verify();
  bool flushAll(const std::vector<WrittenPlace>& written);

  // In the order of need: the service goes first, then what its worker may still be calling.
  const Errand& errand_;
  const TransferManner manner_;
  const Contents contents_;
  ProgressDisplay display_;
  const std::shared_ptr<Outcomes> outcomes_;
  Interrupt& interrupt_;
  const std::shared_ptr<ConflictPolicy> policy_;
  Device device_;
  std::vector<bool> takesSubtitles_;    ///< for each file of the list
  std::atomic<uint32_t> serviceID_{0};  ///< of the request in hand
  bool wasCancelled_ = false;
};

}  // namespace umsctl
