#include <unistd.h>

#include <algorithm>

#include "EscapedName.h"
#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Terminal = HostTest;

/// What was drawn between one erasing of the line and the next.
std::vector<std::string> drawings(const std::string& shown) {
  const std::string erase = "\r\x1b[K";
  std::vector<std::string> lines;
  for (size_t at = shown.find(erase); at != std::string::npos;) {
    size_t next = shown.find(erase, at + erase.size());
    lines.push_back(
        shown.substr(at + erase.size(), next == std::string::npos ? next : next - at - erase.size()));
    at = next;
  }
  return lines;
}

TEST_F(Terminal, ShowsABarAndThenTheCounts) {
  Ended ended = umsctl(pushing({media("morning-tone.mp3"), media("sunrise.jpg")}), {.atTerminal = true});
  EXPECT_EQ(ended.status, 0);
  auto shown = drawings(ended.output);
  ASSERT_GE(shown.size(), 2u);
  // A slow machine shows before the bar that it looks around.
  EXPECT_EQ(std::count(shown.begin(), shown.end(), "[>                   ]   0%  0 B of 13.9 kB  0/2"), 1);
  EXPECT_EQ(shown.back(), "2 copied (13.9 kB)\r\n");
  EXPECT_EQ(ended.output.find("copied   "), std::string::npos);
}

TEST_F(Terminal, ShowsTheNameOfTheFileInHand) {
  std::string film = sandbox.file("film\t.mp4", "");
  ASSERT_EQ(truncate(film.c_str(), 20'000'000), 0);
  RunningProgram program(pushing({film}), {.atTerminal = true, .columns = kRoomy});
  program.waitForOutput("  0/1  film\\t.mp4");
  EXPECT_EQ(program.wait().status, 0);
}

TEST_F(Terminal, NeverDrawsALineThatRunsOverTheEdge) {
  std::vector<std::string> files;
  for (int i = 0; i < 5; ++i)
    files.push_back(sandbox.file("in/長い長い長い長い長い長い名前 " + std::to_string(i) + ".mp3",
                                 std::string(200'000, 'x')));
  for (const unsigned short columns : std::initializer_list<unsigned short>{10, 40, 71, 80}) {
    sandbox.folder("device" + std::to_string(columns));
    std::vector<std::string> arguments{"push", "--internal", sandbox.at("device" + std::to_string(columns))};
    arguments.insert(arguments.end(), files.begin(), files.end());
    Ended ended = umsctl(arguments, {.atTerminal = true, .columns = columns});
    EXPECT_EQ(ended.status, 0);
    auto shown = drawings(ended.output);
    shown.pop_back();  // the counts, an ordinary line
    for (const std::string& line : shown) EXPECT_LT(umsctl::columnsOf(line), columns) << line;
  }
}

TEST_F(Terminal, NamesFailuresBelowTheBar) {
  Ended ended = umsctl(pushing({"--no-color", "missing.mp3", media("sunrise.jpg")}), {.atTerminal = true});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(drawings(ended.output).back(),
            "umsctl: 1 failed:\r\n"
            "  FILE         NUMBER      CAUSE                      WHAT TO DO\r\n"
            "  missing.mp3  0x23000005  No such file or directory  check the name and its\r\n"
            "                                                      permissions\r\n"
            "1 copied (1.0 kB), 1 failed\r\n");
}

}  // namespace
}  // namespace umsservice::testing
