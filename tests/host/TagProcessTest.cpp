#include "FileTags.h"
#include "HostTest.h"
#include "TagProcess.h"

namespace umsservice::testing {
namespace {

using ReadingTags = HostTest;

/// The beginning of a film with a frame rate below zero, over which a reader divides by zero.
std::string deadlyFilm() {
  constexpr std::string_view kHex =
      "464c5601050000000900000000120001250000000000000002000a6f6e4d65746144617461080000000d000864757261"
      "74696f6e003ff0cccccccccccd000577696474680040660000000000000006686569676874004062000000000000000d"
      "766964656f64617461726174650040686a000000000000096672616d657261746500ff24000000000000000c76696465"
      "6f636f6465636964004000000000000000000d617564696f6461746172617465000000000000000000000f617564696f"
      "73616d706c65726174650040d5888000000000000f617564696f73616d706c6573697a65004030000000000000000673"
      "746572656f0100000c617564696f636f64656369640040000000000000000007656e636f64657202000d4c6176663539"
      "2e32372e313030000866696c6573697a650040d728c0000000000000090000013008000069000000000000002afff340"
      "c400143886700f581800c2a005034c74c74874c758f03ba0a90b666139b6273a9d666d4828ea6ee3bb918861fc7f2311"
      "8a4b0ee0606062c1f7880100432e1ffce74f48218801307c1f07c1f040100401004c1f07f820087fd1583e1800008108"
      "20c3000000000000740800006a00001a000000002afff342c40a1719e289979b50012d2452d2b2e4e898b8c00285fc32"
      "c16460312c8016116486b89a01938143204a0320";
  std::string bytes;
  for (size_t at = 0; at < kHex.size(); at += 2)
    bytes += static_cast<char>(std::stoi(std::string(kHex.substr(at, 2)), nullptr, 16));
  return bytes;
}

TEST_F(ReadingTags, InAnotherProcessGivesWhatItGivesHere) {
  umsctl::TagProcess::start();
  for (const char* name : {"morning-tone.mp3", "evening-tone.flac", "paper-boat.m4a", "pier.jpg",
                           "lighthouse.png", "harbour.mp4", "notes.txt"}) {
    auto here = umsctl::fileTags(media(name)), there = umsctl::TagProcess::read(media(name));
    ASSERT_TRUE(here && there) << name;
    EXPECT_TRUE(Value(*here).isEqual(Value(*there))) << name;
  }
  EXPECT_TRUE(umsctl::TagProcess::read(media("morning-tone.mp3"))->get("AlbumArt").data());
}

TEST_F(ReadingTags, GoesOnAfterAFileThatBringsAReaderDown) {
  umsctl::TagProcess::start();
  std::string film = sandbox.file("a.flv", deadlyFilm());
  for (int i = 0; i < 3; ++i) {
    umsctl::TagProcess::read(film);
    auto tags = umsctl::TagProcess::read(media("pier.jpg"));
    ASSERT_TRUE(tags);
    EXPECT_EQ(tags->string("Camera"), "Tinbox Pocket 3");
  }
}

TEST_F(ReadingTags, NeverTakesARunDown) {
  sandbox.file("phone/a.flv", deadlyFilm());
  sandbox.file("phone/b.mp4", bytesOf(media("harbour.mp4")));
  Ended listed = umsctl({"ls", "--tags", "--internal", phone});
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.error, "");
  auto lines = linesOf(listed.output);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].starts_with("video\t500\t" + phone + "/a.flv\t"));
  EXPECT_TRUE(lines[1].ends_with("\t0:03\t128x96\t\t\tAVC, AAC"));
  Ended pushed = umsctl({"push", "--internal", card, phone + "/a.flv", phone + "/b.mp4"});
  EXPECT_EQ(pushed.status, 0);
  EXPECT_EQ(bytesOf(card + "/DCIM/Camera/a.flv"), deadlyFilm());
}

}  // namespace
}  // namespace umsservice::testing
