/// Events in words: results on standard output, everything about them on standard error.
#pragma once

#include <chrono>
#include <mutex>

#include "Events.h"
#include "FailureTable.h"
#include "Wishes.h"

namespace umsctl {

class TextEvents final : public Events {
 public:
  explicit TextEvents(const Wishes& wishes) : wishes_(wishes) {}

  void planned(const Plan& plan) override;
  /// Shown by the bar, where there is one; see `ProgressDisplay`.
  void progressed(const HowFar& progress) override;
  bool tellsFinished(const TransferManner& manner) const override;
  void itemEnded(const EndedItem& item) override;
  void counted(const Counts& counts) override;
  void shown(const Shown& shown) override;
  void remarked(const std::string& line) override;
  void complained(const std::string& subject, const std::string& cause) override;
  void noticed(const std::string& subject, const std::string& text) override;
  void ended(ExitStatus) override { tellOfFailures(); }

 private:
  void tellOfFailures();

  const Wishes wishes_;
  std::mutex mutex_;
  std::chrono::steady_clock::time_point lastProgress_;
  std::vector<Failure> failures_;  ///< not told of yet: at a terminal they make one table
};

/// "3 copied (1.2 MB), 1 skipped"; of a dry run "3 to copy (1.2 MB), 1 to skip".
std::string countsText(const Counts& counts, bool isDryRun);

}  // namespace umsctl
