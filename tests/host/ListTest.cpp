#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

class List : public HostTest {
 protected:
  std::vector<std::string> listing(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"ls", "--internal", phone, "--card", card};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  void copyOf(const std::string& name, const std::string& to) const {
    sandbox.file(to, bytesOf(media(name)));
  }
};

TEST_F(List, ShowsEachFileAsOneLineByVolumeAndTypeWhenPiped) {
  sandbox.file("phone/DCIM/Camera/trip.mp4", "moving");
  sandbox.file("phone/Music/b.mp3", "la");
  sandbox.file("phone/Music/Live/a.FLAC", "lala");
  sandbox.file("phone/notes.txt", "no media");
  sandbox.file("card/odd place/c.jpg", "");
  Ended ended = umsctl(listing());
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(
      linesOf(ended.output),
      (Lines{"music\t4\t" + phone + "/Music/Live/a.FLAC", "music\t2\t" + phone + "/Music/b.mp3",
             "video\t6\t" + phone + "/DCIM/Camera/trip.mp4", "image\t0\t" + card + "/odd place/c.jpg"}));
}

TEST_F(List, ShowsOneTypeWhenToldTo) {
  sandbox.file("phone/a.mp3", "la");
  sandbox.file("phone/b.jpg", "lu");
  sandbox.file("card/c.jpg", "li");
  EXPECT_EQ(linesOf(umsctl(listing({"--type", "image"})).output),
            (Lines{"image\t2\t" + phone + "/b.jpg", "image\t2\t" + card + "/c.jpg"}));
  EXPECT_EQ(umsctl(listing({"--type", "video"})).output, "");
}

TEST_F(List, ShowsTagsInFieldsAndFilesWithoutTagsToo) {
  copyOf("evening-tone.flac", "phone/Music/a.flac");
  sandbox.file("phone/Music/broken.mp3", "no sound at all");
  Ended ended = umsctl(listing({"--tags", "--type", "music"}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"music\t13407\t" + phone +
                       "/Music/a.flac\tAbendtöne am Fluß\tÜbungsensemble 音\tThree Small "
                       "Tones\tAmbient\t2\t2021\t0:02\t\t\t\t",
                   "music\t15\t" + phone + "/Music/broken.mp3\t\t\t\t\t\t\t\t\t\t\t"}));
}

TEST_F(List, ShowsPixelsDateCameraAndCodecsInFieldsBehindTheTagsOfMusic) {
  copyOf("pier.jpg", "phone/a.jpg");
  copyOf("harbour.mp4", "phone/b.mp4");
  EXPECT_EQ(
      linesOf(umsctl(listing({"--tags"})).output),
      (Lines{"image\t1041\t" + phone + "/a.jpg\t\t\t\t\t\t\t\t48x64\t2021-06-05 04:31:07\tTinbox Pocket 3\t",
             "video\t12262\t" + phone + "/b.mp4\t\t\t\t\t\t\t0:03\t128x96\t\t\tAVC, AAC"}));
}

TEST_F(List, ShowsTheEpisodesOfPodcasts) {
  std::string episode = sandbox.file("phone/Podcast/Tides/one.mp3", "low tide");
  sandbox.file("phone/Podcast/Tides/Tides.xml",
               "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<channel><Title>Tides</Title><Post><Title>Low "
               "water</Title><Url>http://tides/1</Url><FilePath>one.mp3</FilePath></Post></channel>\n");
  EXPECT_EQ(linesOf(umsctl(listing({"--type", "podcast"})).output), Lines{"podcast\t8\t" + episode});
  EXPECT_EQ(linesOf(umsctl(listing({"--type", "podcast", "--tags"})).output),
            Lines{"podcast\t8\t" + episode + "\tLow water\t\tTides\t\t\t\t\t\t\t\t"});
}

TEST_F(List, ShowsNoEpisodeThatAnIndexPlacesElsewhere) {
  sandbox.file("mine.mp3", "mine");
  sandbox.file("phone/Podcast/Tides/Tides.xml",
               "<channel><Title>Tides</Title><Post><Title>x</Title><Url>u</Url>"
               "<FilePath>../../../mine.mp3</FilePath></Post></channel>\n");
  Ended ended = umsctl(listing());
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.output, "");
}

TEST_F(List, LeavesOutWhatIsHiddenAndWhatIsNoFile) {
  sandbox.file("phone/.thumbnails/a.jpg", "small");
  sandbox.file("phone/Ringtones/b.mp3", "ring");
  sandbox.file("phone/Ringtones/.nomedia", "");
  sandbox.folder("phone/album.mp3");
  ASSERT_EQ(mkfifo((phone + "/pipe.mp3").c_str(), 0600), 0);
  ASSERT_EQ(symlink("nowhere", (phone + "/dangling.mp3").c_str()), 0);
  ASSERT_EQ(symlink(phone.c_str(), (phone + "/circle").c_str()), 0);
  Ended ended = umsctl(listing({"--tags"}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.output + ended.error, "");
}

TEST_F(List, ShowsOddNamesEscapedInOneLine) {
  sandbox.file("phone/\x1b[2J\t\n\xff.mp3", "la");
  EXPECT_EQ(umsctl(listing()).output, "music\t2\t" + phone + "/\\x1b[2J\\t\\n\\xff.mp3\n");
}

TEST_F(List, ShowsVolumesAndTotalsAtATerminal) {
  copyOf("paper-boat.m4a", "phone/Music/boat.m4a");
  sandbox.file("card/c.jpg", "li");
  Ended ended = umsctl(listing({"--tags"}), {.atTerminal = true});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(
      linesOf(ended.screen()),
      (Lines{"0  internal  " + phone + "\r",
             "  music      7.4 kB  Music/boat.m4a  (Paper Boat, Demo Ensemble, Three Small Tones, 0:02)\r",
             "1  card  " + card + "\r", "  image         2 B  c.jpg\r", "2 files, 7.4 kB\r"}));
}

TEST_F(List, NamesAVolumeThatCannotBeReadAndShowsTheOther) {
  sandbox.file("card/a.mp3", "la");
  chmod(phone.c_str(), 0);
  Ended ended = umsctl(listing(), {.withoutRootPowers = true});
  chmod(phone.c_str(), 0700);
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "umsctl: " + phone + ": Permission denied\n");
  EXPECT_EQ(ended.output, "music\t2\t" + card + "/a.mp3\n");
}

TEST_F(List, NamesAFolderThatCannotBeReadAndShowsTheOthers) {
  sandbox.file("phone/Music/a.mp3", "la");
  std::string closed = sandbox.folder("phone/Music/closed");
  chmod(closed.c_str(), 0);
  Ended ended = umsctl(listing(), {.withoutRootPowers = true});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "umsctl: " + closed + ": Permission denied\n");
  EXPECT_EQ(ended.output, "music\t2\t" + phone + "/Music/a.mp3\n");
}

TEST_F(List, GoesAsDeepAsPathsReach) {
  const std::string name(200, 'd');
  std::string path = phone;
  int folder = open(phone.c_str(), O_RDONLY | O_DIRECTORY);
  for (int depth = 0; depth < 25; ++depth) {
    ASSERT_EQ(mkdirat(folder, name.c_str(), 0700), 0);
    int below = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
    close(folder);
    folder = below;
    close(openat(folder, "a.mp3", O_CREAT | O_WRONLY, 0600));
  }
  close(folder);
  Ended ended = umsctl(listing());
  auto lines = linesOf(ended.output);
  ASSERT_FALSE(lines.empty());
  EXPECT_LT(lines.size(), 25u);
  EXPECT_GT(lines.size(), 15u);
  EXPECT_EQ(ended.status, 0);
}

TEST_F(List, EndsWithThreeForAMissingVolume) {
  EXPECT_EQ(umsctl({"ls", "--card", sandbox.at("none")}).status, 3);
}

}  // namespace
}  // namespace umsservice::testing
