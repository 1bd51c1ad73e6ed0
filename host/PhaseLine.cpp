#include "PhaseLine.h"

#include "EscapedName.h"
#include "Output.h"
#include "Terminal.h"

namespace umsctl {
namespace {

constexpr std::chrono::milliseconds kPatience{200};
constexpr std::chrono::milliseconds kBetweenPhases{100};

}  // namespace

bool drawsLines(const Wishes& wishes) {
  if (wishes.json && outputIsTerminal()) return false;
  return canRedrawError() && !wishes.quiet && !wishes.verbose;
}

PhaseLine::PhaseLine(const Wishes& wishes) : redraws_(drawsLines(wishes)), next_(Clock::now() + kPatience) {}

PhaseLine::~PhaseLine() {
  erase();
}

void PhaseLine::step(const char* what, size_t done, std::optional<size_t> all) {
  if (!redraws_ || Clock::now() < next_) return;
  std::string line = std::string(what) + "  " + std::to_string(done);
  if (all) line += "/" + std::to_string(*all);
  draw(line);
  next_ = Clock::now() + kBetweenPhases;
}

void PhaseLine::announce(const char* what) {
  if (redraws_) draw(what);
}

void PhaseLine::draw(const std::string& line) {
  printToError(kEraseLine + shortened(line, errorColumns() - 1));
  isDrawn_ = true;
}

void PhaseLine::erase() {
  if (isDrawn_) printToError(kEraseLine);
  isDrawn_ = false;
}

}  // namespace umsctl
