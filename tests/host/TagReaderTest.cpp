#include <sys/stat.h>

#include "HostTest.h"
#include "TagReader.h"

namespace umsservice::testing {
namespace {

class Tags : public HostTest {
 protected:
  umsctl::TagReader reader{posixFileSystem()};

  MaybeDictionary read(const std::string& path) {
    auto builder = reader.getBuilder(path);
    return builder ? builder->build(path) : std::nullopt;
  }
};

TEST_F(Tags, HaveTheUsualFieldsOfAnMp3) {
  auto tags = read(media("morning-tone.mp3"));
  ASSERT_TRUE(tags);
  EXPECT_EQ(tags->string("Title"), "Morning Tone");
  EXPECT_EQ(tags->string("Artist"), "Demo Ensemble");
  EXPECT_EQ(tags->string("Album"), "Three Small Tones");
  EXPECT_EQ(tags->string("Genre"), "Ambient");
  EXPECT_EQ(tags->get("TrackNumber").unsignedIntValue(), 1u);
  EXPECT_EQ(tags->get("Year").unsignedIntValue(), 2021u);
  EXPECT_EQ(tags->get("Duration").unsignedIntValue(), 3u);
  EXPECT_EQ(tags->string("FileName"), "morning-tone.mp3");
  EXPECT_EQ(tags->string("FilePath"), media("morning-tone.mp3"));
  EXPECT_EQ(tags->get("FileSize").unsignedLongLongValue(), bytesOf(media("morning-tone.mp3")).size());
}

TEST_F(Tags, HaveTheFrontCoverAsItStandsInTheFile) {
  auto art = read(media("morning-tone.mp3"))->get("AlbumArt").data();
  ASSERT_TRUE(art);
  std::string bytes(reinterpret_cast<const char*>(art->data()), art->size());
  EXPECT_TRUE(bytes.starts_with("\xff\xd8\xff"));
  EXPECT_NE(bytesOf(media("morning-tone.mp3")).find(bytes), std::string::npos);
  EXPECT_FALSE(read(media("paper-boat.m4a"))->contains("AlbumArt"));
}

TEST_F(Tags, AreReadFromOtherFormatsBeyondAscii) {
  EXPECT_EQ(read(media("evening-tone.flac"))->string("Title"), "Abendtöne am Fluß");
  EXPECT_EQ(read(media("evening-tone.flac"))->string("Artist"), "Übungsensemble 音");
  EXPECT_EQ(read(media("paper-boat.m4a"))->get("TrackNumber").unsignedIntValue(), 3u);
  EXPECT_EQ(read(media("harbour.mp4"))->get("Duration").unsignedIntValue(), 3u);
}

TEST_F(Tags, OfASoundWithoutAnyAreItsNameAndLength) {
  auto tags = read(media("plain-hum.mp3"));
  ASSERT_TRUE(tags);
  EXPECT_FALSE(tags->contains("Title"));
  EXPECT_EQ(tags->get("Duration").unsignedIntValue(), 2u);
}

TEST_F(Tags, OfAnImageAreItsPixelsAsShownDateAndCamera) {
  auto tags = read(media("pier.jpg"));
  ASSERT_TRUE(tags);
  EXPECT_EQ(tags->string("FileName"), "pier.jpg");
  EXPECT_EQ(tags->get("Width").unsignedIntValue(), 48u);  // taken upright, written lying down
  EXPECT_EQ(tags->get("Height").unsignedIntValue(), 64u);
  EXPECT_EQ(tags->string("DateTaken"), "2021-06-05 04:31:07");
  EXPECT_EQ(tags->string("Camera"), "Tinbox Pocket 3");
}

TEST_F(Tags, OfAnImageThatNoCameraMadeAreItsPixels) {
  for (const char* name : {"sunrise.jpg", "lighthouse.png"}) {
    auto tags = read(media(name));
    ASSERT_TRUE(tags);
    EXPECT_EQ(tags->get("Width").unsignedIntValue(), 96u);
    EXPECT_EQ(tags->get("Height").unsignedIntValue(), 64u);
    EXPECT_EQ(tags->keys().size(), 5u);
  }
}

TEST_F(Tags, OfAnImageLeaveOutWhatTheCameraDidNotKnow) {
  std::string bytes = bytesOf(media("pier.jpg"));
  bytes.replace(bytes.find("2021:06:05"), 10, "0000:00:00");
  bytes.replace(bytes.find("Pocket 3"), 8, "\xff\xfe\xff\xfe\xff\xfe\xff\xfe");
  auto tags = read(sandbox.file("odd.jpg", bytes));
  ASSERT_TRUE(tags);
  EXPECT_FALSE(tags->contains("DateTaken"));
  EXPECT_EQ(tags->string("Camera"), "Tinbox");
}

TEST_F(Tags, OfAVideoAreItsLengthPixelsAndCodecs) {
  auto tags = read(media("harbour.mp4"));
  ASSERT_TRUE(tags);
  EXPECT_EQ(tags->get("Duration").unsignedIntValue(), 3u);
  EXPECT_EQ(tags->get("Width").unsignedIntValue(), 128u);
  EXPECT_EQ(tags->get("Height").unsignedIntValue(), 96u);
  EXPECT_EQ(tags->string("VideoCodec"), "AVC");
  EXPECT_EQ(tags->string("AudioCodec"), "AAC");
}

TEST_F(Tags, AreReadFromFilesWhoseNamesAreNoUtf8) {
  EXPECT_TRUE(read(sandbox.file("caf\xe9.jpg", bytesOf(media("pier.jpg"))))->contains("Camera"));
  EXPECT_TRUE(read(sandbox.file("caf\xe9.mp4", bytesOf(media("harbour.mp4"))))->contains("VideoCodec"));
}

TEST_F(Tags, OfAKindThatNobodyReadsAreTheNameAndSize) {
  for (const char* name : {"old.wbmp", "ring.imy"}) {
    auto tags = read(sandbox.file(name, "anything"));
    ASSERT_TRUE(tags);
    EXPECT_EQ(tags->keys().size(), 3u);
  }
}

TEST_F(Tags, AreAbsentForFilesThatAreBrokenMissingOrNoFiles) {
  for (const char* name :
       {"noise.mp3", "noise.flac", "noise.m4a", "noise.mp4", "noise.ogg", "noise.wma", "noise.wav",
        "noise.jpg", "noise.png", "noise.gif", "noise.bmp", "noise.mkv", "noise.avi", "noise.3gp"}) {
    EXPECT_FALSE(read(sandbox.patternFile(name, 5000))) << name;
    EXPECT_FALSE(read(sandbox.file(name, ""))) << name;
  }
  EXPECT_FALSE(read(sandbox.at("missing.mp3")));
  EXPECT_FALSE(read(sandbox.folder("album.mp3")));
  for (const char* name : {"pipe.mp3", "pipe.jpg", "pipe.mp4"}) {
    ASSERT_EQ(mkfifo(sandbox.at(name).c_str(), 0600), 0);
    EXPECT_FALSE(read(sandbox.at(name))) << name;
  }
}

TEST_F(Tags, OfCutAndDamagedFilesNeverBringTheProgramDown) {
  constexpr size_t kCuts = 10;
  for (const std::string name : {"morning-tone.mp3", "evening-tone.flac", "paper-boat.m4a", "harbour.mp4",
                                 "pier.jpg", "lighthouse.png"}) {
    const std::string whole = bytesOf(media(name));
    uint32_t random = 12345;
    for (size_t round = 0; round < 2 * kCuts; ++round) {
      std::string bytes = round < kCuts ? whole.substr(0, whole.size() * round / kCuts) : whole;
      for (size_t i = 0; round >= kCuts && i < 12; ++i) {
        random = random * 1664525 + 1013904223;
        bytes[random % (i < 6 ? std::min<size_t>(bytes.size(), 600) : bytes.size())] =
            static_cast<char>(random >> 24);
      }
      std::string path = sandbox.file(name, bytes);
      auto tags = read(path);
      if (tags) {
        EXPECT_EQ(tags->string("FilePath"), path);
      }
    }
  }
}

}  // namespace
}  // namespace umsservice::testing
