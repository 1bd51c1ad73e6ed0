#include "TransferReport.h"

#include "Amounts.h"
#include "Causes.h"
#include "FailureTable.h"
#include "Output.h"
#include "Subtitles.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using umsservice::ItemOutcome;
using Kind = ItemOutcome::Kind;

std::string countText(size_t count, const std::string& what) {
  return std::to_string(count) + " " + what;
}

/// What a person cancelled needs no list.
bool isFailure(const ItemOutcome& outcome) {
  if (outcome.kind == Kind::NotReached) return !umsservice::isStopCode(outcome.errorNumber);
  return outcome.kind == Kind::Failed;
}

/// Names each item that is not on the device although it should be, and gives their number.
size_t reportFailures(Device& device, const Contents& contents, const Outcomes& outcomes,
                      const char* folder) {
  std::vector<Failure> failures;
  for (const ItemOutcome& outcome : outcomes.all()) {
    if (!isFailure(outcome)) continue;
    const std::string& objection = contents.objections.at(outcome.index);
    bool isTried = objection.empty();
    failures.push_back({contents.names.at(outcome.index), outcome.errorNumber,
                        isTried ? causeOf(device, outcome, folder) : objection,
                        isTried ? adviceFor(outcome) : adviceForObjection(objection)});
  }
  tellFailures(failures);
  for (const auto& leftover : outcomes.leftovers())
    complain(leftover.path, "an unfinished copy stays there: " + leftover.words());
  return failures.size();
}

/// Subtitles ride along uncounted; those that did not are told here.
size_t reportSubtitles(Device& device, const Outcomes& outcomes, const ReportedRun& run) {
  size_t wrong = 0;
  for (const ItemOutcome& outcome : outcomes.all()) {
    if (outcome.kind != Kind::Done || !run.takesSubtitles.at(outcome.index)) continue;
    if (run.manner.subtitles == Subtitles::Travel) wrong += reportLostSubtitles(device, outcome);
    if (run.manner.subtitles == Subtitles::AreRemoved) wrong += reportKeptSubtitles(device, outcome);
  }
  return wrong;
}

}  // namespace

ExitStatus report(Device& device, const Contents& contents, const Outcomes& outcomes,
                  const ReportedRun& run) {
  size_t failures = reportFailures(device, contents, outcomes, run.manner.folder);
  size_t wrongSubtitles = reportSubtitles(device, outcomes, run);
  size_t done = outcomes.count(Kind::Done);
  size_t skipped = outcomes.count(Kind::Skipped);
  size_t notReached = contents.names.size() - done - skipped - failures;

  std::string counts = run.wasCancelled ? "cancelled: " : "";
  counts += countText(done, run.manner.done) + " (" + byteText(outcomes.doneBytes()) + ")";
  if (skipped > 0) counts += ", " + countText(skipped, "skipped");
  if (failures > 0) counts += ", " + countText(failures, "failed");
  if (notReached > 0) counts += ", " + countText(notReached, std::string("not ") + run.manner.done);
  print(counts + "\n");
  if (run.wasCancelled) return ExitStatus::Cancelled;
  return failures + wrongSubtitles + notReached > 0 ? ExitStatus::SomeFailed : ExitStatus::AllDone;
}

}  // namespace umsctl
