#include "TestDevice.h"

namespace umsservice::testing {
namespace {

using MediaCopy = DeviceTest;

TEST_F(MediaCopy, PutsEachFileIntoTheFolderOfItsOwnTypeAndCountsAnUnknownOneAsFailed) {
  std::string song = sandbox.file("in/song.mp3", "la la la");
  std::string photo = sandbox.file("in/photo.JPG", "smile");
  std::string notes = sandbox.file("in/notes.txt", "milk");
  Array contents{content(song, "song.mp3"), content(photo, "photo.JPG"), content(notes, "notes.txt")};
  ASSERT_TRUE(service->copyContentsMacToDevice(7, contents, kMediaMusic, 0));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));

  EXPECT_EQ(bytesOf(internal + "/Music/song.mp3"), "la la la");
  EXPECT_EQ(bytesOf(internal + "/DCIM/Camera/photo.JPG"), "smile");
  EXPECT_EQ(treeOf(internal), (std::vector<std::string>{"DCIM/", "DCIM/Camera/", "DCIM/Camera/photo.JPG",
                                                        "Music/", "Music/song.mp3"}));
  auto outcomes = items.outcomes();
  ASSERT_EQ(outcomes.size(), 3u);
  EXPECT_EQ(outcomes[2].kind, ItemOutcome::Kind::Failed);
  EXPECT_EQ(outcomes[2].errorNumber, kErrorUnknownMediaType);
  auto results = notifications.named(kMediaResultNotification);
  EXPECT_EQ(numbers(results, key::kResultStatus),
            (std::vector<uint32_t>{kItemTransferred, kItemTransferred}));
}

}  // namespace
}  // namespace umsservice::testing
