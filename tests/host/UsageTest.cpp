#include <algorithm>
#include <filesystem>
#include <sstream>

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

TEST_F(Usage, PointsToTheHelpOfTheVeryCommand) {
  auto errorOf = [](const std::vector<std::string>& line) {
    Ended ended = umsctl(line);
    EXPECT_EQ(ended.status, 2);
    return ended.error;
  };
  EXPECT_EQ(errorOf({"podcast", "rm", "--internal", phone}),
            "umsctl: CHANNEL is required\nTry 'umsctl podcast rm --help'.\n");
  EXPECT_EQ(errorOf({"podcast", "push", "--internal", phone}),
            "umsctl: give either --feed FILE with --episodes DIR, or --from-json FILE\n"
            "Try 'umsctl podcast push --help'.\n");
  EXPECT_EQ(errorOf({"podcast", "fetch"}),
            "umsctl: there is no command podcast fetch\nTry 'umsctl podcast --help'.\n");
  EXPECT_EQ(
      errorOf({"podcast"}),
      "umsctl: a podcast command is missing: push, sync, ls, rm or send\nTry 'umsctl podcast --help'.\n");
  EXPECT_EQ(errorOf({"--frobnicate"}), "umsctl: there is no option --frobnicate\nTry 'umsctl --help'.\n");
}

TEST_F(Usage, HelpTellsTheExitStatusesAndWhereToReadOn) {
  for (const std::string command : {"", "df", "push", "podcast", "podcast send"}) {
    std::vector<std::string> line;
    std::istringstream words(command);
    for (std::string word; words >> word;) line.push_back(word);
    line.emplace_back("--help");
    std::string page = "umsctl" + (command.empty() ? "" : "-" + command);
    std::replace(page.begin(), page.end(), ' ', '-');
    EXPECT_TRUE(umsctl(line).output.ends_with(
        "\n\nExit status: 0 all done, 1 some failed, 2 usage, 3 no such volume, 130 cancelled\nMore: man " +
        page + "\n"))
        << command;
  }
  EXPECT_NE(umsctl({"push", "--help"}).output.find("see man umsctl-profile\n"), std::string::npos);
}

TEST_F(Usage, ProfileOfTheReferenceIsOneAndItsUsualFoldersAreTheUsualOnes) {
  std::string reference = bytesOf(TEST_DOCS "/commands.md");
  reference.erase(0, reference.find("\n## Profiles\n"));
  const size_t begin = reference.find("\n    {\n"), end = reference.find("\n    }\n");
  ASSERT_LT(begin, end);
  const std::string profile = sandbox.file("player.json", reference.substr(begin, end - begin + 7));
  const std::vector<std::string> files{media("plain-hum.mp3"), media("sunrise.jpg"), media("harbour.mp4")};
  auto line = pushing(files);
  line.insert(line.end(), {"--profile", profile});
  EXPECT_EQ(umsctl(line).status, 0);
  for (const char* copy : {"/Songs/plain-hum.mp3", "/DCIM/sunrise.jpg", "/Films/harbour.mp4"})
    EXPECT_TRUE(exists(phone + copy)) << copy;
  // What is told in a pair of words beside the kinds.
  EXPECT_EQ(umsctl(pushing(files)).status, 0);
  EXPECT_NE(reference.find("\n    music      Music unless said\n"), std::string::npos);
  EXPECT_TRUE(exists(phone + "/Music/plain-hum.mp3"));
  EXPECT_NE(reference.find("\n    image      DCIM/Camera unless said\n"), std::string::npos);
  EXPECT_TRUE(exists(phone + "/DCIM/Camera/sunrise.jpg"));
  EXPECT_NE(reference.find("\n    video      DCIM/Camera unless said\n"), std::string::npos);
  EXPECT_TRUE(exists(phone + "/DCIM/Camera/harbour.mp4"));
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
