#include <regex>

#include "CoreRoom.h"

namespace umsservice::testing {
namespace {

constexpr auto kAnyMethod = "-[UMSService doUmsFileService:]";

/// Counts how often it is asked.
class CountingLevelSource final : public DebugLevelSource {
 public:
  int32_t debugLevel() override {
    ++asked;
    return 6;
  }
  int asked = 0;
};

/// A dictionary that knows whether somebody put it into words.
class WatchedStorage final : public DictionaryStorage {
 public:
  Value get(std::string_view) const override { return Value(); }
  void set(std::string_view, Value) override {}
  std::vector<std::string> keys() const override {
    ++looks;
    return {};
  }
  mutable int looks = 0;
};

class Log : public ::testing::Test {
 protected:
  TestSurroundings surroundings;
  LogRecorder& lines = *surroundings.log;
  std::string plist = surroundings.sandbox.at("DEBUG.plist");

  /// A log whose level stands in a property list of the sandbox.
  umsservice::Log logWithPropertyList() {
    surroundings.environment.debugLevelSource = plistDebugLevelSource(posixFileSystem(), plist);
    return umsservice::Log(surroundings.environment);
  }
  void writePropertyList(const std::string& content) {
    surroundings.sandbox.file("DEBUG.plist",
                              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                              "<plist version=\"1.0\"><dict>" +
                                  content + "</dict></plist>\n");
  }
  void setLevel(const std::string& value) { writePropertyList("<key>DEBUG_LEVEL</key>" + value); }
};

TEST_F(Log, WritesFileMethodLineAndMessage) {
  umsservice::Log log(surroundings.environment);
  log.write(6, kAnyMethod, "Copy File : %@  to  %@", "/in/a.mp3", "/out/a.mp3");
  ASSERT_EQ(lines.lines().size(), 1u);
  std::regex form(R"(\[LogTest\.cpp:-\[UMSService doUmsFileService:\]-\([0-9]+\)\] )"
                  R"(Copy File : /in/a\.mp3  to  /out/a\.mp3)");
  EXPECT_TRUE(std::regex_match(lines.lines()[0], form)) << lines.lines()[0];
}

TEST_F(Log, WritesAMessageWhenTheDebugLevelReachesItsOwn) {
  umsservice::Log log(surroundings.environment);
  for (int level : {1, 3, 5, 6, 7}) {
    for (int debugLevel = -1; debugLevel <= 9; ++debugLevel) {
      lines.clear();
      surroundings.level->level = debugLevel;
      log.write(level, kAnyMethod, "ENTER");
      EXPECT_EQ(lines.has("ENTER"), debugLevel >= level) << level << " at " << debugLevel;
    }
  }
}

TEST_F(Log, WritesAlwaysOnMessagesAtEveryLevel) {
  umsservice::Log log(surroundings.environment);
  surroundings.level->level = -1;
  log.always(kAnyMethod, "Cancel Service ID Value is nil.");
  EXPECT_EQ(lines.messages(), (Lines{std::string(kAnyMethod) + " Cancel Service ID Value is nil."}));
}

TEST_F(Log, AsksForTheLevelAtEveryGatedStatementAndKeepsNoAnswer) {
  auto source = std::make_shared<CountingLevelSource>();
  surroundings.environment.debugLevelSource = source;
  umsservice::Log log(surroundings.environment);
  log.write(6, kAnyMethod, "ENTER");
  log.write(7, kAnyMethod, "ENTER");
  log.write(1, kAnyMethod, "EXIT");
  EXPECT_EQ(source->asked, 3);
  log.always(kAnyMethod, "Cancel Service ID Value is nil.");
  EXPECT_EQ(source->asked, 3);
}

TEST_F(Log, DoesNotFormatAMessageThatItDoesNotWrite) {
  umsservice::Log log(surroundings.environment);
  auto storage = std::make_shared<WatchedStorage>();
  Value watched{Dictionary(storage)};
  surroundings.level->level = 2;
  log.write(3, kAnyMethod, "Entry = %@", watched);
  EXPECT_EQ(storage->looks, 0);
  surroundings.level->level = 3;
  log.write(3, kAnyMethod, "Entry = %@", watched);
  EXPECT_EQ(storage->looks, 1);
}

TEST_F(Log, WritesNilAsTheHostDoes) {
  umsservice::Log log(surroundings.environment);
  log.write(3, kAnyMethod, "Input parameters is invalid. diskName = %@", MaybeString());
  EXPECT_TRUE(lines.has("Input parameters is invalid. diskName = (null)"));
}

TEST_F(Log, WithoutAPropertyListWritesOnlyTheAlwaysOnMessages) {
  umsservice::Log log = logWithPropertyList();
  for (int level : {1, 3, 5, 6, 7}) log.write(level, kAnyMethod, "ENTER");
  log.always(kAnyMethod, "Cancel Service ID Value is nil.");
  EXPECT_EQ(lines.messages(), (Lines{std::string(kAnyMethod) + " Cancel Service ID Value is nil."}));
}

TEST_F(Log, ReadsTheLevelOfThePropertyListAsANumber) {
  umsservice::Log log = logWithPropertyList();
  const std::pair<const char*, int> kValues[] = {
      {"<integer>1</integer>", 1}, {"<integer>6</integer>", 6},   {"<string>6</string>", 6},
      {"<integer>7</integer>", 7}, {"<integer>12</integer>", 12}, {"<string>six</string>", 0},
      {"<integer>0</integer>", 0}, {"<integer>-3</integer>", -3}, {"<array/>", 0},
  };
  for (const auto& [value, debugLevel] : kValues) {
    setLevel(value);
    for (int level : {1, 3, 5, 6, 7}) {
      lines.clear();
      log.write(level, kAnyMethod, "ENTER");
      EXPECT_EQ(lines.has("ENTER"), debugLevel >= level) << value << " and a message of level " << level;
    }
  }
}

TEST_F(Log, TakesAPropertyListWithoutTheKeyOrWithoutSenseForLevelZero) {
  umsservice::Log log = logWithPropertyList();
  writePropertyList("<key>OTHER</key><integer>7</integer>");
  log.write(1, kAnyMethod, "ENTER");
  surroundings.sandbox.file("DEBUG.plist", "this is no property list");
  log.write(1, kAnyMethod, "ENTER");
  surroundings.sandbox.file("DEBUG.plist", "");
  log.write(1, kAnyMethod, "ENTER");
  EXPECT_EQ(lines.lines(), Lines());
}

TEST_F(Log, ObeysAChangedPropertyListFromTheNextStatementOn) {
  umsservice::Log log = logWithPropertyList();
  setLevel("<integer>1</integer>");
  log.write(6, kAnyMethod, "first");
  setLevel("<integer>6</integer>");
  log.write(6, kAnyMethod, "second");
  setLevel("<integer>5</integer>");
  log.write(6, kAnyMethod, "third");
  EXPECT_EQ(lines.messages(), (Lines{std::string(kAnyMethod) + " second"}));
}

}  // namespace
}  // namespace umsservice::testing
