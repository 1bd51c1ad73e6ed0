#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

class Pull : public HostTest {
 protected:
  std::vector<std::string> pulling(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{"pull", "--internal", phone, "--card", card, "--into", into};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  std::string into = sandbox.at("computer/new folder");
  std::string song = sandbox.file("phone/Music/song.mp3", "lala");
  std::string film = sandbox.file("card/film.mp4", "moving");
};

TEST_F(Pull, BringsFilesOfAnyKindIntoOneFolderAndSubtitlesWithTheirVideo) {
  sandbox.file("card/film.smi", "words");
  std::string note = sandbox.file("phone/note.txt", "x");
  Ended ended = umsctl(pulling({film, note, song}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output), (Lines{"copied   " + into + "/film.mp4", "copied   " + into + "/note.txt",
                                          "copied   " + into + "/song.mp3", "3 copied (11 B)"}));
  EXPECT_EQ(treeOf(into), (Lines{"film.mp4", "film.smi", "note.txt", "song.mp3"}));
  EXPECT_EQ(bytesOf(film) + bytesOf(song) + bytesOf(note), "movinglalax");
}

TEST_F(Pull, TakesSubtitlesThatAreNamedWithTheirVideoOnce) {
  std::string words = sandbox.file("card/film.smi", "words");
  Ended ended = umsctl(pulling({film, words}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output).back(), "2 copied (11 B)");
}

TEST_F(Pull, KeepsOrReplacesWhatIsThereAsThePolicySays) {
  std::string there = sandbox.file("computer/new folder/song.mp3", "mine");
  Ended kept = umsctl(pulling({song}));
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(kept.error, "umsctl: " + song + ": already there, skipped (see --on-conflict)\n");
  EXPECT_EQ(bytesOf(there), "mine");
  EXPECT_EQ(umsctl(pulling({"--on-conflict", "overwrite", song})).status, 0);
  EXPECT_EQ(bytesOf(there), "lala");
}

TEST_F(Pull, KeepsOtherSubtitlesOfTheSameName) {
  std::string words = sandbox.file("card/film.smi", "words");
  std::string mine = sandbox.file("computer/new folder/film.smi", "of another film");
  Ended kept = umsctl(pulling({film}));
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(kept.error, "umsctl: " + words + ": already there, skipped (see --on-conflict)\n");
  EXPECT_EQ(bytesOf(into + "/film.mp4"), "moving");
  EXPECT_EQ(bytesOf(mine), "of another film");
}

TEST_F(Pull, NeverReplacesAFileByItself) {
  Ended ended =
      umsctl({"pull", "--internal", phone, "--into", phone + "/Music", "--on-conflict", "overwrite", song});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output).back(), "0 copied (0 B), 1 skipped");
  EXPECT_EQ(bytesOf(song), "lala");
}

TEST_F(Pull, BringsNothingFromElsewhere) {
  std::string secret = sandbox.file("computer/secret.mp3", "hush");
  std::string link = phone + "/Music/link.mp3";
  ASSERT_EQ(symlink(secret.c_str(), link.c_str()), 0);
  std::string circle = phone + "/circle.mp3";
  ASSERT_EQ(symlink("circle.mp3", circle.c_str()), 0);
  std::string fifo = phone + "/pipe.mp3";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  Ended ended = umsctl(pulling({secret, link, circle, fifo, phone + "/Music", phone + "/none.mp3"}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()), (Lines{"umsctl: " + secret + ": it is on none of the device's volumes",
                                            "umsctl: " + link + ": it is on none of the device's volumes",
                                            "umsctl: " + circle + ": it is on none of the device's volumes",
                                            "umsctl: " + fifo + ": it is no ordinary file",
                                            "umsctl: " + phone + "/Music: it is a folder",
                                            "umsctl: " + phone + "/none.mp3: No such file or directory"}));
  EXPECT_EQ(linesOf(ended.output), Lines{"0 copied (0 B), 6 failed"});
  EXPECT_FALSE(exists(into));
}

TEST_F(Pull, FollowsALinkThatStaysOnTheDevice) {
  std::string link = phone + "/favourite.mp3";
  ASSERT_EQ(symlink("Music/song.mp3", link.c_str()), 0);
  EXPECT_EQ(umsctl(pulling({link})).status, 0);
  EXPECT_EQ(bytesOf(into + "/favourite.mp3"), "lala");
}

TEST_F(Pull, SaysWhyItsFolderCannotBeMade) {
  sandbox.file("computer", "a file");
  Ended ended = umsctl(pulling({song}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: " + song + ": the folder cannot be made: Not a directory\n");
}

TEST_F(Pull, SaysThatTheComputerIsFull) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume computer(sandbox.folder("computer"), 1 << 20);
  std::string large = sandbox.patternFile("phone/large.mp3", 2'000'000);
  Ended ended = umsctl(pulling({song, large, film}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()),
            Lines{"umsctl: " + large + ": not enough room on the volume: 2.0 MB needed, 1.0 MB free"});
  EXPECT_EQ(treeOf(into), (Lines{"film.mp4", "song.mp3"}));
}

TEST_F(Pull, ShowsOddNamesEscaped) {
  std::string odd = sandbox.file("phone/\x1b[31m\n\xff.mp3", "la");
  Ended ended = umsctl(pulling({odd}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output).front(), "copied   " + into + "/\\x1b[31m\\n\\xff.mp3");
  EXPECT_EQ(bytesOf(into + "/\x1b[31m\n\xff.mp3"), "la");
}

TEST_F(Pull, NeedsItsFolderAndItsVolumes) {
  EXPECT_EQ(umsctl({"pull", "--internal", phone, song}).status, 2);
  EXPECT_EQ(umsctl({"pull", "--into", into, song}).status, 2);
  EXPECT_EQ(umsctl({"pull", "--internal", sandbox.at("none"), "--into", into, song}).status, 3);
  EXPECT_FALSE(exists(into));
}

TEST_F(Pull, EndsCleanlyInTheMiddleOfTheListWithCtrlC) {
  std::vector<std::string> files;
  for (int i = 0; i < 200; ++i)
    files.push_back(sandbox.file("phone/" + std::string(80, 'n') + std::to_string(i) + ".mp3", "la"));
  RunningProgram program(pulling(files), {.smallOutputPipe = true});
  program.waitForOutput("\n");
  program.sendSignal(SIGINT);
  program.waitForError("umsctl: cancelling");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  EXPECT_EQ(treeOf(into).size(), linesOf(ended.output).size() - 1);
}

TEST_F(Pull, LeavesNoHalfFileBehindWithCtrlC) {
  std::string huge = hugeFile("phone/huge.mp4");
  if (huge.empty()) GTEST_SKIP() << "not enough room for a copy that takes long enough";
  RunningProgram program(pulling({huge}), {.atTerminal = true, .columns = kRoomy});
  program.waitForOutput("0/1  huge.mp4");
  program.type("\x03");
  EXPECT_EQ(program.wait().status, 130);
  EXPECT_TRUE(treeOf(into).empty());
}

}  // namespace
}  // namespace umsservice::testing
