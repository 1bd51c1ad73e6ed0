#include <future>

#include "MediaRunTest.h"

namespace umsservice::testing {
namespace {

class MediaCopyEnds : public MediaRunTest {
 protected:
  /// Runs the action once, when the first item result is posted.
  void afterTheFirstItem(std::function<void()> action) {
    auto done = std::make_shared<bool>(false);
    notifications.onEach([action, done](const Notification& posted) {
      if (posted.name == kMediaResultNotification && !std::exchange(*done, true)) action();
    });
  }
  /// Runs the action once, at the first progress of a file under way.
  void inMidCopy(std::function<void()> action) {
    auto done = std::make_shared<bool>(false);
    notifications.onEach([action, done](const Notification&) {
      if (!std::exchange(*done, true)) action();
    });
  }
  Array three() { return Array{source("a.mp3"), source("b.mp3"), source("c.mp3")}; }
  Dictionary large() { return content(sandbox.patternFile("in/large.mp3", 3'000'000), "large.mp3"); }
};

TEST_F(MediaCopyEnds, BeforeTheNextFileWhenItIsCancelled) {
  afterTheFirstItem([&] { service->cancelFileAction(kRequest); });
  EXPECT_TRUE(run(toDevice(three())));
  EXPECT_EQ(ends(), (Lines{"0 done 5: $/in/a.mp3 > $/internal/Music/a.mp3",
                           "1 not reached 10000008 0: $/in/b.mp3 > nil",
                           "2 not reached 10000008 0: $/in/c.mp3 > nil"}));
  EXPECT_EQ(progress(), (Lines{"2 1/3 0 33%", "3 2/3 0 100%"}));
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/a.mp3"}));
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
}

TEST_F(MediaCopyEnds, ACancelIsAnsweredOnceSoThatTheNextRequestOfTheNumberRuns) {
  afterTheFirstItem([&] {
    service->cancelFileAction(kRequest);
    service->cancelFileAction(kRequest);
  });
  run(toDevice(three()));
  EXPECT_FALSE(service->isCancelServiceId(kRequest)) << "a cancel that was asked for twice is one cancel";
  notifications.onEach(nullptr);
  EXPECT_TRUE(run(toDevice(Array{source("d.mp3")})));
  EXPECT_EQ(bytesOf(internal + "/Music/d.mp3"), "d.mp3");
}

TEST_F(MediaCopyEnds, WithinAUnitWhenItIsCancelledInMidCopy) {
  inMidCopy([&] { service->cancelFileAction(kRequest); });
  EXPECT_TRUE(run(toDevice(Array{large(), source("b.mp3")})));
  EXPECT_EQ(ends(), (Lines{"0 not reached 10000008 1003520: $/in/large.mp3 > $/internal/Music/large.mp3",
                           "1 not reached 10000008 0: $/in/b.mp3 > nil"}));
  EXPECT_EQ(progress(), (Lines{"2 1/2 0 33%", "3 1/2 0 100%"}));
  EXPECT_EQ(bytesOf(internal + "/Music/large.mp3").size(), 245u * 4096);
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
  EXPECT_EQ(results().size(), 0u);
  auto result = notifications.named(kUmsResultNotification);
  EXPECT_EQ(numbers(result, key::kStatus), std::vector<uint32_t>{0});
}

TEST_F(MediaCopyEnds, WithinAUnitWhenAQueuedRequestIsCancelledFromAnotherThread) {
  std::promise<void> cancelled;
  inMidCopy([&] { cancelled.get_future().wait(); });
  Array contents{large(), source("b.mp3")};
  ASSERT_TRUE(
      service->copyContentsDeviceToMac(kRequest, contents, sandbox.at("mac"), kMediaMusic, std::nullopt));
  EXPECT_TRUE(notifications.waitFor(kTransferProgressNotification));
  service->cancelFileAction(kRequest);
  cancelled.set_value();
  ASSERT_TRUE(items.waitFor(2));
  expectEachItemOnce(2);
  EXPECT_EQ(bytesOf(sandbox.at("mac/large.mp3")).size(), 245u * 4096);
}

TEST_F(MediaCopyEnds, BeforeTheNextFileWhenTheDeviceGoes) {
  afterTheFirstItem([&] { service->exitServiceThread(); });
  EXPECT_TRUE(run(toMac(three())));
  EXPECT_EQ(ends(),
            (Lines{"0 done 5: $/in/a.mp3 > $/mac/a.mp3", "1 not reached 10000008 0: $/in/b.mp3 > $/mac/b.mp3",
                   "2 not reached 10000008 0: $/in/c.mp3 > nil"}));
  EXPECT_EQ(progress(), (Lines{"2 1/3 0 33%", "3 2/3 0 100%"}));
  EXPECT_EQ(treeOf(sandbox.at("mac")), Lines{"a.mp3"});
}

TEST_F(MediaCopyEnds, WithTheRestOfUnknownTypeWhenTheDeviceGoesBetweenFilesToIt) {
  // Types are no longer told once the service is released, and the type is asked for first.
  afterTheFirstItem([&] { service->exitServiceThread(); });
  EXPECT_TRUE(run(toDevice(three())));
  EXPECT_EQ(ends(),
            (Lines{"0 done 5: $/in/a.mp3 > $/internal/Music/a.mp3", "1 failed 14000002 0: $/in/b.mp3 > nil",
                   "2 failed 14000002 0: $/in/c.mp3 > nil"}));
}

TEST_F(MediaCopyEnds, WithALineWhenTheDeviceIsGone) {
  service->exitServiceThread();
  expectLine(surroundings, 5, kToMac, "Device Disconnected - location-1", [&] { run(toMac(three())); });
}

TEST_F(MediaCopyEnds, WithinAUnitWhenTheDeviceGoesInMidCopy) {
  inMidCopy([&] { service->exitServiceThread(); });
  EXPECT_TRUE(run(toDevice(Array{large(), source("b.mp3")})));
  EXPECT_EQ(ends(), (Lines{"0 not reached 10000008 1003520: $/in/large.mp3 > $/internal/Music/large.mp3",
                           "1 not reached 10000008 0: $/in/b.mp3 > nil"}));
  EXPECT_EQ(bytesOf(internal + "/Music/large.mp3").size(), 245u * 4096);
  EXPECT_EQ(progress().back(), "3 1/2 0 100%");
}

TEST_F(MediaCopyEnds, WhenTheHostLetsGoOfTheServiceInMidCopy) {
  Array contents{large(), source("b.mp3")};
  ASSERT_TRUE(service->copyContentsMacToDevice(kRequest, contents, kMediaMusic, 0));
  ASSERT_TRUE(notifications.waitFor(kTransferProgressNotification));
  service.reset();
  expectEachItemOnce(2);
}

TEST_F(MediaCopyEnds, AtAFullVolumeAndCountsTheRestAsFailed) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  Array contents;
  for (int i = 0; i < 10; ++i) {
    const std::string name = std::to_string(i) + ".mp3";
    contents.append(content(sandbox.patternFile("in/" + name, 400 * 1024), name));
  }
  EXPECT_FALSE(run(toDevice(contents)));
  EXPECT_EQ(progress(), (Lines{"2 1/10 0 10%", "2 2/10 0 20%", "4 10/10 8 100%"}));
  EXPECT_EQ(results(), (std::vector<uint32_t>{kItemTransferred, kItemTransferred, kErrorVolumeFull}));
  EXPECT_EQ(ends()[2], "2 failed 1000000a 0: $/in/2.mp3 > $/internal/Music/2.mp3");
  for (size_t i = 3; i < 10; ++i) {
    EXPECT_EQ(items.outcomes().at(i).kind, ItemOutcome::Kind::NotReached);
    EXPECT_EQ(items.outcomes().at(i).errorNumber, kErrorVolumeFull);
  }
  expectEachItemOnce(10);
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/0.mp3", "Music/1.mp3"}));
}

TEST_F(MediaCopyEnds, AtAFullVolumeWithTheResultRightBehindTheLastProgress) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  volume.fillUpTo(0);
  EXPECT_FALSE(run(toDevice(Array{source("a.mp3"), source("b.mp3")})));
  EXPECT_EQ(
      told(),
      (Lines{"QDORVEL_NOTI_TRANSFER_PROGRESS: Current=2u CurrentProgress=100u Fail=2u FileName=\"a.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=2u MaxProgress=100u MediaNotiType=1u "
             "ServiceID=7u TransferStatus=4u",
             "QDORVEL_NOTI_MEDIA_TRASFER_RESULT: FilePath=\"$/internal/Music/a.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" MediaNotiType=1u ResultStatus=268435466u "
             "ServiceID=7u VolumeIndex=0u",
             "QDORVEL_NOTI_UMS_RESULT: DiskSize=0U ErrorNumber=0i EventType=1i ServiceID=7i "
             "Status=587202561i VolumeIndex=0i"}));
}

TEST_F(MediaCopyEnds, AtAFullVolumeOnTheComputerToo) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("mac"), 1 << 20);
  volume.fillUpTo(0);
  EXPECT_FALSE(run(toMac(Array{source("empty.mp3", ""), source("b.mp3"), source("c.mp3")})));
  EXPECT_EQ(ends(), (Lines{"0 done 0: $/in/empty.mp3 > $/mac/empty.mp3",
                           "1 failed 1000000a 0: $/in/b.mp3 > $/mac/b.mp3",
                           "2 not reached 1000000a 0: $/in/c.mp3 > nil"}));
  EXPECT_EQ(notifications.count(kUmsResultNotification), 0u);
}

TEST_F(MediaCopyEnds, WithAFileThatFillsTheVolumeToTheLastByteAsDone) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  sandbox.folder("internal/Music");
  volume.fillUpTo(3 * 4096);
  const std::string exact = sandbox.patternFile("in/exact.mp3", 3 * 4096);
  EXPECT_TRUE(run(toDevice(Array{content(exact, "exact.mp3")})));
  EXPECT_EQ(volume.freeBytes(), 0u);
  EXPECT_EQ(bytesOf(internal + "/Music/exact.mp3"), bytesOf(exact));
}

TEST_F(MediaCopyEnds, BeforeTheFirstFileWhenItsNumberIsAlreadyCancelled) {
  service->cancelFileAction(kRequest);
  EXPECT_TRUE(run(toDevice(three())));
  EXPECT_EQ(progress(), Lines{"3 1/3 0 100%"});
  expectEachItemOnce(3);
  EXPECT_EQ(treeOf(internal).size(), 0u);
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
  EXPECT_EQ(linesOf(surroundings, kToDevice).size(), 0u);
}

}  // namespace
}  // namespace umsservice::testing
