#include <signal.h>

#include "HostTest.h"

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
  RunningProgram program(pushing({media("sunrise.jpg"), film}), {.atTerminal = true});
  program.waitForOutput("1/2  film.mp4");
  program.type("\x03");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  EXPECT_NE(ended.output.find("cancelled: 1 copied (1.0 kB), 1 not copied\r\n"), std::string::npos);
  EXPECT_EQ(treeOf(phone), (std::vector<std::string>{"DCIM/", "DCIM/Camera/", "DCIM/Camera/sunrise.jpg"}));
}

}  // namespace
}  // namespace umsservice::testing
