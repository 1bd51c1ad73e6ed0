#include "TransferReport.h"

#include <algorithm>
#include <set>

#include "Causes.h"
#include "Planning.h"
#include "Subtitles.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {

using umsservice::ItemOutcome;
using Kind = ItemOutcome::Kind;

namespace {

std::string causeFor(const ReportedParts& parts, const ReportedRun& run, const ItemOutcome& outcome) {
  if (auto mismatch = run.mismatches.find(outcome.index); mismatch != run.mismatches.end())
    return mismatch->second;
  const std::string& objection = parts.contents.objections.at(outcome.index);
  return objection.empty() ? causeOf(parts.device, outcome, run.manner.folder) : objection;
}

/// Tells of each item that is not on the device although it should be, and of those that nobody got to.
void reportFailures(const ReportedParts& parts, const ReportedRun& run) {
  for (ItemOutcome& outcome : parts.outcomes.all()) {
    if (outcome.kind == Kind::Done || outcome.kind == Kind::Skipped) continue;
    const std::string cause = needsCause(outcome) ? causeFor(parts, run, outcome) : "";
    if (!outcome.path) outcome.path = parts.contents.paths.at(outcome.index);  // never handed to the service
    parts.display.tell(outcome, cause);
  }
  for (ItemOutcome& outcome : neverCounted(parts.outcomes, parts.contents.names.size())) {
    outcome.path = parts.contents.paths.at(outcome.index);
    parts.display.tell(outcome);
  }
  for (const auto& leftover : parts.outcomes.leftovers())
    parts.errand.events().complained(leftover.path, "an unfinished copy stays there: " + leftover.words());
}

/// Subtitles ride along uncounted; those that did not are told here.
size_t reportSubtitles(const ReportedParts& parts, const ReportedRun& run) {
  size_t wrong = 0;
  for (const ItemOutcome& outcome : parts.outcomes.all()) {
    if (outcome.kind != Kind::Done || !run.takesSubtitles.at(outcome.index)) continue;
    if (run.manner.subtitles == Subtitles::Travel)
      wrong += reportLostSubtitles(parts.errand.events(), parts.device, outcome);
    if (run.manner.subtitles == Subtitles::AreRemoved)
      wrong += reportKeptSubtitles(parts.errand.events(), parts.device, outcome);
  }
  return wrong;
}

}  // namespace

bool needsCause(const ItemOutcome& outcome) {
  if (outcome.kind == Kind::NotReached) return !umsservice::isStopCode(outcome.errorNumber);
  return outcome.kind == Kind::Failed;
}

std::vector<ItemOutcome> neverCounted(const Outcomes& outcomes, size_t items) {
  std::set<size_t> counted;
  for (const ItemOutcome& outcome : outcomes.all()) counted.insert(outcome.index);
  std::vector<ItemOutcome> missing;
  for (size_t i = 0; i < items; ++i) {
    if (counted.count(i) > 0) continue;
    missing.emplace_back().index = i;
    missing.back().kind = Kind::NotReached;
    missing.back().errorNumber = umsservice::kErrorStopped;
  }
  return missing;
}

Counts countsOf(const Errand& errand, const Outcomes& outcomes, const TransferManner& manner, size_t items) {
  Counts counts;
  counts.done = manner.done;
  counts.planned = manner.planned;
  counts.bytes = outcomes.doneBytes();
  for (const ItemOutcome& outcome : outcomes.all()) {
    if (outcome.kind == Kind::Done) ++counts.doneItems;
    if (outcome.kind == Kind::Skipped)
      ++(clashOf(errand, outcome) == ClashAction::Ask ? counts.asked : counts.skipped);
    if (outcome.kind == Kind::Failed) ++counts.failed;
  }
  const size_t ended = counts.doneItems + counts.skipped + counts.asked + counts.failed;
  counts.notReached = items - std::min(items, ended);
  return counts;
}

ExitStatus statusOf(const Counts& counts) {
  if (counts.wasCancelled) return ExitStatus::Cancelled;
  return counts.failed + counts.notReached > 0 ? ExitStatus::SomeFailed : ExitStatus::AllDone;
}

ExitStatus report(const ReportedParts& parts, const ReportedRun& run) {
  reportFailures(parts, run);
  size_t wrongSubtitles = reportSubtitles(parts, run);
  Counts counts = countsOf(parts.errand, parts.outcomes, run.manner, parts.contents.names.size());
  counts.wasCancelled = run.wasCancelled;
  parts.errand.events().counted(counts);
  ExitStatus status = statusOf(counts);
  return wrongSubtitles > 0 && status == ExitStatus::AllDone ? ExitStatus::SomeFailed : status;
}

}  // namespace umsctl
