#include <signal.h>

#include <chrono>
#include <thread>

#include "HostTest.h"
#include "JsonLines.h"

namespace umsservice::testing {
namespace {

class Interrupting : public HostTest {
 protected:
  static constexpr size_t kMany = 200;

  /// Files whose report lines fill a small pipe long before the last one: a reader that stops reading holds
  /// the transfer in its middle for as long as a test likes.
  std::vector<std::string> pushingMany() {
    std::vector<std::string> files;
    for (size_t i = 0; i < kMany; ++i)
      files.push_back(sandbox.file("in/" + std::string(80, 'n') + std::to_string(i) + ".mp3", "la"));
    return pushing(files);
  }
};

TEST_F(Interrupting, EndsCleanlyInTheMiddleOfTheList) {
  for (int number : {SIGINT, SIGTERM, SIGHUP}) {
    RunningProgram program(pushingMany(), {.smallOutputPipe = true});
    program.waitForOutput("\n");
    program.sendSignal(number);
    program.waitForError("umsctl: cancelling; once more to stop at once\n");
    if (number == SIGHUP) program.sendSignal(number);  // as the shell of a closed terminal does
    Ended ended = program.wait();
    EXPECT_EQ(ended.status, 130);
    auto lines = linesOf(ended.output);
    size_t copied = lines.size() - 1;  // the last one are the counts
    EXPECT_LT(copied, kMany);
    EXPECT_EQ(lines.back(), "cancelled: " + std::to_string(copied) + " copied (" +
                                std::to_string(2 * copied) + " B), " + std::to_string(kMany - copied) +
                                " not copied");
    EXPECT_EQ(treeOf(phone).size(), copied + 1);
    EXPECT_EQ(system(("rm -r '" + phone + "/Music'").c_str()), 0);
  }
}

TEST_F(Interrupting, EndsAtOnceTheSecondTime) {
  RunningProgram program(pushingMany(), {.smallOutputPipe = true});
  program.waitForOutput("\n");
  program.fillOutput();
  program.sendSignal(SIGINT);
  program.waitForError("cancelling");
  program.sendSignal(SIGINT);
  EXPECT_EQ(program.waitForExit(), 130);  // although nobody reads what it wants to say
  EXPECT_EQ(program.wait().output.find("cancelled:"), std::string::npos);
}

TEST_F(Interrupting, EndsAQuestionWithoutReplacingAnything) {
  std::string song = sandbox.file("song.mp3", "new");
  sandbox.file("phone/Music/song.mp3", "old");
  RunningProgram program(pushing({song, media("sunrise.jpg")}), {.atTerminal = true});
  program.waitForOutput("Replace it? (y/n/all/none/quit) ");
  program.type("\x03");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  EXPECT_NE(ended.output.find("cancelled: 0 copied (0 B), 1 skipped, 1 not copied\r\n"), std::string::npos);
  EXPECT_EQ(bytesOf(phone + "/Music/song.mp3"), "old");
  EXPECT_FALSE(exists(phone + "/DCIM"));
}

TEST_F(Interrupting, LeavesNoHalfFileBehind) {
  std::string film = hugeFile("film.mp4");
  if (film.empty()) GTEST_SKIP() << "not enough room for a copy that takes long enough";
  RunningProgram program(pushing({media("sunrise.jpg"), film}), {.atTerminal = true, .columns = kRoomy});
  program.waitForOutput("1/2  film.mp4");
  program.type("\x03");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  EXPECT_NE(ended.output.find("cancelled: 1 copied (1.0 kB), 1 not copied\r\n"), std::string::npos);
  EXPECT_EQ(treeOf(phone), (std::vector<std::string>{"DCIM/", "DCIM/Camera/", "DCIM/Camera/sunrise.jpg"}));
}

TEST_F(Interrupting, EndsAListingAtTheNextFile) {
  for (size_t i = 0; i < kMany; ++i)
    sandbox.file("phone/" + std::string(80, 'n') + std::to_string(i) + ".mp3", "la");
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    for (const std::string command : {"ls", "tree"}) {
      RunningProgram program({command, "--json", "--internal", phone}, {.smallOutputPipe = true});
      program.waitForOutput("\n");
      program.sendSignal(number);
      program.waitForError("umsctl: cancelling; once more to stop at once\n");
      Ended ended = program.wait();
      EXPECT_EQ(ended.status, 130);
      EXPECT_NE(ended.error.find("umsctl: cancelled\n"), std::string::npos);
      EXPECT_LT(objectsOf(ended, "file").size(), kMany);
      EXPECT_EQ(objectsOf(ended).back()["event"], "result");
      EXPECT_EQ(objectsOf(ended).back()["exit_status"], 130);
    }
  }
}

TEST_F(Interrupting, EndsEveryQuestionAboutADeletion) {
  const std::string song = sandbox.file("phone/Podcast/News/song.mp3", "la");
  const std::string index =
      "<channel><Title>News</Title><Post><Title>One</Title><FilePath>song.mp3</FilePath></Post></channel>";
  sandbox.file("phone/Podcast/News/News.xml", index);
  const std::vector<std::vector<std::string>> lines{{"rm", "--internal", phone, song},
                                                    {"rmdir", "-r", phone + "/Podcast"},
                                                    {"podcast", "rm", "--internal", phone, "News"}};
  for (auto line : lines) {
    for (const bool isJson : {false, true}) {
      if (isJson) line.emplace_back("--json");
      RunningProgram program(line, {.atTerminal = true});
      program.waitForOutput("(y/n) ");
      program.type("\x03");
      Ended ended = program.wait();
      EXPECT_EQ(ended.status, 130) << line.front();
      EXPECT_NE(ended.output.find("umsctl: cancelling; once more to stop at once\r\n"), std::string::npos);
      EXPECT_NE(ended.output.find("umsctl: nothing is deleted\r\n"), std::string::npos) << ended.output;
      if (isJson) EXPECT_EQ(objectsOf(withoutWords(ended)).back()["exit_status"], 130);
      EXPECT_EQ(bytesOf(song), "la");
    }
  }
}

/// Work on many folders, which lasts because the program is slow.
class InterruptingLongWork : public HostTest {
 protected:
  void SetUp() override {
    for (int i = 0; i < 3000; ++i) sandbox.folder("phone/d/" + std::to_string(i));
  }
};

TEST_F(InterruptingLongWork, ShowsAPersonHowFarItIsAndEndsCleanly) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> lines{
      {{"ls", "--internal", phone}, "Looking for music  "},
      {{"tree", "--internal", phone}, "Looking at folders  "},
      {{"tree", phone}, "Looking at folders  "},
      {{"rmdir", "-r", phone + "/d"}, "Counting  "},
      {{"rmdir", "-y", "-r", phone + "/d"}, "Removing  "},
  };
  for (const auto& [line, phase] : lines) {
    RunningProgram program(line, {.atTerminal = true});
    program.slowDown();
    program.waitForOutput("\r\x1b[K" + phase);
    program.type("\x03");
    Ended ended = program.wait();
    EXPECT_EQ(ended.status, 130) << phase;
    EXPECT_NE(ended.output.find("\r\x1b[Kumsctl: cancelling; once more to stop at once\r\n"),
              std::string::npos);
    EXPECT_TRUE(exists(phone + "/d"));
  }
}

TEST_F(InterruptingLongWork, SaysHowMuchOfAFolderIsGone) {
  RunningProgram program({"rmdir", "--json", "-y", "-r", phone + "/d"}, {.atTerminal = true});
  program.slowDown();
  program.waitForOutput("\"plan\"");
  program.sendSignal(SIGINT);
  Ended ended = withoutWords(program.wait());
  EXPECT_EQ(ended.status, 130);
  auto items = objectsOf(ended, "item");
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items.front()["outcome"], "not_reached");
  const std::string text = objectsOf(ended, "message").at(0)["text"];
  EXPECT_EQ(text, "cancelled: " + std::to_string(3000 - treeOf(phone).size() + 1) +
                      " of 3000 things in it removed");
  EXPECT_EQ(objectsOf(ended, "result").at(0)["exit_status"], 130);
}

TEST_F(InterruptingLongWork, ShowsNoLineToQuietPeopleAndNoneAmongObjects) {
  for (const std::string flag : {"-q", "--json"}) {
    RunningProgram program({"ls", flag, "--internal", phone}, {.atTerminal = true});
    program.slowDown();
    std::this_thread::sleep_for(std::chrono::seconds(2));  // a line would have come by now
    Ended ended = program.wait();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output.find("Looking"), std::string::npos);
  }
}

}  // namespace
}  // namespace umsservice::testing
