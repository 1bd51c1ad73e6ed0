#include "TransferReport.h"

#include "Amounts.h"
#include "Causes.h"
#include "Output.h"
#include "Subtitles.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using umsservice::ItemOutcome;
using Kind = ItemOutcome::Kind;

std::string countText(size_t count, const char* what) {
  return std::to_string(count) + " " + what;
}

/// What a person cancelled needs no list.
bool isFailure(const ItemOutcome& outcome) {
  if (outcome.kind == Kind::NotReached) return !umsservice::isStopCode(outcome.errorNumber);
  return outcome.kind == Kind::Failed;
}

/// Names each item that is not on the device although it should be, and gives their number.
size_t reportFailures(Device& device, const Contents& contents, const Outcomes& outcomes) {
  size_t failures = 0;
  for (const ItemOutcome& outcome : outcomes.all()) {
    if (!isFailure(outcome)) continue;
    ++failures;
    std::string objection = contents.objections.at(outcome.index);
    complain(contents.names.at(outcome.index), objection.empty() ? causeOf(device, outcome) : objection);
  }
  for (const auto& leftover : outcomes.leftovers())
    complain(leftover.path, "an unfinished copy stays there: " + leftover.words());
  return failures;
}

}  // namespace

ExitStatus report(Device& device, const Contents& contents, const Outcomes& outcomes, bool wasCancelled) {
  size_t failures = reportFailures(device, contents, outcomes);
  size_t lostSubtitles = reportLostSubtitles(device, outcomes);
  size_t done = outcomes.count(Kind::Done);
  size_t skipped = outcomes.count(Kind::Skipped);
  size_t notReached = contents.names.size() - done - skipped - failures;

  std::string counts = wasCancelled ? "cancelled: " : "";
  counts += countText(done, "copied (") + byteText(outcomes.doneBytes()) + ")";
  if (skipped > 0) counts += ", " + countText(skipped, "skipped");
  if (failures > 0) counts += ", " + countText(failures, "failed");
  if (notReached > 0) counts += ", " + countText(notReached, "not copied");
  print(counts + "\n");
  if (wasCancelled) return ExitStatus::Cancelled;
  return failures + lostSubtitles + notReached > 0 ? ExitStatus::SomeFailed : ExitStatus::AllDone;
}

}  // namespace umsctl
