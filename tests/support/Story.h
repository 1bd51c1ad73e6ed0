/// A whole run as a host saw it: every notification, and every outcome of an item, as one short line each.
#pragma once

#include "LogExpectations.h"
#include "TypedEntries.h"

namespace umsservice::testing {

inline std::string hexadecimal(uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08x", number);
  return text;
}

/// "progress CURRENT/MAX fail FAIL status STATUS PERCENT% NAME", "result NUMBER volume INDEX PATH" or
/// "request STATUS".
inline std::string storyLine(const TestSurroundings& surroundings, const Notification& notification) {
  const Dictionary& info = notification.userInfo;
  auto number = [&](const char* name) { return std::to_string(info.get(name).unsignedIntValue()); };
  if (notification.name == kTransferProgressNotification) {
    return "progress " + number(key::kCurrent) + "/" + number(key::kMax) + " fail " + number(key::kFail) +
           " status " + number(key::kTransferStatus) + " " + number(key::kCurrentProgress) + "% " +
           info.string(key::kFileName).value_or("(none)");
  }
  if (notification.name == kMediaResultNotification) {
    return "result " + hexadecimal(info.get(key::kResultStatus).unsignedIntValue()) + " volume " +
           number(key::kVolumeIndex) + " " +
           plain(surroundings, info.string(key::kFilePath).value_or("(none)"));
  }
  return "request " + hexadecimal(info.get(key::kStatus).unsignedIntValue());
}

inline Lines story(const TestSurroundings& surroundings) {
  Lines lines;
  for (const Notification& posted : surroundings.notifications.all())
    lines.push_back(storyLine(surroundings, posted));
  return lines;
}

/// "INDEX KIND NUMBER BYTES bytes to PATH" for each item, in the order in which they were counted.
inline Lines outcomesOf(const TestSurroundings& surroundings) {
  constexpr const char* kKinds[] = {"done", "skipped", "failed", "not reached"};
  Lines lines;
  for (const ItemOutcome& outcome : surroundings.items->outcomes()) {
    lines.push_back(std::to_string(outcome.index) + " " + kKinds[static_cast<size_t>(outcome.kind)] + " " +
                    hexadecimal(outcome.errorNumber) + " " + std::to_string(outcome.bytes) + " bytes to " +
                    plain(surroundings, outcome.destPath.value_or("(none)")));
  }
  return lines;
}

}  // namespace umsservice::testing
