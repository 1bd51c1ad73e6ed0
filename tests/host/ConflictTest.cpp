#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

class Conflict : public HostTest {
 protected:
  std::string one = sandbox.file("computer/one.mp3", "new one");
  std::string two = sandbox.file("computer/two.mp3", "new two");
  std::string three = sandbox.file("computer/three.mp3", "new three");

  /// Puts older files of the same names on the device.
  void SetUp() override {
    for (const char* name : {"one", "two", "three"})
      sandbox.file("phone/Music/" + std::string(name) + ".mp3", "old");
  }
  Lines onDevice() const {
    return {bytesOf(phone + "/Music/one.mp3"), bytesOf(phone + "/Music/two.mp3"),
            bytesOf(phone + "/Music/three.mp3")};
  }
  std::vector<std::string> pushingAll(const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = options;
    arguments.insert(arguments.end(), {one, two, three});
    return pushing(arguments);
  }
  /// Pushes at a terminal and answers as asked.
  Ended answering(const Lines& answers) {
    RunningProgram program(pushingAll(), {.atTerminal = true});
    for (size_t i = 0; i < answers.size(); ++i) {
      program.waitForOutput("(y/n/all/none/quit) ", i + 1);
      program.type(answers[i]);
    }
    return program.wait();
  }
};

TEST_F(Conflict, IsSkippedAndSaidSoWithoutATerminalAndWithoutAPolicy) {
  Ended ended = umsctl(pushingAll());
  EXPECT_EQ(ended.status, 0);
  Lines said;
  for (const std::string& path : {one, two, three})
    said.push_back("umsctl: " + path + ": already on the device, skipped (see --on-conflict)");
  EXPECT_EQ(linesOf(ended.error), said);
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"skipped  " + phone + "/Music/one.mp3  (already there)",
                   "skipped  " + phone + "/Music/two.mp3  (already there)",
                   "skipped  " + phone + "/Music/three.mp3  (already there)", "0 copied (0 B), 3 skipped"}));
  EXPECT_EQ(onDevice(), (Lines{"old", "old", "old"}));
}

TEST_F(Conflict, IsSkippedWithoutFurtherWordsWhenThatIsThePolicy) {
  Ended ended = umsctl(pushingAll({"--on-conflict", "skip"}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(onDevice(), (Lines{"old", "old", "old"}));
}

TEST_F(Conflict, ReplacesWhatIsThereWhenThatIsThePolicy) {
  Ended ended = umsctl(pushingAll({"--on-conflict", "overwrite"}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output).back(), "3 copied (23 B)");
  EXPECT_EQ(onDevice(), (Lines{"new one", "new two", "new three"}));
}

TEST_F(Conflict, HappensBetweenTwoFilesOfOneNameToo) {
  std::string first = sandbox.file("a/same.mp3", "first");
  std::string second = sandbox.file("b/same.mp3", "second");
  Ended kept = umsctl(pushing({first, second}));
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(kept.error, "umsctl: " + second + ": already on the device, skipped (see --on-conflict)\n");
  EXPECT_EQ(bytesOf(phone + "/Music/same.mp3"), "first");
  umsctl(pushing({"--on-conflict", "overwrite", first, second}));
  EXPECT_EQ(bytesOf(phone + "/Music/same.mp3"), "second");
}

TEST_F(Conflict, NeverReplacesAFileByItself) {
  std::string itself = phone + "/Music/one.mp3";
  Ended ended = umsctl(pushing({"--on-conflict", "overwrite", itself}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output).back(), "0 copied (0 B), 1 skipped");
  EXPECT_EQ(bytesOf(itself), "old");
}

TEST_F(Conflict, IsAskedAboutFileByFileAtATerminal) {
  Ended ended = answering({"y\n", "n\n", "Yes\n"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_NE(ended.output.find("two.mp3 is already on the device. Replace it? (y/n/all/none/quit) "),
            std::string::npos);
  EXPECT_NE(ended.output.find("2 copied (16 B), 1 skipped\r\n"), std::string::npos);
  EXPECT_EQ(onDevice(), (Lines{"new one", "old", "new three"}));
}

TEST_F(Conflict, IsAskedAboutAgainAfterAnAnswerThatIsNone) {
  answering({"maybe\n", "\n", "no\n", "none\n"});
  EXPECT_EQ(onDevice(), (Lines{"old", "old", "old"}));
}

TEST_F(Conflict, IsNotAskedAboutAgainAfterAll) {
  Ended ended = answering({"n\n", "all\n"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(onDevice(), (Lines{"old", "new two", "new three"}));
}

TEST_F(Conflict, IsNotAskedAboutAgainAfterNone) {
  Ended ended = answering({"y\n", "none\n"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(onDevice(), (Lines{"new one", "old", "old"}));
}

TEST_F(Conflict, EndsTheRunLikeACancelAfterQuit) {
  for (const char* typed : {"quit\n", "Q\n"}) {
    sandbox.file("phone/Music/one.mp3", "old");
    Ended ended = answering({"y\n", typed});
    EXPECT_EQ(ended.status, 130);
    EXPECT_NE(ended.output.find("cancelled: 1 copied (7 B), 1 skipped, 1 not copied\r\n"), std::string::npos)
        << ended.output;
    EXPECT_EQ(ended.output.find("three.mp3"), std::string::npos);
    EXPECT_EQ(onDevice(), (Lines{"new one", "old", "old"}));
  }
}

TEST_F(Conflict, EndsEveryCommandThatAsksAfterQuit) {
  std::string place = phone + "/Music/one.mp3", into = sandbox.folder("computer");
  const std::vector<Lines> lines{
      {"put", "--internal", phone, "--on-conflict", "ask", one, place},
      {"get", "--internal", phone, "--on-conflict", "ask", place, one},
      {"pull", "--internal", phone, "--on-conflict", "ask", "--into", into, place, phone + "/Music/two.mp3"}};
  for (const Lines& line : lines) {
    RunningProgram program(line, {.atTerminal = true});
    program.waitForOutput("(y/n/all/none/quit) ");
    program.type("q\n");
    Ended ended = program.wait();
    EXPECT_EQ(ended.status, 130);
    EXPECT_NE(ended.output.find("cancelled: 0 copied (0 B), 1 skipped"), std::string::npos) << ended.output;
  }
  EXPECT_EQ(onDevice(), (Lines{"old", "old", "old"}));
  EXPECT_EQ(bytesOf(one), "new one");
}

TEST_F(Conflict, KeepsEverythingWhenTheInputEnds) {
  Ended ended = answering({"y\n", "\x04"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(onDevice(), (Lines{"new one", "old", "old"}));
}

TEST_F(Conflict, IsSkippedAndSaidSoWhereNobodyCanBeAskedAlthoughThatIsThePolicy) {
  Ended silent = umsctl(pushingAll());
  RunningProgram program(pushingAll({"--on-conflict", "ask"}), {.input = "y\ny\ny\n", .openInput = true});
  Ended ended = program.wait();  // although more could be typed
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, silent.error);
  EXPECT_EQ(ended.output, silent.output);
  EXPECT_EQ(onDevice(), (Lines{"old", "old", "old"}));
}

}  // namespace
}  // namespace umsservice::testing
