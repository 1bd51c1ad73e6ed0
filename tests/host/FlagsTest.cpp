#include <sys/stat.h>

#include <map>
#include <set>

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
    const std::string& name = command.back();
    auto isOneOf = [&name](const std::set<std::string>& names) { return names.count(name) > 0; };
    const bool isLooking = isOneOf({"ls", "df", "tree"}),
               isCopying = isOneOf({"push", "sync", "pull", "send", "put", "get"});
    const std::map<std::string, bool> expected{{"--json", true},
                                               {"-q,--quiet", true},
                                               {"-v,--verbose", true},
                                               {"--no-color", true},
                                               {"-n,--dry-run", !isLooking},
                                               {"--on-conflict ask|skip|overwrite", isCopying},
                                               {"--verify", isCopying},
                                               {"-y,--yes", isOneOf({"rm", "rmdir"})},
                                               {"--profile FILE", !isOneOf({"mkdir", "rmdir"})}};
    for (const auto& [flag, isThere] : expected)
      EXPECT_EQ(help.find("\n  " + flag) != std::string::npos, isThere)
          << ::testing::PrintToString(command) << flag;
  }
}

TEST_F(Flags, OfEveryCommandMayStandBeforeItToo) {
  sandbox.file("phone/Music/song.mp3", "la");
  const std::vector<std::pair<Lines, Lines>> lines{
      {{"--json", "ls", "--internal", phone}, {"ls", "--json", "--internal", phone}},
      {{"-q", "--json", "--no-color", "podcast", "ls", "--internal", phone},
       {"podcast", "ls", "-q", "--json", "--internal", phone}},
      {{"podcast", "--json", "ls", "--internal", phone}, {"podcast", "ls", "--json", "--internal", phone}},
      {{"--profile", sandbox.at("none"), "df", "--internal", phone},
       {"df", "--profile", sandbox.at("none"), "--internal", phone}},
      {{"--profile=" + sandbox.at("none"), "-v", "-qv", "df", "--internal", phone},
       {"df", "--profile=" + sandbox.at("none"), "-v", "-q", "--internal", phone}},
      {{"--json", "--help"}, {"--help"}},
      {{"--json"}, {}},
  };
  for (const auto& [before, behind] : lines) {
    Ended one = umsctl(before), other = umsctl(behind);
    EXPECT_EQ(one.status, other.status);
    EXPECT_EQ(one.output, other.output);
    EXPECT_EQ(one.error, other.error);
  }
  EXPECT_EQ(umsctl({"-n", "rm", "--internal", phone, "x"}).error,
            "umsctl: -n belongs behind the command\nTry 'umsctl rm --help'.\n");
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

TEST_F(Flags, VerboseNamesEachFileOnATerminalToo) {
  Ended ended = umsctl(pushing({"-v", media("sunrise.jpg")}), {.atTerminal = true});
  EXPECT_EQ(ended.status, 0);
  EXPECT_NE(ended.output.find("copied   " + phone), std::string::npos) << ended.output;
  EXPECT_NE(ended.output.find("] Copy File : "), std::string::npos) << "the log goes by";
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
