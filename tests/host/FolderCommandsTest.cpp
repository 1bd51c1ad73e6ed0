#include <sys/stat.h>
#include <unistd.h>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;
using Df = HostTest;
using Tree = HostTest;
using Mkdir = HostTest;
using Rmdir = HostTest;

TEST_F(Df, ShowsTotalAndFreeSpaceOfEachVolume) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume internal(phone, 8 << 20);
  TmpfsVolume external(card, 1 << 20);
  sandbox.file("card/song.mp3", std::string(4096, 'x'));
  Ended exact = umsctl({"df", "--bytes", "--internal", phone, "--card", card});
  EXPECT_EQ(exact.status, 0);
  EXPECT_EQ(linesOf(exact.output), (Lines{"VOLUME  KIND               TOTAL            FREE  FOLDER",
                                          "0       internal         8388608         8388608  " + phone,
                                          "1       card             1048576         1044480  " + card}));
  Ended spoken = umsctl({"df", "--card", card});
  EXPECT_EQ(linesOf(spoken.output).back(), "0       card              1.0 MB          1.0 MB  " + card);
}

TEST_F(Df, ShowsABarForEachVolumeAtATerminal) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume internal(phone, 8 << 20);
  TmpfsVolume external(card, 1 << 20);
  sandbox.file("card/song.mp3", std::string(1 << 20, 'x'));
  Ended ended =
      umsctl({"df", "--no-color", "--internal", phone, "--card", card}, {.atTerminal = true, .columns = 200});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"VOLUME  KIND      USED                           FREE   TOTAL  FOLDER\r",
                   "0       internal  [                    ]   0%  8.4 MB  8.4 MB  " + phone + "\r",
                   "1       card      [====================] 100%     0 B  1.0 MB  " + card + "\r"}));
}

TEST_F(Df, CutsTheFolderWhereTheTerminalIsNarrow) {
  Ended ended = umsctl({"df", "--no-color", "--internal", phone}, {.atTerminal = true, .columns = 75});
  for (const std::string& line : linesOf(ended.output)) EXPECT_LE(line.size(), 76u) << line;
  EXPECT_TRUE(ended.output.ends_with(phone.substr(phone.size() - 3) + "\r\n")) << ended.output;
  EXPECT_NE(ended.output.find("..."), std::string::npos) << ended.output;
}

TEST_F(Tree, ShowsFoldersAndFilesOfBothVolumesInOrderWithoutHiddenOnes) {
  sandbox.file("phone/Music/b.mp3", std::string(12'900, 'x'));
  sandbox.file("phone/Music/a.mp3", "la");
  sandbox.file("phone/Music/Live/c\n.mp3", "li");
  sandbox.file("phone/Music Videos/d.mp4", "lu");
  sandbox.file("phone/.hidden/e.mp3", "lo");
  sandbox.file("phone/Music/.f.mp3", "le");
  sandbox.file("phone/top.jpg", "");
  Ended ended = umsctl({"tree", "--internal", phone, "--card", card + "/"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"0  internal  " + phone, "├── Music/", "│   ├── Live/", "│   │   └── c\\n.mp3  2 B",
                   "│   ├── a.mp3  2 B", "│   └── b.mp3  12.9 kB", "├── Music Videos/", "│   └── d.mp4  2 B",
                   "└── top.jpg  0 B", "1  card  " + card, "3 folders, 5 files, 12.9 kB"}));
}

TEST_F(Tree, ShowsASingleFolder) {
  sandbox.file("phone/Music/a.mp3", "la");
  Ended ended = umsctl({"tree", "phone"}, {.folder = sandbox.path()});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"phone", "└── Music/", "    └── a.mp3  2 B", "1 folder, 1 file, 2 B"}));
}

TEST_F(Tree, IsDrawnWithLettersWhereTheLocaleHasNoOthers) {
  sandbox.file("phone/Music/a.mp3", "la");
  sandbox.folder("phone/Videos");
  Ended ended = umsctl({"tree", phone}, {.environment = {{"LC_ALL", "C"}}});
  EXPECT_EQ(linesOf(ended.output),
            (Lines{phone, "|-- Music/", "|   `-- a.mp3  2 B", "`-- Videos/", "2 folders, 1 file, 2 B"}));
}

TEST_F(Tree, DoesNotFollowLinksInCircles) {
  sandbox.folder("phone/Music");
  ASSERT_EQ(symlink("..", (phone + "/Music/up").c_str()), 0);
  Ended ended = umsctl({"tree", "--internal", phone});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output), (Lines{"0  internal  " + phone, "└── Music/", "    └── up/  (a link)",
                                          "2 folders, 0 files, 0 B"}));
}

TEST_F(Tree, NamesAFolderThatCannotBeReadAndShowsTheOthers) {
  std::string closed = sandbox.folder("phone/A closed one");
  sandbox.file("phone/Music/a.mp3", "la");
  chmod(closed.c_str(), 0);
  Ended ended = umsctl({"tree", "--internal", phone}, {.withoutRootPowers = true});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "umsctl: " + closed + ": Permission denied\n");
  EXPECT_EQ(linesOf(ended.output), (Lines{"0  internal  " + phone, "├── A closed one/", "└── Music/",
                                          "    └── a.mp3  2 B", "2 folders, 1 file, 2 B"}));
}

TEST_F(Tree, NamesAFolderThatIsMissing) {
  Ended ended = umsctl({"tree", sandbox.at("missing")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "umsctl: " + sandbox.at("missing") + ": No such file or directory\n");
}

TEST_F(Mkdir, MakesAFolderWithThoseAboveItAndAcceptsOneThatIsThere) {
  for (int i = 0; i < 2; ++i) {
    Ended ended = umsctl({"mkdir", "phone/Music/Live/"}, {.folder = sandbox.path()});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output + ended.error, "");
  }
  EXPECT_EQ(treeOf(phone), (Lines{"Music/", "Music/Live/"}));
}

TEST_F(Mkdir, SaysWhyAFolderCannotBeMade) {
  std::string file = sandbox.file("phone/Music", "a file");
  Ended ended = umsctl({"mkdir", file + "/Live"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(), "umsctl: " + file + "/Live: Not a directory\n");
  EXPECT_EQ(umsctl({"mkdir", file}).causes(), "umsctl: " + file + ": File exists\n");
  EXPECT_EQ(umsctl({"mkdir", ""}).status, 1);
  EXPECT_EQ(bytesOf(file), "a file");
}

TEST_F(Rmdir, RemovesAnEmptyFolder) {
  std::string folder = sandbox.folder("phone/Music/Live");
  EXPECT_EQ(umsctl({"rmdir", folder + "/"}).status, 0);
  EXPECT_EQ(treeOf(phone), (Lines{"Music/"}));
}

TEST_F(Rmdir, RemovesAFullFolderOnlyWhenThatIsSaid) {
  std::string song = sandbox.file("phone/Music/.song.mp3", "la");
  std::string folder = phone + "/Music";
  Ended ended = umsctl({"rmdir", folder});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(),
            "umsctl: " + folder + ": it is not empty; --recursive removes it with everything in it\n");
  EXPECT_EQ(bytesOf(song), "la");
  EXPECT_EQ(umsctl({"rmdir", "--yes", "--recursive", folder}).status, 0);
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Rmdir, AsksBeforeAFullFolderGoes) {
  sandbox.file("phone/Music/Live/song.mp3", "lala");
  const Lines line{"rmdir", "-r", phone + "/Music"};
  Ended refused = umsctl(line, {.input = "y\n"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(
      refused.error,
      "umsctl: nothing is deleted: there is no terminal to ask at (--yes deletes without a question)\n");
  for (const std::string answer : {"n\n", "y\n"}) {
    EXPECT_TRUE(exists(phone + "/Music/Live/song.mp3"));
    RunningProgram program(line, {.atTerminal = true});
    program.waitForOutput("Delete the folder Music with 1 file (4 B) from the device? (y/n) ");
    program.type(answer);
    EXPECT_EQ(program.wait().status, 0);
  }
  EXPECT_TRUE(treeOf(phone).empty());
  sandbox.folder("phone/Empty");
  EXPECT_EQ(umsctl({"rmdir", "-r", phone + "/Empty"}).status, 0);  // nothing is lost
}

TEST_F(Rmdir, RemovesNothingButFolders) {
  std::string file = sandbox.file("phone/song.mp3", "la");
  std::string link = phone + "/link";
  ASSERT_EQ(symlink(card.c_str(), link.c_str()), 0);
  EXPECT_EQ(umsctl({"rmdir", "-r", file}).causes(), "umsctl: " + file + ": it is not a folder\n");
  EXPECT_EQ(umsctl({"rmdir", "-r", link}).causes(), "umsctl: " + link + ": it is not a folder\n");
  EXPECT_EQ(umsctl({"rmdir", phone + "/none"}).causes(),
            "umsctl: " + phone + "/none: No such file or directory\n");
  for (const std::string vague : {"/", ".", "phone/..", "./", ""})
    EXPECT_EQ(umsctl({"rmdir", "-r", vague}, {.folder = sandbox.path()}).status, 1) << vague;
  EXPECT_EQ(treeOf(phone), (Lines{"link/", "song.mp3"}));
  EXPECT_TRUE(exists(card));
}

}  // namespace
}  // namespace umsservice::testing
