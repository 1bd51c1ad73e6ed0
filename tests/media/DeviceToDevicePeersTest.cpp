#include <unistd.h>

#include "DeviceToDeviceTest.h"
#include "ScriptedTags.h"

namespace umsservice::testing {
namespace {

/// Copies between the services of two devices.
class DeviceToDevicePeers : public DeviceToDeviceTest {
 protected:
  DeviceToDevicePeers() { destination = second; }

  std::string onSecond(const std::string& name) const { return bytesOf(there + "/Music/" + name); }
  /// Does something once, when the destination writes for the first time.
  void onFirstWrite(const std::function<void()>& action) {
    files.setFault([action, done = false](FileCall call, const std::string&) mutable {
      if (call == FileCall::Write && !std::exchange(done, true)) action();
      return 0;
    });
  }

  std::shared_ptr<UMSService> second = secondDevice();
};

TEST_F(DeviceToDevicePeers, WriteEveryFileAndTellEveryStep) {
  add("a.mp3", "la");
  add("b.mp3", "lala");
  EXPECT_TRUE(run());
  EXPECT_EQ(asked, Lines{"location-2"});
  EXPECT_EQ(treeOf(there), (Lines{"Music/", "Music/a.mp3", "Music/b.mp3"}));
  EXPECT_EQ(onSecond("b.mp3"), "lala");
  EXPECT_EQ(
      told(),
      (Lines{"progress 1/2 fail 0 status 2 33% a.mp3", "result 0x10000001 volume 0 $/there/Music/a.mp3",
             "progress 2/2 fail 0 status 2 100% b.mp3", "result 0x10000001 volume 0 $/there/Music/b.mp3",
             "progress 2/2 fail 0 status 4 100% b.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 done 0x00000000 2 bytes to $/there/Music/a.mp3",
                           "1 done 0x00000000 4 bytes to $/there/Music/b.mp3"}));
}

TEST_F(DeviceToDevicePeers, NameTheSourceInProgressAndTheDestinationInResults) {
  request.playlistName = "Evening";
  add("a.mp3", "la");
  ASSERT_TRUE(run());
  EXPECT_EQ(typed(notifications.named(kTransferProgressNotification).at(0).userInfo),
            (Lines{"Current: u32 1", "CurrentProgress: u32 100", "Fail: u32 0", "FileName: text a.mp3",
                   "LocationId: text location-1", "MN: text Pocket Two", "Max: u32 1", "MaxProgress: u32 100",
                   "MediaNotiType: u32 1", "ServiceID: u32 7", "TransferStatus: u32 2"}));
  EXPECT_EQ(typed(notifications.named(kMediaResultNotification).at(0).userInfo),
            (Lines{"FilePath: text " + there + "/Music/a.mp3", "LocationId: text location-2",
                   "MN: text Pocket Two", "MediaNotiType: u32 1", "PlaylistName: text Evening",
                   "ResultStatus: u32 268435457", "ServiceID: u32 7", "VolumeIndex: u32 0"}));
}

TEST_F(DeviceToDevicePeers, EndWithARequestResultThroughTheQueue) {
  add("a.mp3", "la");
  ASSERT_TRUE(service->copyContentsDeviceToDevice(kRequest, request.contents, "location-1", "location-2",
                                                  kMediaMusic, 0));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  EXPECT_EQ(told().back(), "request 0x00000000");
  EXPECT_EQ(onSecond("a.mp3"), "la");
}

TEST_F(DeviceToDevicePeers, CarryTheDestinationsPathInTheTags) {
  surroundings.environment.mediaInfoFactory = std::make_shared<ScriptedTags>([](const std::string& path) {
    return Dictionary{{"Title", "Tune"}, {key::kFilePath, path}, {"readFrom", path}};
  });
  service = surroundings.makeService();
  useDelegate();
  const std::string from = add("a.mp3", "la");
  EXPECT_TRUE(run());
  auto results = notifications.named(kMediaResultNotification);
  EXPECT_EQ(texts(results, key::kFilePath), Lines{there + "/Music/a.mp3"});
  EXPECT_EQ(texts(results, "readFrom"), Lines{from});
  EXPECT_EQ(texts(results, "Title"), Lines{"Tune"});
}

TEST_F(DeviceToDevicePeers, ReplaceAnExistingFileWithoutAQuestion) {
  sandbox.file("there/Music/a.mp3", "something older and longer");
  add("a.mp3", "la");
  EXPECT_TRUE(run());
  EXPECT_EQ(onSecond("a.mp3"), "la");
  EXPECT_EQ(delegate.asked(), Lines{});
}

TEST_F(DeviceToDevicePeers, LeaveCompanionsBehind) {
  request.mediaType = kMediaVideo;
  sandbox.file("internal/Music/clip.smi", "subtitles");
  add("clip.mp4", "clip");
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(there), (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/clip.mp4"}));
}

TEST_F(DeviceToDevicePeers, OfOneAndTheSameDeviceKeepAFileThatIsAlreadyInItsPlace) {
  destination = service;
  request.destPath = internal + "/Music";
  add("a.mp3", "la");
  EXPECT_TRUE(run());
  EXPECT_EQ(bytesOf(internal + "/Music/a.mp3"), "la");
  EXPECT_EQ(told().at(0), "progress 1/1 fail 0 status 2 100% a.mp3");
  destination.reset();
}

TEST_F(DeviceToDevicePeers, StopWhenTheDestinationIsFull) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(there, 1 << 20);
  sandbox.folder("there/Music");
  volume.fillUpTo(10 * 4096);
  add("a.mp3", "la");
  addLarge("b.mp3", 100'000);
  add("c.mp3", "la");
  add("d.mp3", "la");
  EXPECT_FALSE(run());
  EXPECT_EQ(treeOf(there), (Lines{".filler", "Music/", "Music/a.mp3"}));
  EXPECT_EQ(
      told(),
      (Lines{"progress 1/4 fail 0 status 2 0% a.mp3", "result 0x10000001 volume 0 $/there/Music/a.mp3",
             "progress 4/4 fail 3 status 4 100% b.mp3", "result 0x1000000a volume 0 $/there/Music/b.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 done 0x00000000 2 bytes to $/there/Music/a.mp3",
                           "1 failed 0x1000000a 0 bytes to $/there/Music/b.mp3",
                           "2 not reached 0x1000000a 0 bytes to (none)",
                           "3 not reached 0x1000000a 0 bytes to (none)"}));
}

TEST_F(DeviceToDevicePeers, FailAFileWhoseBytesDoNotArriveAndGoOn) {
  addLarge("a.mp3", 600'000);
  add("b.mp3", "la");
  files.setWrittenBeforeFault(10'000);
  files.failNth(FileCall::Write, 2, ENOSPC);
  EXPECT_TRUE(run());
  EXPECT_EQ(ends().at(0), "0 failed 0x20000005 270336 bytes to $/there/Music/a.mp3");
  EXPECT_EQ(onSecond("a.mp3").size(), 270'336u);  // whole units only
  EXPECT_EQ(onSecond("b.mp3"), "la");
  EXPECT_EQ(linesOf(surroundings, kDeviceToDeviceMethod), Lines{});
}

TEST_F(DeviceToDevicePeers, FailAFileThatIsMissingOrNoFileAndGoOn) {
  request.contents = Array{content(internal + "/missing.mp3", "missing.mp3"),
                           content(sandbox.folder("internal/folder.mp3"), "folder.mp3")};
  add("b.mp3", "la");
  EXPECT_TRUE(run());
  EXPECT_EQ(ends(), (Lines{"0 failed 0x20000008 0 bytes to $/there/Music/missing.mp3",
                           "1 failed 0x20000005 0 bytes to $/there/Music/folder.mp3",
                           "2 done 0x00000000 2 bytes to $/there/Music/b.mp3"}));
}

TEST_F(DeviceToDevicePeers, TellTheObserverTheTruthAboutAFolderThatCannotBeMade) {
  sandbox.file("there/Music", "a file of that name");
  add("a.mp3", "la");
  add("empty.mp3", "");
  EXPECT_TRUE(run());  // the destination says YES all the same, and hosts take that for done
  EXPECT_EQ(results(), (std::vector<uint32_t>{kItemTransferred, kItemTransferred}));
  EXPECT_EQ(ends(), (Lines{"0 failed 0x20000002 0 bytes to $/there/Music/a.mp3",
                           "1 failed 0x20000002 0 bytes to $/there/Music/empty.mp3"}));
}

TEST_F(DeviceToDevicePeers, CopyAnEmptyFile) {
  add("empty.mp3", "");
  EXPECT_TRUE(run());
  EXPECT_TRUE(exists(there + "/Music/empty.mp3"));
  EXPECT_EQ(ends(), Lines{"0 done 0x00000000 0 bytes to $/there/Music/empty.mp3"});
}

TEST_F(DeviceToDevicePeers, FailAFileThatCannotBeMadeThere) {
  sandbox.file("there/Music/a.mp3/inside", "kept");
  add("a.mp3", "la");
  EXPECT_FALSE(run());
  EXPECT_EQ(bytesOf(there + "/Music/a.mp3/inside"), "kept");
  EXPECT_EQ(told(), Lines{"progress 1/1 fail 1 status 4 100% a.mp3"});
  EXPECT_EQ(ends(), Lines{"0 failed 0x20000005 0 bytes to $/there/Music/a.mp3"});
}

TEST_F(DeviceToDevicePeers, StopInMidFileOnACancelAndForgetIt) {
  const std::string from = addLarge("a.mp3", 20'000);
  add("b.mp3", "la");
  onFirstWrite([&] { service->cancelFileAction(kRequest); });
  EXPECT_FALSE(run());
  EXPECT_EQ(onSecond("a.mp3"), bytesOf(from).substr(0, 4096));
  EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
  EXPECT_EQ(ends(), (Lines{"0 not reached 0x10000008 4096 bytes to $/there/Music/a.mp3",
                           "1 not reached 0x10000008 0 bytes to (none)"}));
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
}

TEST_F(DeviceToDevicePeers, FinishTheFileWhoseLastBytesWereUnderWayAtTheCancel) {
  add("a.mp3", "la");
  add("b.mp3", "la");
  onFirstWrite([&] { service->cancelFileAction(kRequest); });
  EXPECT_TRUE(run());
  EXPECT_EQ(onSecond("a.mp3"), "la");
  EXPECT_FALSE(exists(there + "/Music/b.mp3"));
  EXPECT_EQ(told().back(), "progress 2/2 fail 0 status 3 100% a.mp3");
}

TEST_F(DeviceToDevicePeers, StopInMidFileWhenTheSourceIsReleased) {
  addLarge("a.mp3", 20'000);
  add("b.mp3", "la");
  onFirstWrite([&] { service->exitServiceThread(); });
  EXPECT_FALSE(run());
  EXPECT_EQ(onSecond("a.mp3").size(), 4096u);
  EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
}

TEST_F(DeviceToDevicePeers, StopBetweenFilesWhenTheSourceIsReleasedAndNameIt) {
  add("a.mp3", "la");
  add("b.mp3", "la");
  onFirstWrite([&] { service->exitServiceThread(); });
  EXPECT_TRUE(run());
  EXPECT_EQ(told().back(), "progress 2/2 fail 0 status 3 100% b.mp3");
  EXPECT_FALSE(exists(there + "/Music/b.mp3"));
  expectLine(surroundings, 5, kDeviceToDeviceMethod, "Device Disconnected - location-1", [&] { run(); });
}

TEST_F(DeviceToDevicePeers, FailTheRestWhenTheDestinationIsReleasedAndKeepWhatItHas) {
  addLarge("a.mp3", 20'000);
  addLarge("b.mp3", 20'000);
  sandbox.file("there/Music/b.mp3", "old");
  onFirstWrite([&] { second->exitServiceThread(); });
  EXPECT_FALSE(run());
  EXPECT_EQ(onSecond("a.mp3").size(), 4096u);
  EXPECT_EQ(onSecond("b.mp3"), "old");
  EXPECT_EQ(ends(), (Lines{"0 failed 0x20000005 4096 bytes to $/there/Music/a.mp3",
                           "1 failed 0x20000005 0 bytes to $/there/Music/b.mp3"}));
  EXPECT_EQ(told(),
            (Lines{"progress 2/2 fail 1 status 4 100% a.mp3", "progress 2/2 fail 2 status 4 100% b.mp3"}));
}

TEST_F(DeviceToDevicePeers, FailTheFileWhenTheDestinationIsPulledInMidCopy) {
  REQUIRE_TMPFS_VOLUMES();
  auto volume = std::make_unique<TmpfsVolume>(there, 4 << 20);
  addLarge("a.mp3", 600'000);
  files.setFault([&, gone = false](FileCall call, const std::string& path) mutable {
    if (call == FileCall::Write && !std::exchange(gone, true)) volume->vanish();
    return gone && path.starts_with(there) ? EIO : 0;
  });
  EXPECT_FALSE(run());
  EXPECT_EQ(ends(), Lines{"0 failed 0x20000005 0 bytes to $/there/Music/a.mp3"});
}

TEST_F(DeviceToDevicePeers, TakeAFileThatGrowsAtTheSizeItBeganWith) {
  const std::string from = addLarge("a.mp3", 10'000);
  const std::string before = bytesOf(from);
  onFirstWrite([&] { sandbox.patternFile("internal/Music/a.mp3", 50'000); });
  EXPECT_TRUE(run());
  EXPECT_EQ(onSecond("a.mp3"), before);
}

TEST_F(DeviceToDevicePeers, FailAFileThatShrinks) {
  addLarge("a.mp3", 600'000);
  onFirstWrite([&] { ASSERT_EQ(::truncate((internal + "/Music/a.mp3").c_str(), 300'000), 0); });
  EXPECT_FALSE(run());
  EXPECT_EQ(ends(), Lines{"0 failed 0x20000005 300000 bytes to $/there/Music/a.mp3"});
}

}  // namespace
}  // namespace umsservice::testing
