#include "podcast/EpisodeReport.h"

#include "Causes.h"
#include "TransferReport.h"
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

namespace {

std::string causeFor(const ReportedEpisodes& parts, const ItemOutcome& outcome) {
  if (auto mismatch = parts.mismatches.find(outcome.index); mismatch != parts.mismatches.end())
    return mismatch->second;
  const std::string& objection = parts.items.objections.at(outcome.index);
  return objection.empty() ? causeOfEpisode(parts.device, outcome) : objection;
}

}  // namespace

ExitStatus reportEpisodes(const ReportedEpisodes& parts, bool wasCancelled) {
  for (const ItemOutcome& outcome : parts.outcomes.all()) {
    if (outcome.kind == Kind::Done || outcome.kind == Kind::Skipped) continue;
    parts.display.tell(outcome, needsCause(outcome) ? causeFor(parts, outcome) : "");
  }
  for (const ItemOutcome& outcome : neverCounted(parts.outcomes, parts.items.names.size()))
    parts.display.tell(outcome);
  for (const auto& leftover : parts.outcomes.leftovers())
    parts.errand.events().complained(leftover.path, "an unfinished copy stays there: " + leftover.words());
  Counts counts = countsOf(parts.errand, parts.outcomes, {}, parts.items.names.size());
  counts.wasCancelled = wasCancelled;
  parts.errand.events().counted(counts);
  return statusOf(counts);
}

}  // namespace umsctl
