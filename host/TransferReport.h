/// The closing report of a transfer: each item that has not been told of yet, those that failed with their
/// causes, and the numbers.
#pragma once

#include <map>

#include "Contents.h"
#include "Device.h"
#include "ExitStatus.h"
#include "Outcomes.h"
#include "ProgressDisplay.h"
#include "TransferManner.h"

namespace umsctl {

/// What took part.
struct ReportedParts {
  const Errand& errand;
  Device& device;
  const Contents& contents;
  const Outcomes& outcomes;
  ProgressDisplay& display;
};

struct ReportedRun {
  TransferManner manner;
  std::vector<bool> takesSubtitles;  ///< for each file of the list
  bool wasCancelled = false;
  std::map<size_t, std::string> mismatches;  ///< copies that differ, with the cause, by place in the list
};

/// Gives the exit status.
ExitStatus report(const ReportedParts& parts, const ReportedRun& run);

/// Whether it has to be told why an item is not done: what a person cancelled needs no cause.
bool needsCause(const umsservice::ItemOutcome& outcome);

/// Items of a list that nobody has counted, because a cancel came first: none of them was reached.
std::vector<umsservice::ItemOutcome> neverCounted(const Outcomes& outcomes, size_t items);

/// The numbers of a run over so many items.
Counts countsOf(const Errand& errand, const Outcomes& outcomes, const TransferManner& manner, size_t items);

/// The exit status that these numbers stand for.
ExitStatus statusOf(const Counts& counts);

}  // namespace umsctl
