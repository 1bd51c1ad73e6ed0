#include "TextEvents.h"

#include <algorithm>
#include <utility>

#include "Amounts.h"
#include "Causes.h"
#include "EscapedName.h"
#include "Output.h"
#include "PhaseLine.h"
#include "Terminal.h"

namespace umsctl {
namespace {

using Kind = umsservice::ItemOutcome::Kind;

std::string roomText(const VolumeRoom& room) {
  std::string text = room.index ? "volume " + std::to_string(*room.index) + ", " : "";
  const uint64_t before = room.freeBefore, after = room.freeAfter.value_or(before);
  text += room.kind + ", " + escaped(room.path) + ": " + byteText(before) + " free before, " +
          byteText(after) + " after";
  if (after < before) text += " (" + byteText(before - after) + " less)";
  if (after > before) text += " (" + byteText(after - before) + " more)";
  return text + "\n";
}

/// The first word of an item's line.
std::string wordOf(const EndedItem& item, bool isDryRun) {
  const bool isDone = item.outcome.kind == Kind::Done;
  if (!isDryRun) return isDone ? item.manner.done : "skipped";
  if (isDone) return item.clash ? "replace" : item.manner.planned;
  return item.clash == ClashAction::Ask ? "ask" : "skip";
}

std::string finishedLine(const EndedItem& item, bool isDryRun) {
  const auto& outcome = item.outcome;
  const auto& path = outcome.destPath ? outcome.destPath : outcome.path;
  std::string word = wordOf(item, isDryRun);
  std::string line = word + std::string(9 - std::min<size_t>(7, word.size()), ' ') + escaped(*path);
  bool wasThere = outcome.kind == Kind::Skipped || (isDryRun && item.clash);
  return line + item.tags + (wasThere ? "  (already there)" : "") +
         (item.isVerified == true ? "  (verified)" : "") + "\n";
}

bool didNotArrive(const umsservice::ItemOutcome& outcome) {
  return outcome.kind == Kind::Failed || outcome.kind == Kind::NotReached;
}

}  // namespace

std::string countsText(const Counts& counts, bool isDryRun) {
  std::string text = counts.wasCancelled ? "cancelled: " : "";
  auto add = [&text](size_t number, const std::string& what) { text += std::to_string(number) + " " + what; };
  add(counts.doneItems, isDryRun ? std::string("to ") + counts.planned : counts.done);
  if (counts.bytes) text += " (" + byteText(*counts.bytes) + ")";
  if (counts.skipped > 0) text += ", ", add(counts.skipped, isDryRun ? "to skip" : "skipped");
  if (counts.asked > 0) text += ", ", add(counts.asked, "to ask about");
  if (counts.failed > 0) text += ", ", add(counts.failed, isDryRun ? "would fail" : "failed");
  if (counts.notReached > 0) text += ", ", add(counts.notReached, std::string("not ") + counts.done);
  return text + "\n";
}

/// What is really done is told as it happens.
void TextEvents::planned(const Plan& plan) {
  if (!wishes_.dryRun || wishes_.quiet) return;
  std::string text;
  for (const VolumeRoom& room : plan.volumes) text += roomText(room);
  print(text + "nothing has been changed\n");
}

/// Where the log goes by there is no bar.
void TextEvents::progressed(const HowFar& progress) {
  constexpr std::chrono::seconds kBetweenLines{5};
  if (!wishes_.verbose || !outputIsTerminal()) return;
  std::lock_guard lock(mutex_);
  const auto now = std::chrono::steady_clock::now();
  if (now - lastProgress_ < kBetweenLines) return;
  lastProgress_ = now;
  printToError("umsctl: " + byteText(progress.passedBytes) + " of " + byteText(progress.totalBytes) +
               (progress.name.empty() ? "" : ", " + escaped(progress.name)) + "\n");
}

/// On a terminal the bar tells enough, unless nobody would know where a file went.
bool TextEvents::tellsFinished(const TransferManner& manner) const {
  if (wishes_.quiet) return false;
  if (wishes_.dryRun) return true;
  return manner.isTold && (manner.tellsPlaces || !drawsLines(wishes_) || !outputIsTerminal());
}

void TextEvents::itemEnded(const EndedItem& item) {
  // What a person cancelled needs no list.
  if (didNotArrive(item.outcome)) {
    if (item.cause.empty()) return;
    std::lock_guard lock(mutex_);
    failures_.push_back({item.name, item.outcome.errorNumber, item.cause, adviceFor(item.outcome, item.cause),
                         item.outcome.kind == Kind::Failed});
    return;
  }
  bool hasPath = item.outcome.destPath || item.outcome.path;
  if (hasPath && tellsFinished(item.manner)) print(finishedLine(item, wishes_.dryRun));
}

void TextEvents::tellOfFailures() {
  std::lock_guard lock(mutex_);
  tellFailures(std::exchange(failures_, {}));
}

void TextEvents::counted(const Counts& counts) {
  tellOfFailures();
  if (!wishes_.quiet) print(countsText(counts, wishes_.dryRun));
}

void TextEvents::shown(const Shown& shown) {
  if (!wishes_.quiet) print(shown.text);
}

void TextEvents::remarked(const std::string& line) {
  if (!wishes_.quiet) print(line);
}

void TextEvents::complained(const std::string& subject, const std::string& cause) {
  tellOfFailures();  // in the order of events
  complain(subject, cause);
}

void TextEvents::noticed(const std::string& subject, const std::string& text) {
  if (!wishes_.quiet) complain(subject, text);
}

}  // namespace umsctl
