/// Shows a transfer while it runs: on a terminal one line that is drawn again and again (bar, percent, bytes,
/// rate, time left, files, current name), elsewhere one line of standard output for each finished file.
///
/// Made by a `Transfer`, fed from the worker thread, closed from the main thread; safe from any thread.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "TransferManner.h"
#include "TransferRate.h"
#include "TransferTally.h"
#include "umsservice/NotificationCenter.h"

namespace umsctl {

class ProgressDisplay {
 public:
  /// The size of each item in the order of the command; 0 where it is not known. The manner tells what a
  /// finished file is said to be, and where such files are listed.
  explicit ProgressDisplay(std::vector<uint64_t> sizes, const TransferManner& manner = {});
  /// Leaves no half-drawn line behind.
  ~ProgressDisplay();
  ProgressDisplay(const ProgressDisplay&) = delete;
  ProgressDisplay& operator=(const ProgressDisplay&) = delete;

  /// Draws the bar for the first time.
  void begin();
  /// The next request holds only the items at these places; see `TransferTally`.
  void beginRequest(std::vector<size_t> positions);
  /// So many bytes of the item in hand have been moved; for transfers that post no notifications.
  void moved(const std::string& name, uint64_t bytes);
  /// Takes in a progress or an item result notification of the transfer.
  void hear(const umsservice::Notification& notification);
  void itemCounted(const umsservice::ItemOutcome& outcome);
  /// Runs something that writes to the terminal itself; the bar is out of the way meanwhile.
  void stepAside(const std::function<void()>& speak);
  /// Shows a phase without a measure in place of the bar, for example that the device is being flushed.
  void announce(const std::string& phase);
  /// Takes the bar away for good.
  void finish();

 private:
  void hearProgress(const umsservice::Dictionary& userInfo);
  void showFinished(const umsservice::ItemOutcome& outcome);
  void draw(bool always);
  void erase();

  const bool redraws_;  ///< the bar is drawn
  const bool lists_;    ///< finished files are listed
  const TransferManner manner_;
  std::recursive_mutex mutex_;
  TransferTally tally_;
  TransferRate rate_;
  std::string currentName_;  ///< escaped
  std::string tags_;         ///< of the item in hand, as they are shown
  std::chrono::steady_clock::time_point lastDrawn_;
  bool isDrawn_ = false;
  bool isFinished_ = false;
};

}  // namespace umsctl
