#include "Colour.h"

#include <cstdlib>

#include "Terminal.h"

namespace umsctl {
namespace {

bool isForbidden = false;

bool isWanted() {
  const char* noColour = std::getenv("NO_COLOR");
  return !isForbidden && !(noColour && *noColour != '\0');
}

const char* sequenceOf(Paint paint) {
  switch (paint) {
    case Paint::Strong:
      return "\x1b[1m";
    case Paint::Good:
      return "\x1b[32m";
    case Paint::Warning:
      return "\x1b[33m";
    case Paint::Bad:
      return "\x1b[31m";
    default:
      return "";
  }
}

}  // namespace

void forbidColour() {
  isForbidden = true;
}

bool outputHasColour() {
  return isWanted() && outputIsTerminal() && terminalUnderstandsSequences();
}

bool errorHasColour() {
  return isWanted() && canRedrawError();
}

std::string painted(Paint paint, const std::string& text) {
  if (paint == Paint::None || text.empty()) return text;
  return sequenceOf(paint) + text + "\x1b[0m";
}

}  // namespace umsctl
