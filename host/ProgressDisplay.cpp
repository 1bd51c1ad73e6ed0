#include "ProgressDisplay.h"

#include <algorithm>
#include <utility>

#include "EscapedName.h"
#include "Output.h"
#include "PhaseLine.h"
#include "Planning.h"
#include "ProgressLine.h"
#include "Terminal.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;
using umsservice::MaybeString;
using Kind = umsservice::ItemOutcome::Kind;
namespace key = umsservice::key;

/// More often than this the eye sees nothing but flicker.
constexpr std::chrono::milliseconds kBetweenDrawings{100};
/// Programs need no more than a sign of life.
constexpr std::chrono::milliseconds kBetweenTellings{500};

/// "Title, Artist" as far as the file's tags say.
std::string tagText(const Dictionary& userInfo) {
  MaybeString title = userInfo.string("Title");
  MaybeString artist = userInfo.string("Artist");
  if (!title) return "";
  return "  (" + escaped(*title) + (artist ? ", " + escaped(*artist) : "") + ")";
}

/// A dry run is over at once.
bool hasBar(const Wishes& wishes) {
  return drawsLines(wishes) && !wishes.dryRun;
}

}  // namespace

ProgressDisplay::ProgressDisplay(const Errand& errand, std::vector<std::string> names,
                                 const std::vector<uint64_t>& sizes, const TransferManner& manner)
    : errand_(errand),
      redraws_(hasBar(errand.wishes())),
      manner_(manner),
      names_(std::move(names)),
      tally_(sizes) {}

ProgressDisplay::~ProgressDisplay() {
  finish();
}

void ProgressDisplay::begin() {
  std::lock_guard lock(mutex_);
  rate_.note(TransferRate::Clock::now(), 0);
  draw(true);
}

void ProgressDisplay::beginRequest(std::vector<size_t> positions) {
  std::lock_guard lock(mutex_);
  tally_.beginRequest(std::move(positions));
}

void ProgressDisplay::moved(const std::string& name, uint64_t bytes) {
  std::lock_guard lock(mutex_);
  currentName_ = name;
  tally_.setBytes(bytes);
  draw(false);
}

void ProgressDisplay::hear(const umsservice::Notification& notification) {
  std::lock_guard lock(mutex_);
  if (notification.name == umsservice::kTransferProgressNotification) {
    hearProgress(notification.userInfo);
  } else if (notification.name == umsservice::kMediaResultNotification) {
    tags_ = tagText(notification.userInfo);
  }
}

void ProgressDisplay::hearProgress(const Dictionary& userInfo) {
  if (MaybeString name = userInfo.string(key::kFileName)) currentName_ = *name;
  uint32_t percent = userInfo.get(key::kCurrentProgress).unsignedIntValue();
  // The ends of a run are posted as 100 percent, one file early included; they say nothing about bytes.
  bool isEnd =
      percent == 100 && userInfo.get(key::kTransferStatus).intValue() != umsservice::kTransferRunning;
  if (!isEnd) tally_.setPercent(percent);
  draw(false);
}

/// From the outcome and not from the item's notification: a file that did not fit on its volume is known
/// there by the place where it should have gone.
void ProgressDisplay::tell(const umsservice::ItemOutcome& outcome, const std::string& cause,
                           std::optional<bool> isVerified) {
  std::lock_guard lock(mutex_);
  const bool isFinished = outcome.kind == Kind::Done || outcome.kind == Kind::Skipped;
  const auto clash = clashOf(errand_, outcome);
  if (clash) clashes_[outcome.index] = {outcome.path.value_or(""), outcome.destPath.value_or(""), *clash};
  if (isFinished && !errand_.events().tellsFinished(manner_)) return;
  if (outputIsTerminal()) erase();
  const std::string& name = outcome.index < names_.size() ? names_[outcome.index] : outcome.path.value_or("");
  errand_.events().itemEnded(
      {outcome, manner_, name, cause, isFinished ? keptTags_[outcome.index] : "", clash, isVerified});
}

/// Whether a copy counts as one only after it was compared. A dry run makes none.
bool ProgressDisplay::isVerifiedLater(const umsservice::ItemOutcome& outcome) const {
  return outcome.kind == Kind::Done && errand_.wishes().verifies && !errand_.rehearsal();
}

void ProgressDisplay::itemCounted(const umsservice::ItemOutcome& outcome) {
  std::lock_guard lock(mutex_);
  keptTags_[outcome.index] = std::exchange(tags_, "");
  const bool isFinished = outcome.kind == Kind::Done || outcome.kind == Kind::Skipped;
  // Others are told with their cause at the end.
  if (isFinished && !isVerifiedLater(outcome)) tell(outcome);
  tally_.itemCounted(outcome);
  draw(false);
}

void ProgressDisplay::beginVerifying(const std::vector<umsservice::ItemOutcome>& done) {
  std::lock_guard lock(mutex_);
  std::vector<uint64_t> sizes;
  for (const auto& outcome : done) sizes.push_back(outcome.bytes);
  tally_ = TransferTally(std::move(sizes));
  rate_.restart();
  currentName_.clear();
  lastTold_ = {};
  isVerifying_ = true;
  draw(true);
}

void ProgressDisplay::itemVerified(const umsservice::ItemOutcome& outcome, bool isSame, bool isBehind) {
  std::lock_guard lock(mutex_);
  if (outcome.kind == Kind::Done) tell(outcome, "", isSame);
  if (!isBehind) return;
  umsservice::ItemOutcome counted = outcome;
  counted.index = tally_.counted();
  tally_.itemCounted(counted);
  draw(false);
}

std::vector<Clash> ProgressDisplay::clashes() const {
  std::lock_guard lock(mutex_);
  std::vector<Clash> found;
  for (const auto& clash : clashes_) found.push_back(clash.second);
  return found;
}

void ProgressDisplay::stepAside(const std::function<void()>& speak) {
  std::lock_guard lock(mutex_);
  erase();
  speak();
  rate_.restart();
  draw(true);
}

void ProgressDisplay::announce(const std::string& phase) {
  std::lock_guard lock(mutex_);
  if (!isFinished_) tellHowFar("flush");
  if (!redraws_ || isFinished_) return;
  printToError(kEraseLine + shortened(phase, errorColumns() - 1));
  isDrawn_ = true;
}

void ProgressDisplay::finish() {
  std::lock_guard lock(mutex_);
  erase();
  isFinished_ = true;
}

void ProgressDisplay::draw(bool always) {
  if (isFinished_) return;
  tellProgress();
  auto now = TransferRate::Clock::now();
  if (!redraws_ || (!always && now - lastDrawn_ < kBetweenDrawings)) return;
  rate_.note(now, tally_.movedBytes());
  std::string name = escaped(currentName_);
  if (isVerifying_) name = "comparing " + name;
  // The last column stays free: a full line would make some terminals begin another.
  printToError(kEraseLine + progressLine(tally_, rate_.perSecond(), name, errorColumns() - 1));
  // The first line has shown nothing yet; what follows it is drawn without delay.
  if (tally_.counted() > 0 || !currentName_.empty()) lastDrawn_ = now;
  isDrawn_ = true;
}

void ProgressDisplay::tellProgress() {
  auto now = TransferRate::Clock::now();
  if (errand_.rehearsal() || now - lastTold_ < kBetweenTellings) return;
  rate_.note(now, tally_.movedBytes());
  lastTold_ = now;
  tellHowFar(isVerifying_ ? "verify" : "transfer");
}

void ProgressDisplay::tellHowFar(const char* phase) {
  errand_.events().progressed({phase, tally_.counted(), tally_.items(), tally_.passedBytes(),
                               tally_.totalBytes(), rate_.perSecond(), currentName_});
}

void ProgressDisplay::erase() {
  if (!isDrawn_) return;
  printToError(kEraseLine);
  isDrawn_ = false;
}

}  // namespace umsctl
