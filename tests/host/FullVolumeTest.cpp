#include "HostTest.h"

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
  auto lines = linesOf(ended.error);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "umsctl: " + large + ": not enough room on the volume: 2.0 MB needed, 1.0 MB free");
  EXPECT_EQ(lines[1], "umsctl: " + media("plain-hum.mp3") + ": not tried, the volume is full");
  EXPECT_EQ(linesOf(ended.output).back(), "1 copied (1.0 kB), 2 failed");
  EXPECT_EQ(treeOf(phone), (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/sunrise.jpg", "Music/"}));
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
