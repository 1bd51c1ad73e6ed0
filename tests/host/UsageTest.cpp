#include <filesystem>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Usage = HostTest;

TEST_F(Usage, IsExplainedForTheProgramAndForEachCommand) {
  Ended general = umsctl({"--help"});
  EXPECT_EQ(general.status, 0);
  EXPECT_EQ(general.error, "");
  for (const std::string command :
       {"push", "df", "tree", "mkdir", "rmdir", "ls", "sync", "pull", "put", "get", "send", "rm"}) {
    EXPECT_NE(general.output.find("\n  " + command + " "), std::string::npos);
    Ended own = umsctl({command, "--help"});
    EXPECT_EQ(own.status, 0);
    EXPECT_NE(own.output.find("Usage: umsctl " + command), std::string::npos);
    EXPECT_EQ(own.error, "");
  }
}

TEST_F(Usage, EndsWithTwoForALineThatMakesNoSense) {
  const std::vector<std::vector<std::string>> lines{
      {},
      {"fetch"},
      pushing({}),
      {"push", media("sunrise.jpg")},
      pushing({"--to", "first", media("sunrise.jpg")}),
      pushing({"--to", "-1", media("sunrise.jpg")}),
      pushing({"--on-conflict", "guess", media("sunrise.jpg")}),
      pushing({"--frobnicate", media("sunrise.jpg")}),
      {"ls"},
      {"ls", "--internal", phone, "--type", "noise"},
      {"sync", "--internal", phone},
      {"rm", media("sunrise.jpg")},
      {"put", "--internal", phone, media("sunrise.jpg")},
      {"df"},
      {"df", "--internal"},
      {"tree"},
      {"tree", "--internal", phone, phone},
      {"mkdir"},
      {"mkdir", "one", "two"},
      {"rmdir"},
  };
  for (const auto& line : lines) {
    Ended ended = umsctl(line);
    EXPECT_EQ(ended.status, 2) << ::testing::PrintToString(line);
    EXPECT_EQ(ended.output, "");
    EXPECT_TRUE(ended.error.starts_with("umsctl: ")) << ended.error;
  }
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Usage, SaysWhatIsWrongAndWhereToLook) {
  EXPECT_EQ(umsctl({"fetch"}).error, "umsctl: there is no command fetch\nTry 'umsctl --help'.\n");
  EXPECT_EQ(
      umsctl(pushing({"--on-conflict", "\x1b[2J", "a.mp3"})).error,
      "umsctl: --on-conflict: \\x1b[2J is none of ask, skip and overwrite\nTry 'umsctl push --help'.\n");
}

TEST_F(Usage, EndsWithThreeForAVolumeThatIsNotThere) {
  std::string file = sandbox.file("file", "no folder");
  std::string missing = sandbox.at("missing");
  Ended ended = umsctl({"push", "--internal", missing, media("sunrise.jpg")});
  EXPECT_EQ(ended.status, 3);
  EXPECT_EQ(ended.error, "umsctl: " + missing + ": no such volume: No such file or directory\n");
  ended = umsctl({"push", "--card", file, media("sunrise.jpg")});
  EXPECT_EQ(ended.status, 3);
  EXPECT_EQ(ended.error, "umsctl: " + file + ": no such volume: it is not a folder\n");
  ended = umsctl(pushing({"--to", "1", media("sunrise.jpg")}));
  EXPECT_EQ(ended.status, 3);
  EXPECT_EQ(ended.error, "umsctl: volume 1: no such volume: the only one is 0\n");
  EXPECT_EQ(umsctl({"df", "--internal", phone, "--card", missing}).status, 3);
  EXPECT_EQ(umsctl({"tree", "--internal", ""}).status, 3);
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Usage, DiagnosticsAppearWithAPropertyListBesideTheProgram) {
  std::string program = sandbox.folder("bin") + "/umsctl";
  std::filesystem::copy_file(TEST_UMSCTL, program);
  std::string silent = umsctl(pushing({media("sunrise.jpg")}), {.program = program}).error;
  EXPECT_EQ(silent, "");
  sandbox.file("bin/DEBUG.plist",
               "<plist version=\"1.0\"><dict><key>DEBUG_LEVEL</key><integer>6</integer></dict></plist>");
  std::string odd = sandbox.file("\x1b[1mbold.jpg", "smile");
  std::string told = umsctl(pushing({odd}), {.program = program}).error;
  EXPECT_NE(told.find("] Copy File : " + sandbox.path() + "/\\x1b[1mbold.jpg  to  " + phone),
            std::string::npos)
      << told;
  EXPECT_EQ(told.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace umsservice::testing
