#include <signal.h>
#include <sys/stat.h>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

constexpr uint64_t kMebibyte = 1 << 20;

class Sync : public HostTest {
 protected:
  std::vector<std::string> syncing(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{"sync", "--internal", phone, "--card", card};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
};

TEST_F(Sync, PutsEachFileIntoTheFolderOfItsKindInTheOrderGivenAndSaysWhere) {
  Ended ended = umsctl(syncing({media("sunrise.jpg"), media("paper-boat.m4a"), media("harbour.mp4")}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"copied   " + phone + "/DCIM/Camera/sunrise.jpg",
                   "copied   " + phone + "/Music/paper-boat.m4a  (Paper Boat, Demo Ensemble)",
                   "copied   " + phone + "/DCIM/Camera/harbour.mp4", "3 copied (20.7 kB)"}));
  EXPECT_EQ(bytesOf(phone + "/DCIM/Camera/harbour.mp4"), bytesOf(media("harbour.mp4")));
  EXPECT_FALSE(exists(phone + "/DCIM/Camera/harbour.smi"));
  EXPECT_TRUE(treeOf(card).empty());
}

TEST_F(Sync, PutsWhatDoesNotFitIntoTheOtherVolumesOwnFolder) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, kMebibyte);
  std::string large = sandbox.patternFile("large.mp3", 2'000'000);
  std::string film = sandbox.patternFile("film.mp4", 3'000'000);
  Ended ended = umsctl(syncing({large, media("plain-hum.mp3"), film}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"copied   " + card + "/Music/large.mp3", "copied   " + phone + "/Music/plain-hum.mp3",
                   "copied   " + card + "/DCIM/Camera/film.mp4", "3 copied (5.0 MB)"}));
  EXPECT_EQ(bytesOf(card + "/Music/large.mp3"), bytesOf(large));
  EXPECT_EQ(bytesOf(card + "/DCIM/Camera/film.mp4"), bytesOf(film));
  EXPECT_EQ(treeOf(phone), (Lines{"DCIM/", "DCIM/Camera/", "Music/", "Music/plain-hum.mp3"}));
}

TEST_F(Sync, SaysWhereFilesWentAtATerminalToo) {
  Ended ended = umsctl(syncing({media("sunrise.jpg")}), {.atTerminal = true});
  EXPECT_NE(ended.output.find("\r\x1b[Kcopied   " + phone + "/DCIM/Camera/sunrise.jpg\r\n"),
            std::string::npos);
}

TEST_F(Sync, BeginsWithTheCardWhenToldTo) {
  EXPECT_EQ(umsctl(syncing({"--first", "1", media("sunrise.jpg")})).status, 0);
  EXPECT_TRUE(exists(card + "/DCIM/Camera/sunrise.jpg"));
  EXPECT_EQ(umsctl({"sync", "--card", card, media("plain-hum.mp3")}).status, 0);
  EXPECT_TRUE(exists(card + "/Music/plain-hum.mp3"));
  EXPECT_EQ(umsctl(syncing({"--first", "2", media("sunrise.jpg")})).status, 3);
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Sync, GoesOnWithFilesThatFitWhenAllVolumesAreTooFullForOne) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume internal(phone, kMebibyte), external(card, kMebibyte);
  std::string large = sandbox.patternFile("large.mp3", 2'000'000);
  Ended ended = umsctl(syncing({large, media("plain-hum.mp3")}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(),
            "umsctl: " + large + ": not enough room on the volume: 2.0 MB needed, 1.0 MB free\n");
  EXPECT_EQ(linesOf(ended.output).back(), "1 copied (8.3 kB), 1 failed");
  EXPECT_EQ(bytesOf(large).size(), 2'000'000u);
}

TEST_F(Sync, LeavesNoPartOnAnyVolumeWhenCopyingBreaksOff) {
  std::string large = sandbox.patternFile("large.mp3", 2'000'000);
  std::string kept = sandbox.file("card/Music/other.mp3", std::string(4096, 'x'));
  std::string command = "ulimit -f 1000; exec '" TEST_UMSCTL "' sync --internal '" + phone + "' --card '" +
                        card + "' '" + large + "'";
  Ended ended = umsctl({"-c", command}, {.program = "/bin/bash"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: " + large + ": copying failed: File too large\n");
  EXPECT_EQ(treeOf(phone), Lines{"Music/"});
  EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/other.mp3"}));
}

TEST_F(Sync, KeepsOrReplacesWhatIsThereAsThePolicySays) {
  std::string song = sandbox.file("song.mp3", "new");
  std::string there = sandbox.file("phone/Music/song.mp3", "old");
  Ended kept = umsctl(syncing({song}));
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(kept.error, "umsctl: " + song + ": already on the device, skipped (see --on-conflict)\n");
  EXPECT_EQ(linesOf(kept.output),
            (Lines{"skipped  " + there + "  (already there)", "0 copied (0 B), 1 skipped"}));
  EXPECT_EQ(bytesOf(there), "old");
  EXPECT_EQ(umsctl(syncing({"--on-conflict", "overwrite", song})).status, 0);
  EXPECT_EQ(bytesOf(there), "new");
  EXPECT_TRUE(treeOf(card).empty());
}

TEST_F(Sync, KeepsWhatIsOnTheOtherVolumeToo) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, kMebibyte);
  std::string large = sandbox.patternFile("large.mp3", 2'000'000);
  std::string there = sandbox.file("card/Music/large.mp3", "old");
  Ended kept = umsctl(syncing({"--on-conflict", "skip", large}));
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(linesOf(kept.output).front(), "skipped  " + there + "  (already there)");
  EXPECT_EQ(bytesOf(there), "old");
  EXPECT_EQ(umsctl(syncing({"--on-conflict", "overwrite", large})).status, 0);
  EXPECT_EQ(bytesOf(there), bytesOf(large));
}

TEST_F(Sync, DoesNotGiveUpAnOldFileForOneThatDoesNotFitEvenThen) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, kMebibyte);
  std::string large = sandbox.patternFile("large.mp3", 2'000'000);
  std::string there = sandbox.file("phone/Music/large.mp3", "old");
  Ended ended = umsctl({"sync", "--internal", phone, "--on-conflict", "overwrite", large});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(bytesOf(there), "old");
}

TEST_F(Sync, AsksOnceForAllFilesOfAllKindsAfterAll) {
  for (const char* name : {"phone/Music/a.mp3", "phone/DCIM/Camera/b.jpg", "phone/Music/c.mp3"})
    sandbox.file(name, "old");
  std::vector<std::string> files;
  for (const char* name : {"in/a.mp3", "in/b.jpg", "in/c.mp3"}) files.push_back(sandbox.file(name, "new"));
  RunningProgram program(syncing(files), {.atTerminal = true});
  program.waitForOutput("a.mp3 is already on the device. Replace it? (y/n/all/none/quit) ");
  program.type("all\n");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.output.find("b.jpg is already"), std::string::npos);
  EXPECT_EQ(bytesOf(phone + "/Music/c.mp3") + bytesOf(phone + "/DCIM/Camera/b.jpg"), "newnew");
}

TEST_F(Sync, NeverReplacesAFileByItself) {
  std::string itself = sandbox.file("phone/Music/song.mp3", "the only copy");
  Ended ended = umsctl(syncing({"--on-conflict", "overwrite", itself}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output).back(), "0 copied (0 B), 1 skipped");
  EXPECT_EQ(bytesOf(itself), "the only copy");
}

TEST_F(Sync, SaysWhatIsWrongWithEachFileInTheOrderGiven) {
  std::string fifo = sandbox.at("pipe.mp3");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  sandbox.file("phone/DCIM", "a file where the folder belongs");
  std::string odd = sandbox.file("\x1b[31m\xff.mp3", "la");
  Ended ended = umsctl(syncing({media("notes.txt"), fifo, media("sunrise.jpg"), "none.mp3", odd}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(
      linesOf(ended.causes()),
      (Lines{"umsctl: " + media("notes.txt") + ": by its name it is no music, image or video file",
             "umsctl: " + fifo + ": it is no ordinary file",
             "umsctl: " + media("sunrise.jpg") + ": its folder on the device cannot be made: Not a directory",
             "umsctl: none.mp3: No such file or directory"}));
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"copied   " + phone + "/Music/\\x1b[31m\\xff.mp3", "1 copied (2 B), 4 failed"}));
}

TEST_F(Sync, EndsWithThreeForAMissingVolume) {
  EXPECT_EQ(umsctl({"sync", "--internal", sandbox.at("none"), media("sunrise.jpg")}).status, 3);
}

TEST_F(Sync, EndsCleanlyInTheMiddleOfTheListWithCtrlC) {
  std::vector<std::string> files;
  for (int i = 0; i < 200; ++i) {
    std::string name = std::string(80, 'n') + std::to_string(i) + (i % 2 == 0 ? ".mp3" : ".jpg");
    files.push_back(sandbox.file("in/" + name, "la"));
  }
  RunningProgram program(syncing(files), {.smallOutputPipe = true});
  program.waitForOutput("\n");
  program.sendSignal(SIGINT);
  program.waitForError("umsctl: cancelling; once more to stop at once\n");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  auto lines = linesOf(ended.output);
  size_t copied = lines.size() - 1;
  EXPECT_LT(copied, files.size());
  EXPECT_TRUE(lines.back().starts_with("cancelled: " + std::to_string(copied) + " copied")) << lines.back();
  EXPECT_TRUE(lines.back().ends_with(std::to_string(200 - copied) + " not copied")) << lines.back();
}

TEST_F(Sync, LeavesNoHalfFileOnTheOtherVolumeWithCtrlC) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, kMebibyte);
  std::string film = hugeFile("film.mp4");
  if (film.empty()) GTEST_SKIP() << "not enough room for a copy that takes long enough";
  RunningProgram program(syncing({film}), {.atTerminal = true, .columns = kRoomy});
  program.waitForOutput("0/1  film.mp4");
  program.type("\x03");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  EXPECT_NE(ended.output.find("cancelled: 0 copied (0 B), 1 not copied\r\n"), std::string::npos);
  EXPECT_EQ(treeOf(card), (Lines{"DCIM/", "DCIM/Camera/"}));
}

}  // namespace
}  // namespace umsservice::testing
