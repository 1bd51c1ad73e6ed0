#include "TestDevice.h"

namespace umsservice::testing {
namespace {

using MediaTypes = DeviceTest;

struct Listed {
  int32_t mediaType;
  std::vector<std::string> extensions;
};

const Listed kLists[] = {
    {1, {"mp3", "m4a", "wav", "amr", "aac", "ogg", "flac", "mid", "imy", "3ga", "wma"}},
    {2, {"bmp", "gif", "jpg", "jpeg", "png", "wbmp"}},
    {3,
     {"asf", "avi", "flv", "k3g", "mkv", "mp4", "m4v", "mov", "mpg", "mpeg", "rm", "rmvb", "skm", "svi",
      "wmv", "3gp"}},
    {4, {"xml"}},
};

std::string upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(c));
  return text;
}

TEST_F(MediaTypes, KnowsEveryListedExtensionInAnyLetterCase) {
  for (const Listed& list : kLists) {
    for (const std::string& extension : list.extensions) {
      EXPECT_EQ(service->checkMediaType("/Volumes/CARD/x." + extension), list.mediaType) << extension;
      EXPECT_EQ(service->checkMediaType("x." + upper(extension)), list.mediaType) << extension;
    }
  }
  EXPECT_EQ(service->checkMediaType("Song.MP3"), 1);
  EXPECT_EQ(service->checkMediaType("clip.Mkv"), 3);
  EXPECT_EQ(service->checkMediaType("index.xml"), 4);
}

TEST_F(MediaTypes, TakesEverythingElseForUnknown) {
  for (const char* name : {"readme.txt", "noextension", "", ".mp3", "a.mp3.", "a.mp3.txt", "folder.mp3/file",
                           "mp3", "a.mp", "a.mp33", "a.m p3", "a.*"}) {
    EXPECT_EQ(service->checkMediaType(name), 0) << name;
  }
  EXPECT_EQ(service->checkMediaType(std::nullopt), 0);
}

TEST_F(MediaTypes, LooksOnlyAtTheTextAfterTheLastDotOfTheLastComponent) {
  EXPECT_EQ(service->checkMediaType("a.txt.mp3"), 1);
  EXPECT_EQ(service->checkMediaType("/x.mp4/y.jpg"), 2);
  EXPECT_EQ(service->checkMediaType("a..mp3"), 1);
}

TEST_F(MediaTypes, AreAllUnknownOnceTheServiceIsReleased) {
  service->exitServiceThread();
  EXPECT_EQ(service->checkMediaType("song.mp3"), 0);
  EXPECT_EQ(service->checkMediaType("index.xml"), 0);
}

TEST_F(MediaTypes, MatchAnExtensionAgainstAListInAnyLetterCase) {
  const Array list{"mp3", "Flac"};
  EXPECT_TRUE(service->checkContentWithExtentions("mp3", list));
  EXPECT_TRUE(service->checkContentWithExtentions("MP3", list));
  EXPECT_TRUE(service->checkContentWithExtentions("fLAC", list));
  EXPECT_FALSE(service->checkContentWithExtentions("wav", list));
  EXPECT_FALSE(service->checkContentWithExtentions("", list));
}

TEST_F(MediaTypes, HonourTheWildcardInFirstPositionOnly) {
  EXPECT_TRUE(service->checkContentWithExtentions("anything", Array{"*", "mp3"}));
  EXPECT_TRUE(service->checkContentWithExtentions("", Array{"*"}));
  EXPECT_FALSE(service->checkContentWithExtentions("anything", Array{"mp3", "*"}));
  EXPECT_FALSE(service->checkContentWithExtentions("anything", Array{"**"}));
}

TEST_F(MediaTypes, PassOverElementsThatAreNoTextAndRefuseNil) {
  const Array list{Value(), Null{}, 3, Array{"wav"}, "wav"};
  EXPECT_TRUE(service->checkContentWithExtentions("wav", list));
  EXPECT_FALSE(service->checkContentWithExtentions("3", list));
  EXPECT_FALSE(service->checkContentWithExtentions(std::nullopt, Array{"*"}));
  EXPECT_FALSE(service->checkContentWithExtentions("wav", std::nullopt));
  EXPECT_FALSE(service->checkContentWithExtentions("wav", Array()));
}

}  // namespace
}  // namespace umsservice::testing
