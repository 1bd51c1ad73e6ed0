#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

class DirectTransfer : public HostTest {
 protected:
  std::vector<std::string> putting(const std::vector<std::string>& more) const { return line("put", more); }
  std::vector<std::string> getting(const std::vector<std::string>& more) const { return line("get", more); }
  std::vector<std::string> line(const std::string& command, const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{command, "--internal", phone, "--card", card};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  std::string mine = sandbox.file("computer/mine.dat", "mine");
};

using Put = DirectTransfer;
using Get = DirectTransfer;

TEST_F(Put, WritesAFileToAPathAndMakesTheFoldersAboveIt) {
  Ended ended = umsctl(putting({mine, "phone/Some/where/else.dat"}), {.folder = sandbox.path()});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output), (Lines{"copied   " + phone + "/Some/where/else.dat", "1 copied (4 B)"}));
  EXPECT_EQ(bytesOf(phone + "/Some/where/else.dat"), "mine");
}

TEST_F(Put, KeepsTheNameInAFolder) {
  EXPECT_EQ(umsctl(putting({mine, card})).status, 0);
  EXPECT_EQ(umsctl(putting({mine, card + "/new/"})).status, 0);
  EXPECT_EQ(treeOf(card), (Lines{"mine.dat", "new/", "new/mine.dat"}));
}

TEST_F(Put, KeepsOrReplacesWhatIsThereAsThePolicySays) {
  std::string there = sandbox.file("phone/there.dat", "old");
  Ended kept = umsctl(putting({mine, there}));
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(kept.error, "umsctl: " + mine + ": already on the device, skipped (see --on-conflict)\n");
  EXPECT_EQ(linesOf(kept.output),
            (Lines{"skipped  " + there + "  (already there)", "0 copied (0 B), 1 skipped"}));
  EXPECT_EQ(bytesOf(there), "old");
  RunningProgram program(putting({mine, there}), {.atTerminal = true});
  program.waitForOutput("mine.dat is already on the device. Replace it? (y/n/all/none/quit) ");
  program.type("y\n");
  EXPECT_EQ(program.wait().status, 0);
  EXPECT_EQ(bytesOf(there), "mine");
}

TEST_F(Put, NeverReplacesAFileByItselfNorAnythingButAFile) {
  std::string there = sandbox.file("phone/there.dat", "the only copy");
  Ended itself = umsctl(putting({"--on-conflict", "overwrite", there, there}));
  EXPECT_EQ(itself.status, 0);
  EXPECT_EQ(bytesOf(there), "the only copy");
  std::string fifo = phone + "/pipe";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  std::string link = phone + "/link";
  ASSERT_EQ(symlink(sandbox.at("nowhere").c_str(), link.c_str()), 0);
  sandbox.folder("phone/folder/mine.dat");
  for (const std::string& path : {fifo, link, phone + "/folder"}) {
    Ended ended = umsctl(putting({"--on-conflict", "overwrite", mine, path}));
    EXPECT_EQ(ended.status, 1) << path;
    EXPECT_NE(ended.causes().find(" of that name is in its place\n"), std::string::npos) << ended.error;
  }
  EXPECT_FALSE(exists(sandbox.at("nowhere")));
}

TEST_F(Put, RefusesPathsThatLeadElsewhere) {
  ASSERT_EQ(symlink(sandbox.at("computer").c_str(), (phone + "/way out").c_str()), 0);
  for (const std::string& path : {sandbox.at("x.dat"), phone + "/../x.dat", phone + "/way out/x.dat",
                                  phone + "/new/../../x.dat", phone + "/Music/.."}) {
    Ended ended = umsctl(putting({mine, path}));
    EXPECT_EQ(ended.status, 1) << path;
    EXPECT_EQ(ended.error,
              "umsctl: " + mine + ": " + path +
                  " is on none of the device's volumes (0x10000002); name a file below the folder "
                  "of a volume\n");
    EXPECT_EQ(ended.output, "0 copied (0 B), 1 failed\n");
  }
  EXPECT_EQ(treeOf(sandbox.path()),
            (Lines{"card/", "computer/", "computer/mine.dat", "phone/", "phone/way out/"}));
}

TEST_F(Put, SaysWhatIsWrongWithItsFile) {
  Ended ended = umsctl(putting({"none.dat", phone + "/x.dat"}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: none.dat: No such file or directory\n");
  EXPECT_EQ(linesOf(ended.output), Lines{"0 copied (0 B), 1 failed"});
  EXPECT_EQ(umsctl(putting({"/dev/zero", phone + "/x.dat"})).causes(),
            "umsctl: /dev/zero: it is no ordinary file\n");
  EXPECT_EQ(umsctl(putting({card, phone + "/x.dat"})).causes(), "umsctl: " + card + ": it is a folder\n");
  EXPECT_EQ(umsctl(putting({mine, phone + "/" + std::string(300, 'n')})).status, 1);
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Put, SaysWhyItsFolderCannotBeMade) {
  std::string file = sandbox.file("phone/file", "a file");
  Ended ended = umsctl(putting({mine, file + "/x.dat"}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: " + mine + ": its folder on the device cannot be made: File exists\n");
  EXPECT_EQ(bytesOf(file), "a file");
}

TEST_F(Put, SaysThatAVolumeIsReadOnly) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, 1 << 20);
  std::string there = sandbox.file("phone/there.dat", "old");
  ASSERT_EQ(mount("tmpfs", phone.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr), 0);
  for (const std::string& place : {there, phone + "/new.dat"}) {
    for (const char* option : {"--no-color", "-n"}) {
      Ended ended = umsctl(putting({option, "--on-conflict", "overwrite", mine, place}));
      EXPECT_EQ(ended.status, 1);
      EXPECT_EQ(ended.causes(), "umsctl: " + mine + ": the volume is read-only\n");
      EXPECT_NE(ended.error.find("take its write protection off"), std::string::npos) << ended.error;
    }
  }
  EXPECT_EQ(bytesOf(there), "old");
}

TEST_F(Put, WritesNothingThatDoesNotFit) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(phone, 1 << 20);
  std::string large = sandbox.patternFile("large.dat", 2'000'000);
  std::string there = sandbox.file("phone/there.dat", "old");
  Ended ended = umsctl(putting({"--on-conflict", "overwrite", large, there}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(),
            "umsctl: " + large + ": not enough room on the volume: 2.0 MB needed, 1.0 MB free\n");
  EXPECT_EQ(bytesOf(there), "old");
}

TEST_F(Put, LeavesNoHalfFileBehindWithCtrlC) {
  std::string large = hugeFile("large.dat");
  if (large.empty()) GTEST_SKIP() << "not enough room for a copy that takes long enough";
  RunningProgram program(putting({large, phone + "/large.dat"}), {.atTerminal = true, .columns = kRoomy});
  program.waitForOutput("0/1  large.dat");
  program.type("\x03");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  EXPECT_NE(ended.output.find("cancelled: 0 copied (0 B), 1 not copied\r\n"), std::string::npos);
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Get, ReadsAFileFromAPath) {
  std::string there = sandbox.file("card/odd \xff/\x1b.dat", "theirs");
  Ended ended = umsctl(getting({there, "computer/got.dat"}), {.folder = sandbox.path()});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output), (Lines{"copied   " + sandbox.at("computer/got.dat"), "1 copied (6 B)"}));
  EXPECT_EQ(bytesOf(sandbox.at("computer/got.dat")), "theirs");
  EXPECT_EQ(umsctl(getting({there, sandbox.at("computer")})).status, 0);
  EXPECT_EQ(bytesOf(sandbox.at("computer/\x1b.dat")), "theirs");
  EXPECT_EQ(bytesOf(there), "theirs");
}

TEST_F(Get, KeepsOrReplacesWhatIsThereAsThePolicySays) {
  std::string there = sandbox.file("phone/there.dat", "theirs");
  Ended kept = umsctl(getting({there, mine}));
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(kept.error, "umsctl: " + there + ": already there, skipped (see --on-conflict)\n");
  EXPECT_EQ(bytesOf(mine), "mine");
  EXPECT_EQ(umsctl(getting({"--on-conflict", "overwrite", there, mine})).status, 0);
  EXPECT_EQ(bytesOf(mine), "theirs");
}

TEST_F(Get, ReadsNothingFromElsewhere) {
  std::string link = phone + "/link.dat";
  ASSERT_EQ(symlink(mine.c_str(), link.c_str()), 0);
  for (const std::string& path : {mine, link}) {
    Ended ended = umsctl(getting({path, sandbox.at("got.dat")}));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.causes(), "umsctl: " + path + ": it is on none of the device's volumes\n");
  }
  EXPECT_FALSE(exists(sandbox.at("got.dat")));
}

TEST_F(Get, KeepsAnOldFileWhenTheComputerIsFull) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume computer(sandbox.folder("full"), 1 << 20);
  std::string large = sandbox.patternFile("phone/large.dat", 2'000'000);
  std::string old = sandbox.file("full/old.dat", "old");
  Ended ended = umsctl(getting({"--on-conflict", "overwrite", large, old}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(),
            "umsctl: " + large + ": not enough room on the volume: 2.0 MB needed, 1.0 MB free\n");
  EXPECT_EQ(bytesOf(old), "old");
}

TEST_F(Get, LeavesNoHalfFileBehindWhenCopyingBreaksOff) {
  std::string large = sandbox.patternFile("phone/large.dat", 2'000'000);
  std::string command = "ulimit -f 1000; exec '" TEST_UMSCTL "' get --internal '" + phone + "' '" + large +
                        "' '" + sandbox.at("got.dat") + "'";
  Ended ended = umsctl({"-c", command}, {.program = "/bin/bash"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: " + large + ": copying failed\n");
  EXPECT_FALSE(exists(sandbox.at("got.dat")));
}

TEST_F(Get, SaysOnlyWhyNothingCanBeWrittenToAFolder) {
  std::string there = sandbox.file("phone/there.dat", "theirs"), closed = sandbox.folder("closed");
  chmod(closed.c_str(), 0);
  Ended ended = umsctl(getting({there, closed + "/got.dat"}), {.withoutRootPowers = true});
  chmod(closed.c_str(), 0700);
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()).size(), 1u) << ended.error;
  EXPECT_TRUE(ended.causes().starts_with("umsctl: " + there + ": ")) << ended.error;
  EXPECT_NE(ended.causes().find("Permission denied"), std::string::npos) << ended.error;
}

TEST_F(Get, TellsItsPlaceWithoutDots) {
  std::string there = sandbox.file("phone/there.dat", "theirs");
  sandbox.folder("phone/Other");
  ASSERT_EQ(symlink("phone/Other", sandbox.at("link").c_str()), 0);
  Ended ended = umsctl({"get", "--internal", "./phone/.", "link/../there.dat", "phone/../got.dat"},
                       {.folder = sandbox.path()});
  EXPECT_EQ(ended.status, 0) << ended.error;
  EXPECT_EQ(linesOf(ended.output)[0], "copied   " + sandbox.at("got.dat"));
  EXPECT_NE(
      umsctl({"df", "--internal", "./phone/."}, {.folder = sandbox.path()}).output.find("  " + phone + "\n"),
      std::string::npos);
}

TEST_F(Get, ShowsABarAtATerminal) {
  std::string large = sandbox.file("phone/film.mp4", "");
  ASSERT_EQ(truncate(large.c_str(), 20'000'000), 0);
  RunningProgram program(getting({large, sandbox.at("got.mp4")}), {.atTerminal = true, .columns = kRoomy});
  program.waitForOutput("of 20.0 MB");
  program.waitForOutput("0/1  film.mp4");
  EXPECT_EQ(program.wait().status, 0);
}

TEST_F(Get, EndsWithTwoOrThreeForALineThatCannotBeServed) {
  EXPECT_EQ(umsctl({"get", mine, mine}).status, 2);
  EXPECT_EQ(umsctl(getting({mine})).status, 2);
  EXPECT_EQ(umsctl({"get", "--card", sandbox.at("none"), mine, mine}).status, 3);
  EXPECT_EQ(umsctl({"put", "--card", sandbox.at("none"), mine, mine}).status, 3);
}

}  // namespace
}  // namespace umsservice::testing
