#include <unistd.h>

#include "EscapedName.h"
#include "HostTest.h"
#include "JsonLines.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;
using Colour = HostTest;

/// What people see of the commands at a terminal of their own.
class Screen : public HostTest {
 protected:
  Lines linesOfScreen(const std::vector<std::string>& arguments, unsigned short columns) const {
    Ended ended = umsctl(arguments, {.atTerminal = true, .columns = columns});
    Lines lines = linesOf(ended.screen());
    for (std::string& line : lines) {
      if (line.ends_with('\r')) line.pop_back();
    }
    return lines;
  }
  void copyOf(const std::string& name, const std::string& to) const {
    sandbox.file(to, bytesOf(media(name)));
  }
  /// A song whose title drives terminals.
  std::string songWithEvilTitle() const {
    std::string bytes = bytesOf(media("evening-tone.flac"));
    return bytes.replace(bytes.find("Abendt"), 6, "\x1b[2J\n\t");
  }
};

TEST_F(Colour, IsShownAtATerminalOnly) {
  const std::vector<std::string> df{"df", "--internal", phone};
  EXPECT_NE(umsctl(df, {.atTerminal = true}).output.find("\x1b[1mVOLUME\x1b[0m"), std::string::npos);
  EXPECT_EQ(umsctl(df).output.find('\x1b'), std::string::npos);
}

TEST_F(Colour, IsNotShownToPeopleWhoWantNoneNorByTerminalsThatCannot) {
  sandbox.file("phone/Music/a.mp3", "la");
  for (const std::vector<std::string>& line :
       std::vector<std::vector<std::string>>{{"df", "--internal", phone},
                                             {"tree", phone},
                                             {"ls", "--long", "--internal", phone},
                                             pushing({"none.mp3"})}) {
    std::vector<std::string> without = line;
    without.insert(without.begin() + 1, "--no-color");
    auto isPainted = [](const Ended& ended) { return ended.output.find("\x1b[0m") != std::string::npos; };
    EXPECT_TRUE(isPainted(umsctl(line, {.atTerminal = true}))) << line.front();
    EXPECT_FALSE(isPainted(umsctl(without, {.atTerminal = true}))) << line.front();
    EXPECT_FALSE(isPainted(umsctl(line, {.atTerminal = true, .environment = {{"NO_COLOR", "1"}}})));
    EXPECT_TRUE(isPainted(umsctl(line, {.atTerminal = true, .environment = {{"NO_COLOR", ""}}})));
    Ended dumb = umsctl(line, {.atTerminal = true, .environment = {{"TERM", "dumb"}}});
    EXPECT_EQ(dumb.output.find('\x1b'), std::string::npos) << line.front();
  }
}

TEST_F(Screen, ShowsALongListingWithWhatMattersForEachKind) {
  copyOf("evening-tone.flac", "phone/Music/a.flac");
  copyOf("morning-tone.mp3", "phone/Music/b.mp3");
  copyOf("pier.jpg", "phone/DCIM/c.jpg");
  sandbox.file("phone/DCIM/d.jpg", "no picture");
  copyOf("harbour.mp4", "phone/e.mp4");
  EXPECT_EQ(
      linesOfScreen({"ls", "-l", "--no-color", "--internal", phone}, 100),
      (Lines{"0  internal  " + phone, "     SIZE  MUSIC         TITLE              ARTIST             TIME",
             "  13.4 kB  Music/a.flac  Abendtöne am Fluß  Übungsensemble 音  0:02",
             "  12.9 kB  Music/b.mp3   Morning Tone       Demo Ensemble      0:03", "",
             "    SIZE  IMAGE           PIXELS  TAKEN                CAMERA",
             "  1.0 kB  DCIM/c.jpg       48x64  2021-06-05 04:31:07  Tinbox Pocket 3",
             "    10 B  DCIM/d.jpg  unreadable", "", "     SIZE  VIDEO  TIME  PIXELS  CODECS",
             "  12.3 kB  e.mp4  0:03  128x96  AVC, AAC", "", "5 files, 39.6 kB"}));
}

TEST_F(Screen, FitsALongListingIntoAnyTerminal) {
  copyOf("evening-tone.flac", "phone/Music/長い長い長い長い長い長い名前.flac");
  copyOf("pier.jpg", "phone/DCIM/a long name of a picture.jpg");
  for (const unsigned short columns : std::initializer_list<unsigned short>{20, 40, 60, 80, 120}) {
    Lines lines = linesOfScreen({"ls", "-l", "--no-color", "--internal", phone}, columns);
    lines.erase(lines.begin());  // the volume
    for (const std::string& line : lines) EXPECT_LE(umsctl::columnsOf(line), columns) << line;
  }
  Ended piped = umsctl({"ls", "-l", "--internal", phone});
  EXPECT_NE(piped.output.find("長い長い長い長い長い長い名前.flac"), std::string::npos);
}

TEST_F(Screen, ShowsTagsAndNamesThatDriveATerminalAsText) {
  sandbox.file("phone/Music/\x1b[31m\n.flac", songWithEvilTitle());
  for (const char* form : {"--long", "--tags"}) {
    const std::string shown =
        umsctl({"ls", form, "--no-color", "--internal", phone}, {.atTerminal = true, .columns = 200})
            .screen();
    EXPECT_EQ(shown.find('\x1b'), std::string::npos) << shown;
    EXPECT_NE(shown.find("Music/\\x1b[31m\\n.flac"), std::string::npos) << shown;
    EXPECT_NE(shown.find("\\x1b[2J\\n\\töne am Fluß"), std::string::npos) << shown;
  }
  Ended tree = umsctl({"tree", "--no-color", phone}, {.atTerminal = true});
  EXPECT_NE(tree.output.find("└── \\x1b[31m\\n.flac  13.4 kB"), std::string::npos) << tree.output;
}

TEST_F(Screen, ShowsANameThatDrivesATerminalAsTextInItsQuestion) {
  std::string odd = sandbox.file("computer/\x1b]0;evil\x07\n.mp3", "new");
  sandbox.file("phone/Music/\x1b]0;evil\x07\n.mp3", "old");
  RunningProgram program(pushing({odd}), {.atTerminal = true});
  program.waitForOutput(
      "\\x1b]0;evil\\x07\\n.mp3 is already on the device. Replace it? (y/n/all/none/quit) ");
  program.type("n\n");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.output.find("\x1b]"), std::string::npos);
}

TEST_F(Screen, TellsHowFarItIsWhileItReadsTags) {
  std::string film = sandbox.file("phone/0.mp4", bytesOf(media("harbour.mp4")));
  for (int i = 1; i < 1000; ++i)
    ASSERT_EQ(link(film.c_str(), (phone + "/" + std::to_string(i) + ".mp4").c_str()), 0);
  RunningProgram program({"ls", "--tags", "--internal", phone}, {.atTerminal = true});
  program.waitForOutput("/1000\r\x1b[K");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 0);
  EXPECT_NE(ended.output.find("\r\x1b[KReading tags  "), std::string::npos);
  EXPECT_NE(ended.output.find("\r\x1b[K  video     12.3 kB  0.mp4  (0:03, 128x96, AVC, AAC)\r\n"),
            std::string::npos);
}

TEST_F(Screen, ListsAFileThatCannotBeReadAsSuchForProgramsToo) {
  copyOf("pier.jpg", "phone/a.jpg");
  sandbox.file("phone/b.jpg", "no picture");
  for (const char* form : {"--tags", "--long"}) {
    auto files = objectsOf(umsctl({"ls", "--json", form, "--internal", phone}), "file");
    ASSERT_EQ(files.size(), 2u);
    EXPECT_FALSE(files[0].contains("unreadable"));
    EXPECT_EQ(files[1]["unreadable"], true);
  }
  EXPECT_FALSE(objectsOf(umsctl({"ls", "--json", "--internal", phone}), "file").at(1).contains("unreadable"));
}

TEST_F(Screen, EndsWithATableOfWhatFailedAndWhatToDo) {
  std::string folder = sandbox.folder("album.mp3");
  std::vector<std::string> line = pushing({"missing.mp3", media("notes.txt"), "\x1b[2J.mp3", folder});
  line.push_back("--no-color");
  Lines lines = linesOfScreen(line, 200);
  ASSERT_GE(lines.size(), 7u);
  lines.erase(lines.begin(), lines.end() - 7);
  EXPECT_TRUE(lines[0].ends_with("umsctl: 4 failed:")) << lines[0];
  lines.erase(lines.begin());
  EXPECT_EQ(lines.at(0).substr(0, 6), "  FILE");
  EXPECT_TRUE(lines.at(1).starts_with("  missing.mp3 ")) << lines.at(1);
  EXPECT_TRUE(
      lines.at(1).ends_with("  No such file or directory                        "
                            "check the name and its permissions"))
      << lines.at(1);
  EXPECT_NE(lines.at(2).find(
                "  0x14000002  by its name it is no music, image or video file  umsctl put copies any file"),
            std::string::npos)
      << lines.at(2);
  EXPECT_TRUE(lines.at(3).starts_with("  \\x1b[2J.mp3 ")) << lines.at(3);
  EXPECT_TRUE(lines.at(4).ends_with("name the files in it")) << lines.at(4);
  EXPECT_EQ(lines.at(5), "0 copied (0 B), 4 failed");
}

TEST_F(Screen, WrapsTheTableOfFailuresInANarrowTerminalWithoutLosingAWord) {
  std::vector<std::string> line = pushing({media("notes.txt")});
  line.push_back("--no-color");
  Lines lines = linesOfScreen(line, 60);
  std::string causes;
  for (const std::string& shown : lines) {
    if (!shown.starts_with("  ")) continue;
    EXPECT_LE(umsctl::columnsOf(shown), 60u) << shown;
    causes += shown + " ";
  }
  for (const char* word : {"0x14000002", "music,", "video", "put", "copies"})
    EXPECT_NE(causes.find(word), std::string::npos) << word;
}

TEST_F(Screen, FollowsAWindowThatIsResizedDuringATransfer) {
  std::string film = hugeFile("film with a long name.mp4");
  if (film.empty()) GTEST_SKIP() << "not enough room for a copy that takes long enough";
  RunningProgram program(pushing({film}), {.atTerminal = true, .columns = 100});
  program.waitForOutput("/1  film with a long name.mp4");
  program.resize(36);
  program.waitForOutput("...\r\x1b[K", 3);
  program.type("\x03");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  const std::string cut = "...\r\x1b[K";
  size_t at = ended.output.find(cut) + cut.size();
  for (int i = 0; i < 2; ++i) {
    size_t end = ended.output.find(cut, at);
    std::string line = ended.output.substr(at, end + 3 - at);
    EXPECT_LT(umsctl::columnsOf(line), 36u) << line;
    at = end + cut.size();
  }
  EXPECT_FALSE(exists(phone + "/DCIM/Camera/film with a long name.mp4"));
}

}  // namespace
}  // namespace umsservice::testing
