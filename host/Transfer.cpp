#include "Transfer.h"

#include "Output.h"
#include "Refusal.h"
#include "RunningRequest.h"
#include "TransferReport.h"

namespace umsctl {
namespace {

using umsservice::ItemOutcome;

}  // namespace

Transfer::Transfer(const VolumeFolders& volumes, const std::vector<std::string>& files, OnConflict onConflict)
    : contents_(*files_, files),
      display_(contents_.sizes),
      outcomes_(std::make_shared<Outcomes>(
          files_, [this](const ItemOutcome& outcome) { display_.itemCounted(outcome); })),
      policy_(std::make_shared<ConflictPolicy>(onConflict, display_, interrupt_)),
      device_(volumes, outcomes_) {
  device_.service().setConfirmDelegate(policy_);
}

ExitStatus Transfer::run(const Queue& queue, const std::string& flushed) {
  display_.begin();
  waitForEnd(queue);
  display_.announce("Waiting until the device has written everything...");
  bool isKept = flush(flushed);
  display_.finish();
  ExitStatus status = report(device_, contents_, *outcomes_, wasCancelled_);
  return isKept || status != ExitStatus::AllDone ? status : ExitStatus::SomeFailed;
}

void Transfer::waitForEnd(const Queue& queue) {
  RunningRequest request(device_, display_);
  const uint32_t serviceID = request.serviceID();
  InterruptAction cancelling(interrupt_, [this, serviceID] {
    device_.service().cancelFileAction(serviceID);
    answerInterrupt("cancelling");
  });
  if (!queue(serviceID, contents_.dictionaries))
    throw Refusal(ExitStatus::SomeFailed, "", "the device takes no files");
  request.waitForEnd();
  wasCancelled_ = interrupt_.happened();
}

/// Files that are only in the computer's memory are lost when the cable is pulled.
bool Transfer::flush(const std::string& folder) {
  auto answer = [] { answerInterrupt("the device is still writing"); };
  InterruptAction waiting(interrupt_, wasCancelled_ ? std::function<void()>() : answer);
  auto flushed = device_.files().syncVolume(folder);
  if (flushed) return true;
  display_.stepAside([&] { complain(folder, "it may not be written yet: " + flushed.error().words()); });
  return false;
}

}  // namespace umsctl
