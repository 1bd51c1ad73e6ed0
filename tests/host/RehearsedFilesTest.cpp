#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "Sandbox.h"
#include "rehearsal/RehearsedFiles.h"

namespace umsservice::testing {
namespace {

/// What a command does to its files, on files of which every change is only noted down.
class RehearsedFiles : public ::testing::Test {
 protected:
  Sandbox sandbox;
  std::string phone = sandbox.folder("phone");
  std::string song = sandbox.file("phone/Music/song.mp3", "la la la");
  umsctl::RehearsedFiles files{posixFileSystem()};

  std::string at(const std::string& relative) const { return sandbox.at("phone/" + relative); }
  void write(const std::string& path, const std::string& bytes) {
    auto made = files.createFile(path);
    ASSERT_TRUE(made) << made.error().words();
    EXPECT_FALSE((*made)->write(bytes.data(), bytes.size()).error);
    EXPECT_TRUE((*made)->close());
  }
  std::string read(const std::string& path) {
    auto opened = files.openForReading(path);
    if (!opened) return opened.error().words();
    char buffer[100];
    auto length = (*opened)->read(buffer, sizeof buffer);
    return length ? std::string(buffer, *length) : length.error().words();
  }
  std::vector<std::string> names(const std::string& folder) {
    std::vector<std::string> found;
    auto listed = files.list(folder);
    if (!listed) return {listed.error().words()};
    for (const auto& entry : *listed)
      found.push_back(entry.name + (entry.type == FileType::Directory ? "/" : ""));
    std::sort(found.begin(), found.end());
    return found;
  }
};

using Names = std::vector<std::string>;

TEST_F(RehearsedFiles, ShowWhatIsThere) {
  EXPECT_EQ(read(song), "la la la");
  EXPECT_EQ(names(phone), Names{"Music/"});
  EXPECT_EQ(files.attributes(song)->size, 8u);
  EXPECT_EQ(files.attributes(at("none")).error().systemNumber, ENOENT);
}

TEST_F(RehearsedFiles, ShowWhatWasWrittenAndTouchNothing) {
  ASSERT_TRUE(files.createFolders(at("Podcast/News")));
  write(at("Podcast/News/News.xml"), "<rss/>");
  EXPECT_EQ(read(at("Podcast/News/News.xml")), "<rss/>");
  EXPECT_EQ(names(phone), (Names{"Music/", "Podcast/"}));
  EXPECT_EQ(names(at("Podcast/News")), Names{"News.xml"});
  EXPECT_EQ(files.linkAttributes(at("Podcast/News/News.xml"))->size, 6u);
  EXPECT_EQ(treeOf(phone), (Names{"Music/", "Music/song.mp3"}));
}

TEST_F(RehearsedFiles, ShowOneItemUnderEveryPathThatLeadsThere) {
  ASSERT_EQ(symlink("phone", sandbox.at("link").c_str()), 0);
  write(at("Music/../Music/new.mp3"), "new");
  EXPECT_EQ(read(sandbox.at("link/Music/new.mp3")), "new");
  ASSERT_TRUE(files.remove(sandbox.at("link/Music/song.mp3")));
  EXPECT_FALSE(files.exists(song));
}

TEST_F(RehearsedFiles, HideWhatWasRemovedWithEverythingInIt) {
  ASSERT_TRUE(files.remove(at("Music")));
  EXPECT_EQ(read(song), "No such file or directory");
  EXPECT_TRUE(names(phone).empty());
  EXPECT_FALSE(files.createNewFile(song));
  ASSERT_TRUE(files.createFolders(at("Music")));
  EXPECT_TRUE(names(at("Music")).empty());
  EXPECT_EQ(bytesOf(song), "la la la");
}

TEST_F(RehearsedFiles, TellAReplacedFileFromANewOne) {
  EXPECT_EQ(files.createNewFile(song).error().systemNumber, EEXIST);
  ASSERT_TRUE(files.remove(song));
  ASSERT_TRUE(files.createNewFile(song));
  write(at("Music/new.mp3"), "new");
  EXPECT_TRUE(files.hasReplaced(song));
  EXPECT_FALSE(files.hasReplaced(at("Music/new.mp3")));
  EXPECT_EQ(bytesOf(song), "la la la");
}

TEST_F(RehearsedFiles, MoveWithTheBytes) {
  ASSERT_TRUE(files.move(song, at("Music/other.mp3")));
  EXPECT_EQ(read(at("Music/other.mp3")), "la la la");
  write(at("Music/third.mp3"), "third");
  EXPECT_EQ(files.move(at("Music/third.mp3"), at("Music/other.mp3")).error().systemNumber, EEXIST);
  ASSERT_TRUE(files.replace(at("Music/third.mp3"), at("Music/other.mp3")));
  EXPECT_EQ(names(at("Music")), Names{"other.mp3"});
  EXPECT_EQ(read(at("Music/other.mp3")), "third");
  EXPECT_EQ(treeOf(phone), (Names{"Music/", "Music/song.mp3"}));
}

TEST_F(RehearsedFiles, CopyWithoutReadingAndReadOnWhereTheCopyStopped) {
  std::string source = sandbox.patternFile("source", 10'000);
  auto reading = files.openForReading(source);
  auto writing = files.createNewFile(at("copy"));
  ASSERT_TRUE(reading && writing);
  EXPECT_EQ((*writing)->copyFrom(**reading, 6000), 6000u);
  char buffer[5000];
  auto rest = (*reading)->read(buffer, sizeof buffer);
  ASSERT_TRUE(rest);
  EXPECT_EQ(std::string(buffer, *rest), bytesOf(source).substr(6000, *rest));
  EXPECT_EQ(files.attributes(at("copy"))->size, 6000u);
}

TEST_F(RehearsedFiles, KeepToThePermissionsOfTheFolder) {
  chmod(at("Music").c_str(), 0500);
  WithoutRootPowers ordinary;
  EXPECT_EQ(files.createNewFile(at("Music/new.mp3")).error().systemNumber, EACCES);
  EXPECT_EQ(files.remove(song).error().systemNumber, EACCES);
  EXPECT_EQ(files.createFolders(at("Music/Live")).error().systemNumber, EACCES);
}

TEST_F(RehearsedFiles, TakeRoomAndGiveItBackAndCanBeFull) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("volume"), 1 << 20);
  const std::string old = sandbox.patternFile("volume/old", 100'000);
  const uint64_t free = volume.freeBytes();
  auto made = files.createNewFile(sandbox.at("volume/new"));
  ASSERT_TRUE(made);
  const std::string bytes(50'000, 'x');
  EXPECT_EQ((*made)->write(bytes.data(), bytes.size()).written, bytes.size());
  EXPECT_EQ(files.spaceOf(volume.path()).after.free, free - 53'248);  // thirteen blocks
  EXPECT_EQ(files.spaceOf(volume.path()).before.free, free);
  ASSERT_TRUE(files.remove(old));
  EXPECT_EQ(files.space(volume.path())->free, free - 53'248 + 102'400);
  const std::string much(2'000'000, 'x');
  WriteOutcome written = (*made)->write(much.data(), much.size());
  ASSERT_TRUE(written.error);
  EXPECT_EQ(written.error->systemNumber, ENOSPC);
  EXPECT_EQ(files.space(volume.path())->free, 0u);
  EXPECT_EQ(volume.freeBytes(), free);
}

}  // namespace
}  // namespace umsservice::testing
