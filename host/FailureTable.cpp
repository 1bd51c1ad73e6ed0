#include "FailureTable.h"

#include <algorithm>
#include <cstdio>

#include "Colour.h"
#include "Columns.h"
#include "EscapedName.h"
#include "Output.h"
#include "Terminal.h"

namespace umsctl {
namespace {

/// "2 failed, 1 not tried:"
std::string headingOf(const std::vector<Failure>& failures) {
  const auto tried = static_cast<size_t>(std::count_if(
      failures.begin(), failures.end(), [](const Failure& failure) { return failure.wasTried; }));
  const size_t untried = failures.size() - tried;
  std::string heading = tried > 0 ? std::to_string(tried) + " failed" : "";
  if (untried > 0) heading += (tried > 0 ? ", " : "") + std::to_string(untried) + " not tried";
  return heading + ":";
}

}  // namespace

std::string numberText(uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(number));
  return text;
}

void tellFailure(const Failure& failure) {
  complain(failure.name, failure.cause + " (" + numberText(failure.number) + "); " + failure.advice);
}

void tellFailures(const std::vector<Failure>& failures) {
  if (failures.empty()) return;
  if (!errorIsTerminal()) {
    for (const Failure& failure : failures) tellFailure(failure);
    return;
  }
  using Fit = Columns::Fit;
  Columns table({{"FILE", Fit::CutFront}, {"NUMBER"}, {"CAUSE", Fit::Wrap}, {"WHAT TO DO", Fit::Wrap}});
  for (const Failure& failure : failures)
    table.add({escaped(failure.name), numberText(failure.number), failure.cause, failure.advice});
  const bool hasColour = errorHasColour();
  const std::string heading = headingOf(failures);
  printToError("umsctl: " + (hasColour ? painted(Paint::Bad, heading) : heading) + "\n" +
               table.text(errorColumns(), hasColour, "  "));
}

}  // namespace umsctl
