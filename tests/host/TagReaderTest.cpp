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

TEST_F(Tags, OfAnImageAreItsNameAndSize) {
  auto tags = read(media("sunrise.jpg"));
  ASSERT_TRUE(tags);
  EXPECT_EQ(tags->keys().size(), 3u);
  EXPECT_EQ(tags->string("FileName"), "sunrise.jpg");
}

TEST_F(Tags, AreAbsentForFilesThatAreBrokenMissingOrNoFiles) {
  for (const char* name :
       {"noise.mp3", "noise.flac", "noise.m4a", "noise.mp4", "noise.ogg", "noise.wma", "noise.wav"}) {
    EXPECT_FALSE(read(sandbox.patternFile(name, 5000))) << name;
    EXPECT_FALSE(read(sandbox.file(name, ""))) << name;
  }
  EXPECT_FALSE(read(sandbox.at("missing.mp3")));
  EXPECT_FALSE(read(sandbox.folder("album.mp3")));
  ASSERT_EQ(mkfifo(sandbox.at("pipe.mp3").c_str(), 0600), 0);
  EXPECT_FALSE(read(sandbox.at("pipe.mp3")));
}

TEST_F(Tags, OfCutAndDamagedFilesNeverBringTheProgramDown) {
  for (const std::string name : {"morning-tone.mp3", "evening-tone.flac", "paper-boat.m4a", "harbour.mp4"}) {
    const std::string whole = bytesOf(media(name));
    uint32_t random = 12345;
    for (size_t round = 0; round < 120; ++round) {
      std::string bytes = round < 60 ? whole.substr(0, whole.size() * round / 60) : whole;
      for (size_t i = 0; round >= 60 && i < 12; ++i) {
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
