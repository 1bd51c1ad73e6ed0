#include "TestDevice.h"

namespace umsservice::testing {
namespace {

using NoMedia = DeviceTest;

TEST_F(NoMedia, DropsWhatBeginsWithTheFolderOfAMarker) {
  const Array markers{"Music/Old/.nomedia"};
  EXPECT_FALSE(service->checkNoMedia("Music/Old/a.mp3", markers));
  EXPECT_FALSE(service->checkNoMedia("Music/Old/.nomedia", markers));
  EXPECT_FALSE(service->checkNoMedia("Music/Old", markers));
  EXPECT_FALSE(service->checkNoMedia("Music/Oldies/b.mp3", markers));
  EXPECT_TRUE(service->checkNoMedia("Music/Ol/c.mp3", markers));
  EXPECT_TRUE(service->checkNoMedia("music/old/d.mp3", markers));
  EXPECT_TRUE(service->checkNoMedia("Music/Ol", markers));
}

TEST_F(NoMedia, AtTheTopDropsEverything) {
  const Array markers{".nomedia"};
  for (const char* path : {"a.mp3", "Music/a.mp3", ".nomedia", ""}) {
    EXPECT_FALSE(service->checkNoMedia(path, markers)) << path;
  }
}

TEST_F(NoMedia, KeepsEverythingWithoutMarkersAndNothingOfNil) {
  EXPECT_TRUE(service->checkNoMedia("a.mp3", Array()));
  EXPECT_TRUE(service->checkNoMedia("a.mp3", std::nullopt));
  EXPECT_FALSE(service->checkNoMedia(std::nullopt, Array()));
  EXPECT_FALSE(service->checkNoMedia(std::nullopt, Array{"x/.nomedia"}));
}

TEST_F(NoMedia, PassesOverMarkersThatAreNoText) {
  const Array markers{Value(), Null{}, 3, "b/.nomedia"};
  EXPECT_TRUE(service->checkNoMedia("a/x.mp3", markers));
  EXPECT_FALSE(service->checkNoMedia("b/x.mp3", markers));
}

TEST_F(NoMedia, LooksAtEveryMarker) {
  // Sorted, one prefix of another, and neighbours of it: the answer must not depend on their order.
  const Array markers{"b/.nomedia",   "a/b/.nomedia",  "a/b/c/.nomedia",
                      "a-b/.nomedia", "a/bz/.nomedia", "\xff/.nomedia"};
  for (const char* path :
       {"a/b", "a/b/x", "a/b/c/x", "a/bc", "a/bz", "a/b\xff", "a-bx", "b", "bb", "\xff\xff"}) {
    EXPECT_FALSE(service->checkNoMedia(path, markers)) << path;
  }
  for (const char* path : {"a", "a/", "a/a", "a/ab", "c", "a-", "", "B"}) {
    EXPECT_TRUE(service->checkNoMedia(path, markers)) << path;
  }
}

TEST_F(NoMedia, FiltersAListInItsOrder) {
  const Array paths{"z.mp3", "Old/a.mp3", Value(), "b.mp3", 3, "Oldies/c.mp3", "a.mp3"};
  const Array markers{"Old/.nomedia"};
  EXPECT_TRUE(
      Value(*service->removeFileListByNoMedia(paths, markers)).isEqual(Array{"z.mp3", "b.mp3", "a.mp3"}));
  EXPECT_EQ(paths.count(), 7u);
  EXPECT_TRUE(Value(*service->removeFileListByNoMedia(Array{"a", "b"}, Array())).isEqual(Array{"a", "b"}));
  EXPECT_EQ(service->removeFileListByNoMedia(std::nullopt, markers)->count(), 0u);
}

}  // namespace
}  // namespace umsservice::testing
