#include "SyncTest.h"

namespace umsservice::testing {
namespace {

/// The fall-over of one file, called by itself.
class SyncUmsFile : public SyncTest {
 protected:
  uint32_t place(const MaybeString& path, uint32_t failedIndex = 0) {
    return static_cast<uint32_t>(service->syncUmsFile(kRequest, path, failedIndex, kMediaMusic,
                                                      Dictionary{{"never", "read"}}, &notifier));
  }
  std::string song(const std::string& bytes = "la") { return sandbox.file("in/a.mp3", bytes); }

  OVUmsDeviceNotifier notifier{
      surroundings.environment, "location-1", "location-1", kRequest, kMediaMusic, "Pocket One", 0, 1, 10};
};

TEST_F(SyncUmsFile, AnswersZeroWhenTheFileIsOnAnotherVolume) {
  notifier.setTransferResult(kErrorVolumeFull);
  EXPECT_EQ(place(song()), 0u);
  EXPECT_EQ(bytesOf(card + "/Music/a.mp3"), "la");
  EXPECT_EQ(treeOf(internal), Lines{});
  EXPECT_EQ(notifier.storageIndex(), 1u);
  EXPECT_EQ(notifier.transferResult(), kErrorVolumeFull);  // the answer is the caller's to store
}

TEST_F(SyncUmsFile, LeavesOutTheVolumeThatFailed) {
  EXPECT_EQ(place(song(), 1), 0u);
  EXPECT_EQ(bytesOf(internal + "/Music/a.mp3"), "la");
  EXPECT_EQ(treeOf(card), Lines{});
}

TEST_F(SyncUmsFile, RefusesANilPath) {
  EXPECT_EQ(place(std::nullopt), kErrorInvalidInput);
  expectLine(surroundings, 1, kFallOverMethod, "Input Parameters is nil.", [&] { place(std::nullopt); });
}

TEST_F(SyncUmsFile, RefusesAnIndexPastTheVolumes) {
  notifier.setTransferResult(kErrorVolumeFull);
  EXPECT_EQ(place(song(), 2), kErrorInvalidInput);
  EXPECT_EQ(notifier.transferResult(), kErrorVolumeFull);
  EXPECT_EQ(treeOf(internal), Lines{});
  expectLine(surroundings, 1, kFallOverMethod,
             "Input Parameter is invalid. Volume is not support. volumeIndex = 2, disk count = 2",
             [&] { place(song(), 2); });
}

TEST_F(SyncUmsFile, AnswersWithTheResultAsItStandsWhenThereIsNoOtherVolume) {
  service->removeDiskInformation(service->diskInfoFromIndex(1));
  for (uint32_t result : {0u, uint32_t{kErrorVolumeFull}, uint32_t{kItemTransferred}}) {
    notifier.setTransferResult(result);
    EXPECT_EQ(place(song()), result);
  }
  expectLine(surroundings, 1, kFallOverMethod, "Sync " + plain(surroundings, song()) + " failed.",
             [&] { place(song()); });
}

TEST_F(SyncUmsFile, AnswersWithTheLastVolumesNumber) {
  service->addDiskInformation(disk(2, sandbox.folder("third")));
  sandbox.file("card/Music/a.mp3", "old");
  files.setFault([&](FileCall call, const std::string& path) {
    return call == FileCall::Space && path.find("third") != std::string::npos ? EIO : 0;
  });
  EXPECT_EQ(place(song()), kErrorVolumeFull);
}

TEST_F(SyncUmsFile, KeepsTheNumberOfTheVolumeBeforeWhereAFileCannotBeMade) {
  files.failAlways(FileCall::CreateFile, "card/Music/a.mp3", EROFS);
  notifier.setTransferResult(kErrorVolumeFull);
  EXPECT_EQ(place(song()), kErrorVolumeFull);
  notifier.setTransferResult(kErrorNone);
  EXPECT_EQ(place(song()), 0u);  // nothing was placed, and no number was ever set
  EXPECT_EQ(treeOf(card), Lines{"Music/"});
}

TEST_F(SyncUmsFile, IsNoConflictWhereAFileCannotBeMade) {
  useDelegate();
  delegate.answer = {true, true, true};
  files.failAlways(FileCall::CreateFile, "card/Music/a.mp3", EROFS);
  notifier.setTransferResult(kErrorFileExists);  // the first volume's, not this one's
  EXPECT_EQ(place(song()), kErrorFileExists);
  EXPECT_EQ(delegate.asked(), Lines{});
  EXPECT_EQ(notifications.all().size(), 0u);
}

TEST_F(SyncUmsFile, PassesOverAVolumeWithoutADefaultFolder) {
  auto unsupported = [&] { service->syncUmsFile(kRequest, song(), 0, 5, std::nullopt, &notifier); };
  expectLine(surroundings, 3, kFallOverMethod, "Consist of Media Default Path is failed.", unsupported);
  EXPECT_EQ(notifier.storageIndex(), 1u);
}

TEST_F(SyncUmsFile, PassesOverAVolumeThatHasNoPath) {
  service->addDiskInformation(Dictionary{{key::kDiskType, 2}});
  sandbox.file("card/Music/a.mp3", "old");  // a conflict, so that the third volume is tried
  expectLine(surroundings, 3, kFallOverMethod, "Get Volume Path is failed.", [&] { place(song()); });
  EXPECT_EQ(notifier.storageIndex(), 1u);  // not the index of the volume without a path
}

TEST_F(SyncUmsFile, PassesOverASourceWithoutAName) {
  expectLine(surroundings, 1, kFallOverMethod, "Consist of Target Path Name is failed", [&] { place("/"); });
  EXPECT_EQ(place(""), kItemTransferred);
  EXPECT_EQ(place(sandbox.at("in/..")), kItemTransferred);
}

TEST_F(SyncUmsFile, SetsTheResultAndThePathOfAFolderThatCannotBeMade) {
  sandbox.file("card/Music", "a file of that name");
  notifier.setTransferResult(kErrorVolumeFull);
  EXPECT_EQ(place(song()), kErrorVolumeFull);
  EXPECT_EQ(notifier.transferResult(), kErrorCreateFolderFailed);
  EXPECT_EQ(notifier.filePath(), card + "/Music");
}

TEST_F(SyncUmsFile, ThatIsCancelledAnswersWithTheStopCode) {
  service->cancelFileAction(kRequest);
  EXPECT_EQ(place(song()), kErrorStopped);
  EXPECT_FALSE(exists(card + "/Music/a.mp3"));
  EXPECT_TRUE(service->isCancelServiceId(kRequest));  // the run answers the cancel, not this step
  EXPECT_EQ(notifications.all().size(), 0u);
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod), Lines{"Sync $/in/a.mp3 failed."});
}

TEST_F(SyncUmsFile, ThatIsCancelledInMidCopyAnswersWithTheStopCode) {
  const std::string from = song(std::string(20'000, 'x'));
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::Read) service->cancelFileAction(kRequest);
    return 0;
  });
  EXPECT_EQ(place(from), kErrorStopped);
  EXPECT_EQ(bytesOf(card + "/Music/a.mp3").size(), 4096u);
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod), Lines{"Sync $/in/a.mp3 failed."});
}

TEST_F(SyncUmsFile, ThatIsReleasedAnswersWithTheNumberAsItStands) {
  notifier.setTransferResult(kErrorVolumeFull);
  service->exitServiceThread();
  EXPECT_EQ(place(song()), kErrorVolumeFull);
  EXPECT_FALSE(exists(card + "/Music/a.mp3"));
  EXPECT_EQ(told(), Lines{"progress 1/1 fail 0 status 3 100% (none)"});
  expectLine(surroundings, 5, kFallOverMethod, "Device Disconnected - location-1", [&] { place(song()); });
}

}  // namespace
}  // namespace umsservice::testing
