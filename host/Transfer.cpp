#include "Transfer.h"

#include <numeric>

#include "Output.h"
#include "Paths.h"
#include "Refusal.h"
#include "RunningRequest.h"
#include "TransferReport.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using umsservice::Array;
using umsservice::ItemOutcome;

}  // namespace

Transfer::Transfer(const VolumeFolders& volumes, const std::vector<std::string>& files, OnConflict onConflict,
                   const TransferManner& manner, const Objection& objection)
    : manner_(manner),
      contents_(*files_, files, objection),
      display_(contents_.sizes, manner),
      outcomes_(std::make_shared<Outcomes>(
          files_, [this](const ItemOutcome& outcome) { display_.itemCounted(outcome); })),
      policy_(std::make_shared<ConflictPolicy>(onConflict, display_, interrupt_, manner.place)),
      device_(volumes, outcomes_),
      takesSubtitles_(files.size(), true) {
  device_.service().setConfirmDelegate(policy_);
}

ExitStatus Transfer::run(const Queue& queue, const std::string& flushed) {
  std::vector<size_t> positions(contents_.names.size());
  std::iota(positions.begin(), positions.end(), size_t{0});
  display_.begin();
  {
    InterruptAction cancelling(interrupt_, [this] { cancel(); });
    performRequest(positions, queue);
  }
  return conclude({flushed});
}

ExitStatus Transfer::runByType(const Sort& sort, const QueueOfType& queue,
                               const std::vector<std::string>& flushed) {
  display_.begin();
  {
    InterruptAction cancelling(interrupt_, [this] { cancel(); });
    performAll(sortAll(sort), queue);
  }
  return conclude(flushed);
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

ExitStatus Transfer::runDirectly(const Direct& direct, const std::string& flushed) {
  display_.begin();
  if (contents_.objections.front().empty()) {
    InterruptAction cancelling(interrupt_, [] { answerInterrupt("cancelling"); });
    outcomes_->itemCounted(
        direct([this] { return !interrupt_.happened(); },
               [this](uint64_t bytes) { display_.moved(lastComponent(contents_.names.front()), bytes); }));
    noteCancel();
  } else {
    ItemOutcome refused;
    refused.kind = ItemOutcome::Kind::Failed;
    outcomes_->itemCounted(refused);
  }
  return conclude({flushed});
}

ExitStatus Transfer::conclude(const std::vector<std::string>& flushed) {
  display_.announce("Waiting until the device has written everything...");
  bool isKept = true;
  for (const std::string& folder : flushed) {
    bool neverMade = outcomes_->count(ItemOutcome::Kind::Done) == 0 && !device_.files().exists(folder);
    isKept = (neverMade || flush(folder)) && isKept;
  }
  display_.finish();
  ExitStatus status = report(device_, contents_, *outcomes_, {manner_, takesSubtitles_, wasCancelled_});
  return isKept || status != ExitStatus::AllDone ? status : ExitStatus::SomeFailed;
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
