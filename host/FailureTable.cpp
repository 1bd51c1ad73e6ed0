#include "FailureTable.h"

#include <cstdio>

#include "Colour.h"
#include "Columns.h"
#include "EscapedName.h"
#include "Output.h"
#include "Terminal.h"

namespace umsctl {
namespace {

std::string numberText(uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(number));
  return text;
}

}  // namespace

void tellFailures(const std::vector<Failure>& failures) {
  if (failures.empty()) return;
  if (!errorIsTerminal()) {
    for (const Failure& failure : failures) complain(failure.name, failure.cause);
    return;
  }
  using Fit = Columns::Fit;
  Columns table({{"FILE", Fit::CutFront}, {"NUMBER"}, {"CAUSE", Fit::Wrap}, {"WHAT TO DO", Fit::Wrap}});
  for (const Failure& failure : failures)
    table.add({escaped(failure.name), numberText(failure.number), failure.cause, failure.advice});
  const bool hasColour = errorHasColour();
  const std::string heading = std::to_string(failures.size()) + " failed:";
  printToError("umsctl: " + (hasColour ? painted(Paint::Bad, heading) : heading) + "\n" +
               table.text(errorColumns(), hasColour, "  "));
}

}  // namespace umsctl
