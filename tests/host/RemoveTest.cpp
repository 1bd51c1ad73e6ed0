#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

class Remove : public HostTest {
 protected:
  std::vector<std::string> removing(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{"rm", "--internal", phone, "--card", card};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  std::string song = sandbox.file("phone/Music/song.mp3", "lala");
};

TEST_F(Remove, DeletesFilesOfAnyKindFromBothVolumes) {
  std::string note = sandbox.file("card/note.txt", "x");
  std::string kept = sandbox.file("card/kept.mp3", "y");
  Ended ended = umsctl(removing({"--yes", song, note}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output), (Lines{"deleted  " + song, "deleted  " + note, "2 deleted (5 B)"}));
  EXPECT_EQ(treeOf(phone), Lines{"Music/"});
  EXPECT_EQ(treeOf(card), Lines{"kept.mp3"});
}

TEST_F(Remove, DeletesNothingWithoutATerminalAndWithoutYes) {
  Ended ended = umsctl(removing({song}), {.input = "y\n"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(
      ended.error,
      "umsctl: nothing is deleted: there is no terminal to ask at (--yes deletes without a question)\n");
  EXPECT_EQ(ended.output, "");
  EXPECT_EQ(bytesOf(song), "lala");
}

TEST_F(Remove, AsksAtATerminal) {
  std::string film = sandbox.file("phone/film.mp4", "moving");
  sandbox.file("phone/film.smi", "words");
  const std::string question = "Delete 2 files (10 B) and 1 subtitle file from the device? (y/n) ";
  for (const std::string answer : {"n\n", "\n", "\x04"}) {
    RunningProgram program(removing({song, film}), {.atTerminal = true});
    program.waitForOutput(question);
    program.type(answer);
    Ended ended = program.wait();
    EXPECT_EQ(ended.status, 0);
    EXPECT_NE(ended.output.find("umsctl: nothing is deleted\r\n"), std::string::npos);
    EXPECT_TRUE(exists(song) && exists(film));
  }
  RunningProgram program(removing({song, film}), {.atTerminal = true});
  program.waitForOutput(question);
  program.type("what\n");
  program.waitForOutput(question, 2);
  program.type("y\n");
  EXPECT_EQ(program.wait().status, 0);
  EXPECT_EQ(treeOf(phone), Lines{"Music/"});
}

TEST_F(Remove, IsLeftWithoutADeedWithCtrlCAtTheQuestion) {
  RunningProgram program(removing({song}), {.atTerminal = true});
  program.waitForOutput("(y/n) ");
  program.type("\x03");
  EXPECT_EQ(program.wait().status, 130);
  EXPECT_TRUE(exists(song));
}

TEST_F(Remove, TakesTheSubtitlesOfAVideoAlongAndOnlyThose) {
  std::string film = sandbox.file("phone/film.mp4", "moving");
  sandbox.file("phone/film.smi", "words");
  sandbox.file("phone/Music/song.smi", "not of a song");
  EXPECT_EQ(umsctl(removing({"-y", film, song})).status, 0);
  EXPECT_EQ(treeOf(phone), (Lines{"Music/", "Music/song.smi"}));
}

TEST_F(Remove, TakesSubtitlesThatAreNamedWithTheirVideoForDoneOnce) {
  std::string film = sandbox.file("phone/film.mp4", "moving");
  std::string words = sandbox.file("phone/film.smi", "words");
  Ended ended = umsctl(removing({"-y", film, words}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output).back(), "2 deleted (11 B)");
  EXPECT_EQ(ended.error, "");
}

TEST_F(Remove, RefusesWhatLiesElsewhere) {
  std::string outside = sandbox.file("computer/mine.mp3", "mine");
  ASSERT_EQ(symlink(sandbox.at("computer").c_str(), (phone + "/way out").c_str()), 0);
  const Lines elsewhere{outside, phone + "/way out/mine.mp3", phone + "/../computer/mine.mp3", phone,
                        "/",     phone + "/Music/.."};
  for (const std::string& path : elsewhere) {
    Ended ended = umsctl(removing({"--yes", path}));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.causes(), "umsctl: " + path + ": it is on none of the device's volumes\n");
  }
  EXPECT_EQ(bytesOf(outside), "mine");
  EXPECT_TRUE(exists(song));
}

TEST_F(Remove, DeletesALinkAndNotWhatItLeadsTo) {
  std::string outside = sandbox.file("computer/mine.mp3", "mine");
  std::string link = phone + "/link.mp3";
  ASSERT_EQ(symlink(outside.c_str(), link.c_str()), 0);
  EXPECT_EQ(umsctl(removing({"--yes", link})).status, 0);
  EXPECT_FALSE(exists(link));
  EXPECT_EQ(bytesOf(outside), "mine");
}

TEST_F(Remove, NamesWhatItCannotDeleteWithItsCauseAndDeletesTheOthers) {
  std::string folder = sandbox.folder("phone/Albums");
  std::string fifo = phone + "/pipe.mp3";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  Ended ended = umsctl(removing({"--yes", "none.mp3", folder, fifo, phone + "/\x1b\xff.mp3", song, song}),
                       {.folder = phone});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()),
            (Lines{"umsctl: none.mp3: No such file or directory",
                   "umsctl: " + folder + ": it is a folder; umsctl rmdir removes folders",
                   "umsctl: " + phone + "/\\x1b\\xff.mp3: No such file or directory"}));
  EXPECT_EQ(linesOf(ended.output).back(), "2 deleted (4 B), 3 failed");
  EXPECT_EQ(treeOf(phone), (Lines{"Albums/", "Music/"}));
}

TEST_F(Remove, DeletesAFileThatIsNamedTwiceOnce) {
  sandbox.folder("phone/Other");
  Ended ended =
      umsctl(removing({"--yes", song, song, "phone/./Music/song.mp3", "phone/Other/../Music/song.mp3"}),
             {.folder = sandbox.path()});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output), (Lines{"deleted  " + song, "1 deleted (4 B)"}));
}

TEST_F(Remove, DeletesNoLinkThatIsNamedAsTheFolderItLeadsTo) {
  sandbox.folder("phone/Other");
  ASSERT_EQ(symlink("Other", (phone + "/link").c_str()), 0);
  for (const std::string& name : {phone + "/link/", phone + "/link/.", phone + "/link/../Other"})
    EXPECT_EQ(umsctl(removing({"--yes", name})).status, 1) << name;
  EXPECT_TRUE(exists(phone + "/link"));
  EXPECT_TRUE(exists(phone + "/Other"));
}

TEST_F(Remove, SaysWhyAFileStays) {
  chmod((phone + "/Music").c_str(), 0500);
  Ended ended = umsctl(removing({"--yes", song}), {.withoutRootPowers = true});
  chmod((phone + "/Music").c_str(), 0700);
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: " + song + ": it cannot be removed: Permission denied\n");
}

TEST_F(Remove, EndsWithThreeForAMissingVolumeBeforeAnyQuestion) {
  EXPECT_EQ(umsctl({"rm", "--internal", sandbox.at("none"), song}).status, 3);
  EXPECT_TRUE(exists(song));
}

TEST_F(Remove, StopsBetweenTwoFilesWithCtrlC) {
  std::vector<std::string> files{"--yes"};
  for (int i = 0; i < 200; ++i)
    files.push_back(sandbox.file("card/" + std::string(80, 'n') + std::to_string(i) + ".mp3", "la"));
  RunningProgram program(removing(files), {.smallOutputPipe = true});
  program.waitForOutput("\n");
  program.sendSignal(SIGINT);
  program.waitForError("umsctl: cancelling");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  size_t deleted = linesOf(ended.output).size() - 1;
  EXPECT_EQ(treeOf(card).size(), 200 - deleted);
  EXPECT_TRUE(linesOf(ended.output).back().ends_with(std::to_string(200 - deleted) + " not deleted"));
}

}  // namespace
}  // namespace umsservice::testing
