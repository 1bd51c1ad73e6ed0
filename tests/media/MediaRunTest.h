/// Whole runs of a request on the test's own thread, and what a host hears of them as lines of text.
#pragma once

#include "LogExpectations.h"
#include "TypedEntries.h"

namespace umsservice::testing {

inline constexpr auto kToDevice = "-[UMSService doCopyMediaContentsForAnyMediaType:]";
inline constexpr auto kToMac = "-[UMSService doCopyMediaContents:]";

/// Numbers with their kind ("7u" is unsigned 32-bit, "7i" signed, "7U" and "7I" 64-bit), texts in quotes.
inline std::string described(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Int32:
      return value.description() + "i";
    case Value::Kind::UInt32:
      return value.description() + "u";
    case Value::Kind::Int64:
      return value.description() + "I";
    case Value::Kind::UInt64:
      return value.description() + "U";
    case Value::Kind::String:
      return "\"" + value.description() + "\"";
    default:
      return value.description();
  }
}

/// "NAME: key=value, ..." with the keys in alphabetical order.
inline std::string described(const Notification& notification) {
  std::vector<std::string> keys = notification.userInfo.keys();
  std::sort(keys.begin(), keys.end());
  std::string text = notification.name + ":";
  for (const std::string& name : keys) text += " " + name + "=" + described(notification.userInfo.get(name));
  return text;
}

class MediaRunTest : public DeviceTest {
 protected:
  static constexpr uint32_t kRequest = 7;

  _serviceinfo request(uint32_t command, const Array& contents) {
    _serviceinfo made;
    made.serviceID = kRequest;
    made.command = command;
    made.contents = contents;
    made.mediaType = kMediaMusic;
    return made;
  }
  _serviceinfo toDevice(const Array& contents, uint32_t storageIndex = 0) {
    _serviceinfo made = request(kCommandCopyToDevice, contents);
    made.storageIndex = storageIndex;
    return made;
  }
  _serviceinfo toMac(const Array& contents) {
    _serviceinfo made = request(kCommandCopyFile, contents);
    made.destPath = sandbox.at("mac");
    return made;
  }
  bool run(const _serviceinfo& made) { return service->doUmsFileService(&made); }

  /// A source file with its content dictionary; the bytes are the name.
  Dictionary source(const std::string& name) { return content(sandbox.file("in/" + name, name), name); }
  Dictionary source(const std::string& name, const std::string& bytes) {
    return content(sandbox.file("in/" + name, bytes), name);
  }

  /// Every notification as a line.
  Lines told() const {
    Lines lines;
    for (const Notification& notification : notifications.all()) {
      lines.push_back(plain(surroundings, described(notification)));
    }
    return lines;
  }

  /// Progress as "status current/max fail percent%".
  Lines progress() const {
    Lines lines;
    for (const Notification& posted : notifications.named(kTransferProgressNotification)) {
      auto field = [&](const char* name) { return posted.userInfo.get(name).description(); };
      lines.push_back(field(key::kTransferStatus) + " " + field(key::kCurrent) + "/" + field(key::kMax) +
                      " " + field(key::kFail) + " " + field(key::kCurrentProgress) + "%");
    }
    return lines;
  }

  std::vector<uint32_t> results() const {
    return numbers(notifications.named(kMediaResultNotification), key::kResultStatus);
  }

  /// What the item observer heard: "index kind number bytes: path > destination (reason)".
  Lines ends() const {
    static const char* const kinds[] = {"done", "skipped", "failed", "not reached"};
    Lines lines;
    for (const ItemOutcome& outcome : items.outcomes()) {
      EXPECT_EQ(outcome.serviceID, kRequest);
      std::string line = std::to_string(outcome.index) + " " + kinds[static_cast<size_t>(outcome.kind)];
      if (outcome.errorNumber != 0) line += stringWithHex(outcome.errorNumber);
      line += " " + std::to_string(outcome.bytes) + ": " + outcome.path.value_or("nil") + " > " +
              outcome.destPath.value_or("nil");
      if (!outcome.reason.empty()) line += " (" + outcome.reason + ")";
      lines.push_back(plain(surroundings, line));
    }
    return lines;
  }

  /// Every item exactly once, in order.
  void expectEachItemOnce(size_t count) const {
    auto outcomes = items.outcomes();
    ASSERT_EQ(outcomes.size(), count);
    for (size_t i = 0; i < count; ++i) EXPECT_EQ(outcomes[i].index, i);
  }

 private:
  static std::string stringWithHex(uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, " %08x", number);
    return text;
  }
};

}  // namespace umsservice::testing
