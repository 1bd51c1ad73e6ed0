#include "podcast/PodcastTransfer.h"

#include "Flushing.h"
#include "PhaseLine.h"
#include "Planning.h"
#include "Refusal.h"
#include "RunningRequest.h"
#include "Verification.h"
#include "podcast/EpisodeReport.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {

using umsservice::ItemOutcome;

PodcastTransfer::PodcastTransfer(const Errand& errand, const VolumeFolders& volumes, EpisodeItems items)
    : errand_(errand),
      items_(std::move(items)),
      display_(errand, items_.names, items_.sizes),
      outcomes_(std::make_shared<Outcomes>(errand.files(),
                                           [this](const ItemOutcome& outcome) { itemCounted(outcome); })),
      interrupt_(errand.interrupt()),
      policy_(std::make_shared<ConflictPolicy>(errand, display_)),
      device_(volumes, errand, outcomes_) {
  device_.service().setConfirmDelegate(policy_);
}

void PodcastTransfer::itemCounted(const ItemOutcome& outcome) {
  display_.itemCounted(outcome);
  std::lock_guard lock(endMutex_);
  if (++counted_ == items_.names.size() && end_) end_();
}

ExitStatus PodcastTransfer::run(const Queue& queue, const std::vector<WrittenPlace>& written) {
  const bool isRehearsed = errand_.rehearsal() != nullptr;
  if (!isRehearsed) errand_.events().planned(planOf(errand_, items_.sizes, written));
  display_.begin();
  perform(queue);
  const bool isKept = isRehearsed || flushAll(written);
  const auto mismatches = verify();
  display_.finish();
  ExitStatus status =
      reportEpisodes({errand_, device_, items_, *outcomes_, display_, mismatches}, wasCancelled_);
  if (isRehearsed) errand_.events().planned(planOf(errand_, items_.sizes, written, display_.clashes()));
  return isKept || status != ExitStatus::AllDone ? status : ExitStatus::SomeFailed;
}

/// A channel of which no episode can be taken would leave an empty folder with an index behind: it is not
/// asked for, and its episodes are counted here. Gives the others and the places of their episodes.
umsservice::Array PodcastTransfer::settleHopelessChannels(std::vector<size_t>& positions) {
  umsservice::Array others;
  size_t next = 0;
  for (const umsservice::Value& channel : items_.channels.snapshot()) {
    const auto children = channel.dictionary()->get("children").array();
    const size_t first = next;
    next += children ? children->count() : 0;
    bool isHopeless = true;
    for (size_t i = first; i < next; ++i) isHopeless = isHopeless && !items_.objections.at(i).empty();
    if (!isHopeless) others.append(*channel.dictionary());
    for (size_t i = first; i < next; ++i) {
      if (!isHopeless) {
        positions.push_back(i);
        continue;
      }
      ItemOutcome outcome;
      outcome.index = i;
      outcome.kind = ItemOutcome::Kind::Failed;
      outcome.errorNumber = umsservice::kErrorBadCopyItem;
      outcomes_->itemCounted(outcome);
    }
  }
  return others;
}

void PodcastTransfer::perform(const Queue& queue) {
  std::vector<size_t> positions;
  const umsservice::Array channels = settleHopelessChannels(positions);
  if (channels.count() == 0) return;
  display_.beginRequest(positions);
  outcomes_->beginRequest(positions, nullptr);
  RunningRequest request(device_, display_);
  const uint32_t serviceID = request.serviceID();
  {
    std::lock_guard lock(endMutex_);
    end_ = request.ender();
  }
  InterruptAction cancelling(interrupt_, [this, serviceID] {
    device_.service().cancelFileAction(serviceID);
    answerInterrupt("cancelling");
  });
  if (!queue(serviceID, channels)) throw Refusal(ExitStatus::SomeFailed, "", "the device takes no podcasts");
  request.waitForEnd();
  // The index of the last channel is written after its last episode was counted.
  std::lock_guard untilTheRunIsOver(device_.service().synchronizedSection());
  wasCancelled_ = interrupt_.happened();
}

bool PodcastTransfer::flushAll(const std::vector<WrittenPlace>& written) {
  display_.announce(kFlushing);
  return flush(errand_, device_.files(), written, wasCancelled_,
               [this](const std::function<void()>& speak) { display_.stepAside(speak); });
}

/// Only now: what is compared must have been on the device.
std::map<size_t, std::string> PodcastTransfer::verify() {
  if (!errand_.wishes().verifies || errand_.rehearsal()) return {};
  InterruptAction cancelling(
      interrupt_, wasCancelled_ ? std::function<void()>() : [] { answerInterrupt("cancelling"); });
  auto mismatches = Verification(errand_, *outcomes_, display_, interrupt_).run();
  wasCancelled_ = interrupt_.happened();
  if (wasCancelled_) interrupt_.settle();
  return mismatches;
}

}  // namespace umsctl
