#include "SyncTest.h"

namespace umsservice::testing {
namespace {

class MediaSyncStop : public SyncTest {
 protected:
  /// Does something once, when the first copy reads.
  void onFirstRead(const std::function<void()>& action) {
    files.setFault([action, done = false](FileCall call, const std::string&) mutable {
      if (call == FileCall::Read && !std::exchange(done, true)) action();
      return 0;
    });
  }
};

TEST_F(MediaSyncStop, OnACancelBetweenFilesLeavesTheRestAndForgetsTheCancel) {
  add("a.mp3");
  add("b.mp3");
  add("c.mp3");
  notifications.onEach([&](const Notification& posted) {
    if (posted.name == kMediaResultNotification) service->cancelFileAction(kRequest);
  });
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/a.mp3"}));
  EXPECT_EQ(told(), (Lines{"progress 1/3 fail 0 status 2 33% a.mp3",
                           "result 0x10000001 volume 0 $/internal/Music/a.mp3",
                           "progress 2/3 fail 0 status 3 100% a.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 done 0x00000000 5 bytes to $/internal/Music/a.mp3",
                           "1 not reached 0x10000008 0 bytes to (none)",
                           "2 not reached 0x10000008 0 bytes to (none)"}));
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
}

TEST_F(MediaSyncStop, OnACancelInMidCopyLeavesWholeUnitsAndForgetsTheCancel) {
  const std::string from = add(sandbox.patternFile("in/a.mp3", 20'000), "a.mp3", nullptr);
  add("b.mp3");
  onFirstRead([&] { service->cancelFileAction(kRequest); });
  EXPECT_TRUE(run());  // a stopped copy is no failed one
  EXPECT_EQ(bytesOf(internal + "/Music/a.mp3"), bytesOf(from).substr(0, 4096));
  EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
  EXPECT_EQ(ends(), (Lines{"0 not reached 0x10000008 4096 bytes to $/internal/Music/a.mp3",
                           "1 not reached 0x10000008 0 bytes to (none)"}));
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
}

TEST_F(MediaSyncStop, OnACancelOfAnotherRequestGoesOn) {
  add("a.mp3");
  service->cancelFileAction(kRequest + 1);
  EXPECT_TRUE(run());
  EXPECT_EQ(results(), std::vector<uint32_t>{kItemTransferred});
  EXPECT_TRUE(service->isCancelServiceId(kRequest + 1));
}

TEST_F(MediaSyncStop, OnAReleaseBetweenFilesNamesTheDeviceAndLeavesTheCancelListAlone) {
  add("a.mp3");
  add("b.mp3");
  notifications.onEach([&](const Notification& posted) {
    if (posted.name == kMediaResultNotification) service->exitServiceThread();
  });
  EXPECT_TRUE(run());
  EXPECT_EQ(told(), (Lines{"progress 1/2 fail 0 status 2 50% a.mp3",
                           "result 0x10000001 volume 0 $/internal/Music/a.mp3",
                           "progress 2/2 fail 0 status 3 100% b.mp3"}));
  EXPECT_EQ(ends().at(1), "1 not reached 0x10000008 0 bytes to $/internal/Music/b.mp3");
  notifications.onEach(nullptr);
  expectLine(surroundings, 5, kSyncMethod, "Device Disconnected - location-1", [&] { run(); });
}

TEST_F(MediaSyncStop, OnAReleaseInMidCopyLeavesWholeUnits) {
  const std::string from = add(sandbox.patternFile("in/a.mp3", 20'000), "a.mp3", nullptr);
  add("b.mp3");
  onFirstRead([&] { service->exitServiceThread(); });
  EXPECT_TRUE(run());
  EXPECT_EQ(bytesOf(internal + "/Music/a.mp3"), bytesOf(from).substr(0, 4096));
  EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
  EXPECT_FALSE(exists(internal + "/Music/b.mp3"));
}

TEST_F(MediaSyncStop, OnAReleaseOfTheLastReferenceInAHandlerEndsTheRun) {
  add(sandbox.patternFile("in/a.mp3", 3'000'000), "a.mp3", nullptr);
  add("b.mp3");
  notifications.onEach([&](const Notification&) { service.reset(); });
  ASSERT_TRUE(service->syncContents(kRequest, request.contents, kMediaMusic, true));
  ASSERT_TRUE(items.waitFor(2));
  EXPECT_EQ(bytesOf(internal + "/Music/a.mp3").size(), 245u * 4096);
  EXPECT_FALSE(exists(internal + "/Music/b.mp3"));
}

TEST_F(MediaSyncStop, WhereTheVolumeGoesAwayInMidCopyGoesToTheOtherOne) {
  REQUIRE_TMPFS_VOLUMES();
  auto volume = std::make_unique<TmpfsVolume>(internal, 4 << 20);
  add(sandbox.patternFile("in/a.mp3", 600'000), "a.mp3", nullptr);
  // The volume is pulled; from then on the device answers with errors.
  files.setFault([&, gone = false](FileCall call, const std::string& path) mutable {
    if (call == FileCall::Write && !std::exchange(gone, true)) volume->vanish();
    return gone && path.starts_with(internal) ? EIO : 0;
  });
  EXPECT_FALSE(run());  // the answer is the last copy to the first volume
  EXPECT_EQ(results(), std::vector<uint32_t>{kItemTransferred});
  EXPECT_EQ(bytesOf(card + "/Music/a.mp3"), bytesOf(sandbox.at("in/a.mp3")));
}

}  // namespace
}  // namespace umsservice::testing
