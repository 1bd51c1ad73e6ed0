#include "Transfer.h"

#include <numeric>

#include "Flushing.h"
#include "Paths.h"
#include "PhaseLine.h"
#include "Planning.h"
#include "Refusal.h"
#include "RunningRequest.h"
#include "Subtitles.h"
#include "TransferReport.h"
#include "Verification.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using umsservice::Array;
using umsservice::ItemOutcome;

}  // namespace

Transfer::Transfer(const Errand& errand, const VolumeFolders& volumes, const std::vector<std::string>& files,
                   const TransferManner& manner, const Objection& objection)
    : errand_(errand),
      manner_(manner),
      contents_(errand, *errand.files(), files, objection),
      display_(errand, contents_.names, contents_.sizes, manner),
      outcomes_(std::make_shared<Outcomes>(
          errand.files(), [this](const ItemOutcome& outcome) { display_.itemCounted(outcome); })),
      interrupt_(errand.interrupt()),
      policy_(std::make_shared<ConflictPolicy>(errand, display_, manner.place)),
      device_(volumes, errand, outcomes_),
      takesSubtitles_(files.size(), true) {
  device_.service().setConfirmDelegate(policy_);
}

void Transfer::begin(const std::vector<WrittenPlace>& written) {
  if (!errand_.rehearsal()) errand_.events().planned(planOf(errand_, contents_.sizes, written));
  display_.begin();
}

ExitStatus Transfer::run(const Queue& queue, const WrittenPlace& written) {
  std::vector<size_t> positions(contents_.names.size());
  std::iota(positions.begin(), positions.end(), size_t{0});
  begin({written});
  {
    InterruptAction cancelling(interrupt_, [this] { cancel(); });
    performRequest(positions, queue);
  }
  return conclude({written});
}

ExitStatus Transfer::runByType(const Sort& sort, const QueueOfType& queue,
                               const std::vector<WrittenPlace>& written) {
  begin(written);
  {
    InterruptAction cancelling(interrupt_, [this] { cancel(); });
    performAll(sortAll(sort), queue);
  }
  return conclude(written);
}

void Transfer::performAll(const std::vector<Part>& parts, const QueueOfType& queue) {
  for (size_t next = 0; next < parts.size() && !interrupt_.happened();) {
    std::vector<size_t> positions;
    const uint32_t mediaType = parts[next].mediaType;
    for (; next < parts.size() && parts[next].mediaType == mediaType; ++next) {
      if (!parts[next].settled) positions.push_back(next);
    }
    if (positions.empty()) continue;
    performRequest(positions, [&](uint32_t serviceID, const Array& contents) {
      return queue(serviceID, contents, mediaType);
    });
  }
  noteCancel();
}

/// An interrupt that ends a run is answered before the run says anything else.
bool Transfer::noteCancel() {
  wasCancelled_ = interrupt_.happened();
  if (wasCancelled_) interrupt_.settle();
  return wasCancelled_;
}

/// Also between two requests, where there is nothing to cancel but the rest of the list.
void Transfer::cancel() {
  device_.service().cancelFileAction(serviceID_);
  answerInterrupt("cancelling");
}

Transfer::Part Transfer::partByName(size_t index) {
  Part part;
  int32_t mediaType = device_.service().checkMediaType(contents_.paths[index]);
  if (mediaType != umsservice::kMediaUnknown && mediaType != umsservice::kMediaPodcast) {
    part.mediaType = static_cast<uint32_t>(mediaType);
    return part;
  }
  part.settled.emplace().kind = ItemOutcome::Kind::Failed;
  part.settled->errorNumber = umsservice::kErrorUnknownMediaType;
  return part;
}

/// Files that need no request are counted at once; they have the type of the file before, so that they part
/// no stretch.
std::vector<Transfer::Part> Transfer::sortAll(const Sort& sort) {
  std::vector<Part> parts;
  for (size_t i = 0; i < contents_.names.size(); ++i) {
    Part part;
    if (contents_.objections[i].empty()) {
      part = sort(i);
    } else {
      part.settled.emplace().kind = ItemOutcome::Kind::Failed;
      part.settled->errorNumber = umsservice::kErrorInvalidInput;
    }
    takesSubtitles_[i] = part.mediaType == umsservice::kMediaVideo;
    if (part.settled) {
      part.mediaType = parts.empty() ? 0 : parts.back().mediaType;
      part.settled->index = i;
      outcomes_->itemCounted(*part.settled);
    }
    parts.push_back(std::move(part));
  }
  return parts;
}

void Transfer::performRequest(const std::vector<size_t>& positions, const Queue& queue) {
  RunningRequest request(device_, display_);
  const uint32_t serviceID = request.serviceID();
  Array contents;
  for (size_t position : positions) contents.append(contents_.dictionaries.at(position));
  display_.beginRequest(positions);
  outcomes_->beginRequest(positions, request.ender());
  // From here on an interrupt cancels this request; one that came before is not waited for.
  serviceID_ = serviceID;
  if (noteCancel()) return;
  if (!queue(serviceID, contents)) throw Refusal(ExitStatus::SomeFailed, "", "the device takes no files");
  request.waitForEnd();
  noteCancel();
}

ExitStatus Transfer::runDirectly(const Direct& direct, const WrittenPlace& written) {
  begin({written});
  if (contents_.objections.front().empty()) {
    InterruptAction cancelling(interrupt_, [] { answerInterrupt("cancelling"); });
    outcomes_->itemCounted(
        direct([this] { return !interrupt_.happened(); },
               [this](uint64_t bytes) { display_.moved(lastComponent(contents_.names.front()), bytes); }));
    noteCancel();
  } else {
    ItemOutcome refused;
    refused.kind = ItemOutcome::Kind::Failed;
    refused.errorNumber = umsservice::kErrorInvalidInput;
    outcomes_->itemCounted(refused);
  }
  return conclude({written});
}

ExitStatus Transfer::conclude(const std::vector<WrittenPlace>& written) {
  const bool isKept = errand_.rehearsal() || flushAll(written);
  const auto mismatches = verify();
  display_.finish();
  ExitStatus status = report({errand_, device_, contents_, *outcomes_, display_},
                             {manner_, takesSubtitles_, wasCancelled_, mismatches});
  if (errand_.rehearsal())
    errand_.events().planned(planOf(errand_, contents_.sizes, written, display_.clashes()));
  return isKept || status != ExitStatus::AllDone ? status : ExitStatus::SomeFailed;
}

/// Only now: what is compared must have been on the device.
std::map<size_t, std::string> Transfer::verify() {
  if (!errand_.wishes().verifies || errand_.rehearsal()) return {};
  InterruptAction cancelling(
      interrupt_, wasCancelled_ ? std::function<void()>() : [] { answerInterrupt("cancelling"); });
  auto subtitles = [this](const ItemOutcome& outcome) -> std::pair<std::string, std::string> {
    if (manner_.subtitles != Subtitles::Travel || !takesSubtitles_.at(outcome.index)) return {};
    std::string companion = companionOf(*outcome.path), copy = companionOf(*outcome.destPath);
    // Those that did not come along are told by the report.
    bool came = device_.files().exists(companion) && device_.files().exists(copy);
    return came ? std::pair(companion, copy) : std::pair<std::string, std::string>();
  };
  auto mismatches = Verification(errand_, *outcomes_, display_, interrupt_).run(subtitles);
  noteCancel();
  return mismatches;
}

bool Transfer::flushAll(const std::vector<WrittenPlace>& written) {
  if (outcomes_->count(ItemOutcome::Kind::Done) == 0) return true;  // there is nothing that could be lost
  display_.announce(kFlushing);
  return flush(errand_, device_.files(), written, wasCancelled_,
               [this](const std::function<void()>& speak) { display_.stepAside(speak); });
}

}  // namespace umsctl
