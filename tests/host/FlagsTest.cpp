#include <sys/stat.h>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Flags = HostTest;
using Lines = std::vector<std::string>;

TEST_F(Flags, AreTheSameForEveryCommand) {
  const std::vector<Lines> commands{{"push"},
                                    {"sync"},
                                    {"pull"},
                                    {"send"},
                                    {"put"},
                                    {"get"},
                                    {"ls"},
                                    {"df"},
                                    {"tree"},
                                    {"rm"},
                                    {"mkdir"},
                                    {"rmdir"},
                                    {"podcast", "push"},
                                    {"podcast", "sync"},
                                    {"podcast", "ls"},
                                    {"podcast", "rm"},
                                    {"podcast", "send"}};
  for (const Lines& command : commands) {
    Lines line = command;
    line.emplace_back("--help");
    const std::string help = umsctl(line).output;
    for (const std::string flag : {"--json", "-q,--quiet", "-v,--verbose", "--no-color"})
      EXPECT_NE(help.find(flag), std::string::npos) << ::testing::PrintToString(command) << flag;
    bool isLooking = command.back() == "ls" || command.back() == "df" || command.back() == "tree";
    EXPECT_EQ(help.find("-n,--dry-run") == std::string::npos, isLooking) << ::testing::PrintToString(command);
  }
}

TEST_F(Flags, QuietLeavesOnlyWhatWentWrong) {
  sandbox.file("phone/Music/plain-hum.mp3", "old");
  Ended ended = umsctl(pushing({"-q", media("plain-hum.mp3"), media("sunrise.jpg"), "missing.mp3"}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.output, "");
  EXPECT_EQ(ended.causes(), "umsctl: missing.mp3: No such file or directory\n");
  EXPECT_TRUE(exists(phone + "/DCIM/Camera/sunrise.jpg"));
  Ended atTerminal = umsctl(pushing({"--quiet", media("morning-tone.mp3")}), {.atTerminal = true});
  EXPECT_EQ(atTerminal.output, "");
  for (const std::string command : {"ls", "df", "tree"}) {
    Ended looked = umsctl({command, "-q", "--internal", phone});
    EXPECT_EQ(looked.status, 0);
    EXPECT_EQ(looked.output + looked.error, "");
  }
}

TEST_F(Flags, VerboseShowsTheLogOfTheService) {
  Ended ended = umsctl(pushing({"-v", media("sunrise.jpg")}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_NE(ended.error.find("] Copy File : " + media("sunrise.jpg") + "  to  " + phone), std::string::npos);
  EXPECT_EQ(linesOf(ended.output).back(), "1 copied (1.0 kB)");
}

TEST_F(Flags, NothingWaitsForAnAnswerWithoutATerminal) {
  const std::string song = sandbox.file("phone/Music/plain-hum.mp3", "old");
  const std::vector<Lines> lines{pushing({media("plain-hum.mp3")}),
                                 pushing({"--on-conflict", "ask", media("plain-hum.mp3")}),
                                 {"rm", "--internal", phone, song},
                                 {"podcast", "rm", "--internal", phone, "News"}};
  for (const Lines& line : lines) {
    RunningProgram program(line);  // its input has ended
    program.wait();
    EXPECT_EQ(bytesOf(song), "old");
  }
}

}  // namespace
}  // namespace umsservice::testing
