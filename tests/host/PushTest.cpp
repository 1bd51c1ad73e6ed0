#include <sys/stat.h>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Push = HostTest;
using Lines = std::vector<std::string>;

TEST_F(Push, PutsMixedMediaIntoTheFolderOfItsKindAndTakesSubtitlesAlong) {
  Ended ended =
      umsctl(pushing({media("morning-tone.mp3"), media("evening-tone.flac"), media("paper-boat.m4a"),
                      media("sunrise.jpg"), media("lighthouse.png"), media("harbour.mp4")}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(treeOf(phone),
            (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/harbour.mp4", "DCIM/Camera/harbour.smi",
                   "DCIM/Camera/lighthouse.png", "DCIM/Camera/sunrise.jpg", "Music/",
                   "Music/evening-tone.flac", "Music/morning-tone.mp3", "Music/paper-boat.m4a"}));
  EXPECT_EQ(bytesOf(phone + "/DCIM/Camera/harbour.mp4"), bytesOf(media("harbour.mp4")));
  EXPECT_EQ(bytesOf(phone + "/DCIM/Camera/harbour.smi"), bytesOf(media("harbour.smi")));
  EXPECT_EQ(bytesOf(phone + "/Music/evening-tone.flac"), bytesOf(media("evening-tone.flac")));
}

TEST_F(Push, ListsFinishedFilesWithTheirTagsInTheOrderGivenWhenPiped) {
  Ended ended = umsctl(pushing({media("paper-boat.m4a"), media("sunrise.jpg"), media("evening-tone.flac")}));
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"copied   " + phone + "/Music/paper-boat.m4a  (Paper Boat, Demo Ensemble)",
                   "copied   " + phone + "/DCIM/Camera/sunrise.jpg",
                   "copied   " + phone + "/Music/evening-tone.flac  (Abendtöne am Fluß, Übungsensemble 音)",
                   "3 copied (21.8 kB)"}));
}

TEST_F(Push, CopiesToTheCardWhenToldTo) {
  Ended ended = umsctl(pushing({"--card", card, "--to", "1", media("sunrise.jpg")}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(treeOf(card), (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/sunrise.jpg"}));
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Push, TakesACardAloneAsTheFirstVolume) {
  Ended ended = umsctl({"push", "--card", card, media("plain-hum.mp3")});
  EXPECT_EQ(ended.status, 0);
  EXPECT_TRUE(exists(card + "/Music/plain-hum.mp3"));
}

TEST_F(Push, FindsRelativeFilesAndVolumesFromTheWorkingFolder) {
  sandbox.file("computer/tree.mp3", "la");  // like a command, which it is not
  Ended ended = umsctl({"push", "--internal", "../phone/", "tree.mp3", "./tree.mp3"},
                       {.folder = sandbox.at("computer")});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output).front(), "copied   " + phone + "/Music/tree.mp3");
  EXPECT_EQ(bytesOf(phone + "/Music/tree.mp3"), "la");
}

TEST_F(Push, NamesAMissingFileWithItsCauseAndCopiesTheOthers) {
  Ended ended = umsctl(pushing({"no/such.mp3", media("sunrise.jpg"), "nothing", ""}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()),
            (Lines{"umsctl: no/such.mp3: No such file or directory",
                   "umsctl: nothing: No such file or directory", "umsctl: '': No such file or directory"}));
  EXPECT_EQ(linesOf(ended.output).back(), "1 copied (1.0 kB), 3 failed");
  EXPECT_TRUE(exists(phone + "/DCIM/Camera/sunrise.jpg"));
}

TEST_F(Push, LeavesNothingBehindOfAFileThatMayNotBeRead) {
  std::string secret = sandbox.file("secret.mp3", "hush");
  chmod(secret.c_str(), 0);
  Ended ended = umsctl(pushing({secret, media("sunrise.jpg")}), {.withoutRootPowers = true});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: " + secret + ": Permission denied\n");
  EXPECT_EQ(treeOf(phone), (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/sunrise.jpg"}));
}

TEST_F(Push, SaysWhatIsWrongWithThingsThatAreNoMediaFiles) {
  std::string folder = sandbox.folder("album");
  std::string folderLikeASong = sandbox.folder("album.mp3");
  std::string fifo = sandbox.at("pipe.mp3");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  Ended ended = umsctl(pushing({media("notes.txt"), folder, folderLikeASong, fifo}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(
      linesOf(ended.causes()),
      (Lines{"umsctl: " + media("notes.txt") + ": by its name it is no music, image or video file",
             "umsctl: " + folder + ": it is a folder", "umsctl: " + folderLikeASong + ": it is a folder",
             "umsctl: " + fifo + ": it is no ordinary file"}));
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Push, KeepsAFileOfTheDeviceThatNothingReadableWouldReplace) {
  std::string there = sandbox.file("phone/Music/song.mp3", "the only copy");
  for (const std::string policy : {"overwrite", "skip"}) {
    Ended ended = umsctl(pushing({"--on-conflict", policy, sandbox.at("song.mp3")}));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.causes(), "umsctl: " + sandbox.at("song.mp3") + ": No such file or directory\n");
    EXPECT_EQ(bytesOf(there), "the only copy");
  }
}

TEST_F(Push, SaysWhyAFolderOfTheDeviceCannotBeMade) {
  sandbox.file("phone/Music", "a file where the folder belongs");
  Ended ended = umsctl(pushing({media("plain-hum.mp3")}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(),
            "umsctl: " + media("plain-hum.mp3") + ": its folder on the device cannot be made: File exists\n");
  EXPECT_EQ(bytesOf(phone + "/Music"), "a file where the folder belongs");
}

TEST_F(Push, NeverReplacesAFolder) {
  sandbox.folder("phone/Music/plain-hum.mp3/inner");
  Ended ended = umsctl(pushing({"--on-conflict", "overwrite", media("plain-hum.mp3")}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(),
            "umsctl: " + media("plain-hum.mp3") + ": a folder of that name is in its place\n");
  EXPECT_TRUE(exists(phone + "/Music/plain-hum.mp3/inner"));
}

TEST_F(Push, ShowsOddNamesEscaped) {
  std::string odd = sandbox.file("\x1b[31mred\nsong\xff.mp3", "la");
  std::string bracketed = sandbox.file("computer/[a,b].mp3", "lu");
  sandbox.file("computer/[live]", "no kind");
  sandbox.file("computer/-dash.mp3", "li");
  Ended ended = umsctl(pushing({odd, "--", "[a,b].mp3", "[live]", "-dash.mp3", "++"}),
                       {.folder = sandbox.at("computer")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"copied   " + phone + "/Music/\\x1b[31mred\\nsong\\xff.mp3",
                   "copied   " + phone + "/Music/[a,b].mp3", "copied   " + phone + "/Music/-dash.mp3",
                   "3 copied (6 B), 2 failed"}));
  EXPECT_EQ(linesOf(ended.causes()),
            (Lines{"umsctl: ./[live]: by its name it is no music, image or video file",
                   "umsctl: ./++: No such file or directory"}));
  EXPECT_EQ(bytesOf(phone + "/Music/\x1b[31mred\nsong\xff.mp3"), "la");
}

TEST_F(Push, CopiesEmptyFilesToo) {
  Ended ended = umsctl(pushing({sandbox.file("nothing.mp3", ""), sandbox.file("nothing.jpg", "")}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output).back(), "2 copied (0 B)");
  EXPECT_EQ(treeOf(phone),
            (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/nothing.jpg", "Music/", "Music/nothing.mp3"}));
}

TEST_F(Push, GoesOnWhenTheReaderOfItsOutputGoesAway) {
  std::vector<std::string> files;
  for (int i = 0; i < 20; ++i) files.push_back(sandbox.file("in/" + std::to_string(i) + ".mp3", "la"));
  RunningProgram program(pushing(files));
  program.closeOutput();
  EXPECT_EQ(program.wait().status, 0);
  EXPECT_EQ(treeOf(phone).size(), 21u);
}

TEST_F(Push, WritesNothingOfItsOwnIntoFilesWhenItsStreamsAreClosed) {
  std::string missing = sandbox.at("missing.mp3");
  Ended ended = umsctl({"-c", "exec '" TEST_UMSCTL "' push --internal '" + phone + "' '" +
                                  media("morning-tone.mp3") + "' '" + missing + "' <&- >&- 2>&-"},
                       {.program = "/bin/sh"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.output + ended.error, "");
  EXPECT_EQ(bytesOf(phone + "/Music/morning-tone.mp3"), bytesOf(media("morning-tone.mp3")));
}

TEST_F(Push, TellsThatItsOutputCannotBeWritten) {
  Ended ended = umsctl(pushing({media("sunrise.jpg")}), {.outputFile = "/dev/full"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "umsctl: standard output: No space left on device\n");
}

}  // namespace
}  // namespace umsservice::testing
