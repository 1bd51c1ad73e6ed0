/// Tells of a transfer while it runs: on a terminal one line that is drawn again and again (bar, percent,
/// bytes, rate, time left, files, current name), elsewhere each finished file; programs hear of both.
///
/// Made by a `Transfer`, fed from the worker thread, closed from the main thread; safe from any thread.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "Errand.h"
#include "TransferManner.h"
#include "TransferRate.h"
#include "TransferTally.h"
#include "umsservice/NotificationCenter.h"

namespace umsctl {

class ProgressDisplay {
 public:
  /// The name and the size of each item in the order of the command; 0 where a size is not known. The manner
  /// tells what a finished file is said to be, and where such files are listed.
  ProgressDisplay(const Errand& errand, std::vector<std::string> names, const std::vector<uint64_t>& sizes,
                  const TransferManner& manner = {});
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
  /// The bar begins anew for reading back these items; then each of them is told of.
  void beginVerifying(const std::vector<umsservice::ItemOutcome>& done);
  /// `isBehind` is false for one that will not be compared any more.
  void itemVerified(const umsservice::ItemOutcome& outcome, bool isSame, bool isBehind);
  /// Tells of an item that ended before or beside the transfer; a failure has its cause.
  void tell(const umsservice::ItemOutcome& outcome, const std::string& cause = {},
            std::optional<bool> isVerified = {});
  /// Those that a dry run has found, in the order of the items.
  std::vector<Clash> clashes() const;
  /// Runs something that writes to the terminal itself; the bar is out of the way meanwhile.
  void stepAside(const std::function<void()>& speak);
  /// Shows a phase without a measure in place of the bar, for example that the device is being flushed.
  void announce(const std::string& phase);
  /// Takes the bar away for good.
  void finish();

 private:
  void hearProgress(const umsservice::Dictionary& userInfo);
  bool isVerifiedLater(const umsservice::ItemOutcome& outcome) const;
  void tellProgress();
  void tellHowFar(const char* phase);
  void draw(bool always);
  void erase();

  const Errand& errand_;
  const bool redraws_;  ///< the bar is drawn
  const TransferManner manner_;
  const std::vector<std::string> names_;
  mutable std::recursive_mutex mutex_;
  TransferTally tally_;
  TransferRate rate_;
  std::string currentName_;
  std::string tags_;                        ///< of the item in hand, as they are shown
  std::map<size_t, std::string> keptTags_;  ///< of items that are told of later
  std::map<size_t, Clash> clashes_;
  std::chrono::steady_clock::time_point lastDrawn_;
  std::chrono::steady_clock::time_point lastTold_;
  bool isVerifying_ = false;
  bool isDrawn_ = false;
  bool isFinished_ = false;
};

}  // namespace umsctl
