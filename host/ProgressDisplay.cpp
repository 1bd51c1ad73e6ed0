#include "ProgressDisplay.h"

#include <algorithm>

#include "EscapedName.h"
#include "Output.h"
#include "ProgressLine.h"
#include "Terminal.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;
using umsservice::MaybeString;
namespace key = umsservice::key;

/// More often than this the eye sees nothing but flicker.
constexpr std::chrono::milliseconds kBetweenDrawings{100};

/// "Title, Artist" as far as the file's tags say.
std::string tagText(const Dictionary& userInfo) {
  MaybeString title = userInfo.string("Title");
  MaybeString artist = userInfo.string("Artist");
  if (!title) return "";
  return "  (" + escaped(*title) + (artist ? ", " + escaped(*artist) : "") + ")";
}

}  // namespace

ProgressDisplay::ProgressDisplay(std::vector<uint64_t> sizes, const TransferManner& manner)
    : redraws_(canRedrawError()),
      lists_(!redraws_ || !outputIsTerminal() || manner.tellsPlaces),
      manner_(manner),
      tally_(std::move(sizes)) {}

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
  currentName_ = escaped(name);
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
  if (MaybeString name = userInfo.string(key::kFileName)) currentName_ = escaped(*name);
  uint32_t percent = userInfo.get(key::kCurrentProgress).unsignedIntValue();
  // The ends of a run are posted as 100 percent, one file early included; they say nothing about bytes.
  bool isEnd =
      percent == 100 && userInfo.get(key::kTransferStatus).intValue() != umsservice::kTransferRunning;
  if (!isEnd) tally_.setPercent(percent);
  draw(false);
}

/// From the outcome and not from the item's notification: a file that did not fit on its volume is known
/// there by the place where it should have gone.
void ProgressDisplay::showFinished(const umsservice::ItemOutcome& outcome) {
  using Kind = umsservice::ItemOutcome::Kind;
  const MaybeString& path = outcome.destPath ? outcome.destPath : outcome.path;
  if (!path) return;
  if (outputIsTerminal()) erase();
  if (outcome.kind == Kind::Done) {
    std::string word = manner_.done;
    print(word + std::string(9 - std::min<size_t>(7, word.size()), ' ') + escaped(*path) + tags_ + "\n");
  } else if (outcome.kind == Kind::Skipped) {
    print("skipped  " + escaped(*path) + "  (already there)\n");
  }  // others are told with their cause at the end
}

void ProgressDisplay::itemCounted(const umsservice::ItemOutcome& outcome) {
  std::lock_guard lock(mutex_);
  if (lists_) showFinished(outcome);
  tags_.clear();
  tally_.itemCounted(outcome);
  draw(false);
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
  if (!redraws_ || isFinished_) return;
  auto now = TransferRate::Clock::now();
  if (!always && now - lastDrawn_ < kBetweenDrawings) return;
  rate_.note(now, tally_.movedBytes());
  // The last column stays free: a full line would make some terminals begin another.
  printToError(kEraseLine + progressLine(tally_, rate_.perSecond(), currentName_, errorColumns() - 1));
  // The first line has shown nothing yet; what follows it is drawn without delay.
  if (tally_.counted() > 0 || !currentName_.empty()) lastDrawn_ = now;
  isDrawn_ = true;
}

void ProgressDisplay::erase() {
  if (!isDrawn_) return;
  printToError(kEraseLine);
  isDrawn_ = false;
}

}  // namespace umsctl
