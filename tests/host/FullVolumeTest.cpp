#include <map>

#include "HostTest.h"
#include "JsonLines.h"

namespace umsservice::testing {
namespace {

using FullVolume = HostTest;
using Lines = std::vector<std::string>;

constexpr uint64_t kMebi = 1 << 20;

TEST_F(FullVolume, EndsTheRunAndSaysWhatDidNotFit) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, kMebi);
  std::string large = sandbox.patternFile("large.mp3", 2'000'000);
  Ended ended = umsctl(pushing({media("sunrise.jpg"), large, media("plain-hum.mp3")}));
  EXPECT_EQ(ended.status, 1);
  auto lines = linesOf(ended.causes());
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "umsctl: " + large + ": not enough room on the volume: 2.0 MB needed, 1.0 MB free");
  EXPECT_EQ(lines[1], "umsctl: " + media("plain-hum.mp3") + ": not tried, the volume is full");
  EXPECT_EQ(linesOf(ended.output).back(), "1 copied (1.0 kB), 1 failed, 1 not copied");
  EXPECT_EQ(treeOf(phone), (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/sunrise.jpg", "Music/"}));
}

TEST_F(FullVolume, CountsEachItemExactlyOnce) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, kMebi);
  const Lines line = pushing({"--on-conflict", "skip", media("sunrise.jpg"), "missing.mp3",
                              sandbox.patternFile("large.mp3", 2'000'000), media("plain-hum.mp3"),
                              media("morning-tone.mp3")});
  Lines withJson = line;
  withJson.emplace_back("--json");
  Ended ended = umsctl(withJson);
  EXPECT_EQ(ended.status, 1);
  std::map<std::string, size_t> outcomes;
  for (const Json& item : objectsOf(ended, "item")) ++outcomes[item["outcome"]];
  const Json result = objectsOf(ended, "result").at(0);
  for (const auto& [outcome, count] :
       std::map<std::string, size_t>{{"done", 1}, {"failed", 2}, {"not_reached", 2}}) {
    EXPECT_EQ(outcomes[outcome], count);
    EXPECT_EQ(result[outcome], count);
  }
  EXPECT_EQ(result["skipped"], 0);
  Ended shown = umsctl(line, {.atTerminal = true, .columns = 200, .environment = {{"NO_COLOR", "1"}}});
  EXPECT_NE(shown.output.find("umsctl: 2 failed, 2 not tried:\r\n"), std::string::npos) << shown.output;
  EXPECT_NE(shown.output.find("1 skipped, 2 failed, 2 not copied\r\n"), std::string::npos) << shown.output;
}

TEST_F(FullVolume, TakesAFileThatFillsItToTheLastByte) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, kMebi);
  sandbox.folder("phone/Music");
  uint64_t free = volume.freeBytes();
  std::string song = sandbox.patternFile("song.mp3", free);
  EXPECT_EQ(umsctl(pushing({song})).status, 0);
  EXPECT_EQ(bytesOf(phone + "/Music/song.mp3"), bytesOf(song));
}

TEST_F(FullVolume, TellsOfSubtitlesThatFoundNoRoom) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, kMebi);
  sandbox.folder("phone/DCIM/Camera");
  std::string film = sandbox.patternFile("film.mp4", volume.freeBytes());
  std::string subtitles = sandbox.file("film.smi", "words");
  Ended ended = umsctl(pushing({film}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "umsctl: " + subtitles + ": these subtitles could not be copied\n");
  EXPECT_EQ(linesOf(ended.output).back(), "1 copied (1.0 MB)");
}

}  // namespace
}  // namespace umsservice::testing
