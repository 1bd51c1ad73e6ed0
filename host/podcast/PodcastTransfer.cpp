#include "podcast/PodcastTransfer.h"

#include "Output.h"
#include "Refusal.h"
#include "RunningRequest.h"
#include "podcast/EpisodeReport.h"

namespace umsctl {

using umsservice::ItemOutcome;

PodcastTransfer::PodcastTransfer(const VolumeFolders& volumes, EpisodeItems items, OnConflict onConflict)
    : items_(std::move(items)),
      display_(items_.sizes),
      outcomes_(
          std::make_shared<Outcomes>(files_, [this](const ItemOutcome& outcome) { itemCounted(outcome); })),
      policy_(std::make_shared<ConflictPolicy>(onConflict, display_, interrupt_)),
      device_(volumes, outcomes_) {
  device_.service().setConfirmDelegate(policy_);
}

void PodcastTransfer::itemCounted(const ItemOutcome& outcome) {
  display_.itemCounted(outcome);
  std::lock_guard lock(endMutex_);
  if (++counted_ == items_.names.size() && end_) end_();
}

ExitStatus PodcastTransfer::run(const Queue& queue, const std::vector<std::string>& flushed) {
  display_.begin();
  perform(queue);
  display_.announce("Waiting until the device has written everything...");
  bool isKept = true;
  for (const std::string& folder : flushed) isKept = flush(folder) && isKept;
  display_.finish();
  ExitStatus status = reportEpisodes(device_, items_, *outcomes_, wasCancelled_);
  return isKept || status != ExitStatus::AllDone ? status : ExitStatus::SomeFailed;
}

void PodcastTransfer::perform(const Queue& queue) {
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
  if (!queue(serviceID, items_.channels))
    throw Refusal(ExitStatus::SomeFailed, "", "the device takes no podcasts");
  request.waitForEnd();
  // The index of the last channel is written after its last episode was counted.
  std::lock_guard untilTheRunIsOver(device_.service().synchronizedSection());
  wasCancelled_ = interrupt_.happened();
}

/// Files that are only in the computer's memory are lost when the cable is pulled.
bool PodcastTransfer::flush(const std::string& folder) {
  auto answer = [] { answerInterrupt("the device is still writing"); };
  InterruptAction waiting(interrupt_, wasCancelled_ ? std::function<void()>() : answer);
  auto flushed = device_.files().syncVolume(folder);
  if (flushed) return true;
  display_.stepAside([&] { complain(folder, "it may not be written yet: " + flushed.error().words()); });
  return false;
}

}  // namespace umsctl
