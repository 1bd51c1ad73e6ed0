#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

class Send : public HostTest {
 protected:
  std::vector<std::string> sending(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{"send", "--from-internal", phone, "--from-card",
                                       card,   "--internal",      player};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  std::string player = sandbox.folder("player");
  std::string song = sandbox.file("phone/Music/song.mp3", "lala");
  std::string film = sandbox.file("card/DCIM/film.mp4", "moving");
};

TEST_F(Send, CopiesFromOneDeviceToTheFolderOfTheKindOnTheOther) {
  sandbox.file("card/DCIM/film.smi", "stays behind");
  std::string boat = sandbox.file("phone/boat.m4a", bytesOf(media("paper-boat.m4a")));
  Ended ended = umsctl(sending({film, boat, song}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"copied   " + player + "/DCIM/Camera/film.mp4",
                   "copied   " + player + "/Music/boat.m4a  (Paper Boat, Demo Ensemble)",
                   "copied   " + player + "/Music/song.mp3", "3 copied (7.4 kB)"}));
  EXPECT_EQ(treeOf(player), (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/film.mp4", "Music/",
                                   "Music/boat.m4a", "Music/song.mp3"}));
  EXPECT_EQ(bytesOf(player + "/Music/boat.m4a"), bytesOf(boat));
  EXPECT_EQ(bytesOf(song) + bytesOf(film), "lalamoving");
}

TEST_F(Send, GoesToTheCardWhenToldTo) {
  std::string other = sandbox.folder("player card");
  EXPECT_EQ(umsctl(sending({"--card", other, "--to", "1", song})).status, 0);
  EXPECT_EQ(treeOf(other), (Lines{"Music/", "Music/song.mp3"}));
  EXPECT_EQ(umsctl(sending({"--to", "1", song})).status, 3);
  EXPECT_TRUE(treeOf(player).empty());
}

TEST_F(Send, KeepsOrReplacesWhatIsThereAsThePolicySays) {
  std::string there = sandbox.file("player/Music/song.mp3", "old");
  Ended kept = umsctl(sending({song}));
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(kept.error, "umsctl: " + song + ": already on the device, skipped (see --on-conflict)\n");
  EXPECT_EQ(linesOf(kept.output),
            (Lines{"skipped  " + there + "  (already there)", "0 copied (0 B), 1 skipped"}));
  EXPECT_EQ(bytesOf(there), "old");
  EXPECT_EQ(umsctl(sending({"--on-conflict", "skip", song})).error, "");
  EXPECT_EQ(bytesOf(there), "old");
  Ended replaced = umsctl(sending({"--on-conflict", "overwrite", song}));
  EXPECT_EQ(replaced.status, 0);
  EXPECT_EQ(linesOf(replaced.output).back(), "1 copied (4 B)");
  EXPECT_EQ(bytesOf(there), "lala");
}

TEST_F(Send, AsksAboutTwoFilesOfOneNameToo) {
  std::string other = sandbox.file("card/song.mp3", "another");
  Ended ended = umsctl(sending({song, other}));
  EXPECT_EQ(ended.error, "umsctl: " + other + ": already on the device, skipped (see --on-conflict)\n");
  EXPECT_EQ(bytesOf(player + "/Music/song.mp3"), "lala");
}

TEST_F(Send, NeverReplacesAFileByItselfNorAnythingButAFile) {
  Ended itself =
      umsctl({"send", "--from-internal", phone, "--internal", phone, "--on-conflict", "overwrite", song});
  EXPECT_EQ(itself.status, 0);
  EXPECT_EQ(linesOf(itself.output).back(), "0 copied (0 B), 1 skipped");
  EXPECT_EQ(bytesOf(song), "lala");
  sandbox.folder("player/Music/song.mp3/inner");
  sandbox.folder("player/DCIM/Camera");
  ASSERT_EQ(symlink(sandbox.at("nowhere").c_str(), (player + "/DCIM/Camera/film.mp4").c_str()), 0);
  Ended ended = umsctl(sending({"--on-conflict", "overwrite", song, film}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()),
            (Lines{"umsctl: " + song + ": a folder of that name is in its place",
                   "umsctl: " + film + ": no ordinary file of that name is in its place"}));
  EXPECT_TRUE(exists(player + "/Music/song.mp3/inner"));
  EXPECT_FALSE(exists(sandbox.at("nowhere")));
}

TEST_F(Send, EndsTheListOfAKindWhenTheOtherDeviceIsFull) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(player, 1 << 20);
  std::string large = sandbox.patternFile("phone/large.mp3", 2'000'000);
  Ended ended = umsctl(sending({large, song, film}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()),
            (Lines{"umsctl: " + large + ": not enough room on the volume: 2.0 MB needed, 1.0 MB free",
                   "umsctl: " + song + ": not tried, the volume is full"}));
  EXPECT_EQ(treeOf(player), (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/film.mp4"}));
}

TEST_F(Send, SaysWhatIsWrongWithEachFile) {
  std::string secret = sandbox.file("computer/secret.mp3", "hush");
  std::string link = phone + "/link.mp3";
  ASSERT_EQ(symlink(secret.c_str(), link.c_str()), 0);
  std::string note = sandbox.file("phone/note.txt", "x");
  sandbox.file("player/DCIM", "a file where the folder belongs");
  std::string odd = sandbox.file("card/\x1b[31m\xff.mp3", "la");
  Ended ended = umsctl(sending({secret, link, note, film, phone + "/none.mp3", odd}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()),
            (Lines{"umsctl: " + secret + ": it is on none of the device's volumes",
                   "umsctl: " + link + ": it is on none of the device's volumes",
                   "umsctl: " + note + ": by its name it is no music, image or video file",
                   "umsctl: " + film + ": its folder on the device cannot be made: Not a directory",
                   "umsctl: " + phone + "/none.mp3: No such file or directory"}));
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"copied   " + player + "/Music/\\x1b[31m\\xff.mp3", "1 copied (2 B), 5 failed"}));
}

TEST_F(Send, LeavesNoHalfFileBehindWhenCopyingBreaksOff) {
  std::string large = sandbox.patternFile("phone/large.mp3", 2'000'000);
  std::string command = "ulimit -f 1000; exec '" TEST_UMSCTL "' send --from-internal '" + phone +
                        "' --internal '" + player + "' '" + large + "'";
  Ended ended = umsctl({"-c", command}, {.program = "/bin/bash"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: " + large + ": copying failed\n");
  EXPECT_EQ(treeOf(player), Lines{"Music/"});
  EXPECT_EQ(bytesOf(large).size(), 2'000'000u);
}

TEST_F(Send, NeedsTwoDevices) {
  EXPECT_EQ(umsctl({"send", "--internal", player, song}).status, 2);
  EXPECT_EQ(umsctl({"send", "--from-internal", phone, song}).status, 2);
  EXPECT_EQ(umsctl({"send", "--from-internal", phone, "--internal", sandbox.at("none"), song}).status, 3);
  EXPECT_EQ(umsctl({"send", "--from-card", sandbox.at("none"), "--internal", player, song}).status, 3);
}

TEST_F(Send, EndsCleanlyInTheMiddleOfTheListWithCtrlC) {
  std::vector<std::string> files;
  for (int i = 0; i < 200; ++i)
    files.push_back(sandbox.file("phone/" + std::string(80, 'n') + std::to_string(i) + ".mp3", "la"));
  RunningProgram program(sending(files), {.smallOutputPipe = true});
  program.waitForOutput("\n");
  program.sendSignal(SIGINT);
  program.waitForError("umsctl: cancelling");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  EXPECT_EQ(treeOf(player).size(), linesOf(ended.output).size());  // files and their folder
}

TEST_F(Send, LeavesNoHalfFileBehindWithCtrlC) {
  std::string huge = hugeFile("phone/film.mp4");
  if (huge.empty()) GTEST_SKIP() << "not enough room for a copy that takes long enough";
  RunningProgram program(sending({huge}), {.atTerminal = true, .columns = kRoomy});
  program.waitForOutput("0/1  film.mp4");
  program.type("\x03");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  EXPECT_EQ(treeOf(player), (Lines{"DCIM/", "DCIM/Camera/"}));
  EXPECT_TRUE(exists(huge));
}

}  // namespace
}  // namespace umsservice::testing
