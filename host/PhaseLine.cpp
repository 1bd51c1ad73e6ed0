#include "PhaseLine.h"

#include "EscapedName.h"
#include "Output.h"
#include "Terminal.h"

namespace umsctl {
namespace {

constexpr std::chrono::milliseconds kPatience{200};
constexpr std::chrono::milliseconds kBetweenPhases{100};

}  // namespace

PhaseLine::PhaseLine() : redraws_(canRedrawError()), next_(Clock::now() + kPatience) {}

PhaseLine::~PhaseLine() {
  erase();
}

void PhaseLine::step(const char* what, size_t done, size_t all) {
  if (!redraws_ || Clock::now() < next_) return;
  std::string line = std::string(what) + "  " + std::to_string(done) + "/" + std::to_string(all);
  printToError(kEraseLine + shortened(line, errorColumns() - 1));
  isDrawn_ = true;
  next_ = Clock::now() + kBetweenPhases;
}

void PhaseLine::erase() {
  if (isDrawn_) printToError(kEraseLine);
  isDrawn_ = false;
}

}  // namespace umsctl
