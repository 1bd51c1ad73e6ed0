#include "podcast/EpisodeReport.h"

#include "Amounts.h"
#include "Causes.h"
#include "Output.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {

using umsservice::ItemOutcome;
using Kind = ItemOutcome::Kind;

std::string causeOfEpisode(Device& device, const ItemOutcome& outcome) {
  switch (outcome.errorNumber) {
    case umsservice::kErrorBadCopyItem:
    case umsservice::kErrorBadSyncItem:
      return "its channel's title or its own name is no name for the device";
    case umsservice::kErrorVolumeFull:
      // A sync that finds no place for a channel tells of no destination.
      if (!outcome.destPath && outcome.kind == Kind::Failed) return "its channel fits on no volume";
      return causeOf(device, outcome);
    default:
      return causeOf(device, outcome);
  }
}

std::optional<Failure> failureOf(Device& device, const std::string& name, const std::string& objection,
                                 const ItemOutcome& outcome) {
  bool isFailure = outcome.kind == Kind::Failed ||
                   (outcome.kind == Kind::NotReached && !umsservice::isStopCode(outcome.errorNumber));
  if (!isFailure) return std::nullopt;
  if (!objection.empty()) return Failure{name, outcome.errorNumber, objection, adviceForObjection(objection)};
  return Failure{name, outcome.errorNumber, causeOfEpisode(device, outcome), adviceFor(outcome)};
}

ExitStatus reportEpisodes(Device& device, const EpisodeItems& items, const Outcomes& outcomes,
                          bool wasCancelled) {
  std::vector<Failure> told;
  for (const ItemOutcome& outcome : outcomes.all()) {
    size_t i = outcome.index;
    auto failure = failureOf(device, items.names.at(i), items.objections.at(i), outcome);
    if (failure) told.push_back(*failure);
  }
  tellFailures(told);
  const size_t failures = told.size();
  for (const auto& leftover : outcomes.leftovers())
    complain(leftover.path, "an unfinished copy stays there: " + leftover.words());
  size_t done = outcomes.count(Kind::Done);
  size_t skipped = outcomes.count(Kind::Skipped);
  size_t notReached = items.names.size() - done - skipped - failures;

  std::string counts = wasCancelled ? "cancelled: " : "";
  counts += std::to_string(done) + " copied (" + byteText(outcomes.doneBytes()) + ")";
  if (skipped > 0) counts += ", " + std::to_string(skipped) + " skipped";
  if (failures > 0) counts += ", " + std::to_string(failures) + " failed";
  if (notReached > 0) counts += ", " + std::to_string(notReached) + " not copied";
  print(counts + "\n");
  if (wasCancelled) return ExitStatus::Cancelled;
  return failures + notReached > 0 ? ExitStatus::SomeFailed : ExitStatus::AllDone;
}

}  // namespace umsctl
