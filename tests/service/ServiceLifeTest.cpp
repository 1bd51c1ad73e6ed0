#include "ServiceTest.h"

namespace umsservice::testing {
namespace {

using ServiceLife = ServiceTest;

TEST_F(ServiceLife, TracesItsBeginningAndItsEndAtLevelSix) {
  for (const char* message : {"ENTER", "EXIT"}) {
    expectLine(surroundings, 6, "-[UMSService init]", message,
               [this] { UMSService plain(surroundings.environment); });
    expectLine(surroundings, 6, "-[UMSService dealloc]", message,
               [this] { UMSService plain(surroundings.environment); });
  }
}

TEST_F(ServiceLife, SaysNothingWhenItBeginsWithALocation) {
  log.clear();
  { UMSService plain(surroundings.environment, "location-2"); }
  EXPECT_EQ(linesOf(surroundings, "-[UMSService init]"), Lines());
  EXPECT_EQ(linesOf(surroundings, "-[UMSService initWithLocationID:]"), Lines());
  EXPECT_EQ(linesOf(surroundings, "-[UMSService dealloc]"), (Lines{"ENTER", "EXIT"}));
}

TEST_F(ServiceLife, BeginsWithNothing) {
  UMSService plain(surroundings.environment);
  EXPECT_FALSE(plain.locationID().has_value());
  EXPECT_FALSE(plain.modelName().has_value());
  EXPECT_EQ(plain.diskInformation()->count(), 0u);
  EXPECT_EQ(plain.getReleaseState(), 0);
  EXPECT_EQ(plain.fileTransferStatus(), 0);
  EXPECT_FALSE(plain.isCancelServiceId(0));
  EXPECT_FALSE(UMSService(surroundings.environment, std::nullopt).locationID().has_value());
}

TEST_F(ServiceLife, KeepsItsLocationUntilItIsGivenAnother) {
  EXPECT_EQ(service->locationID(), "location-1");
  service->setLocationID("location-2");
  EXPECT_EQ(service->locationID(), "location-2");
  service->setLocationID(std::nullopt);
  EXPECT_FALSE(service->locationID().has_value());
}

TEST_F(ServiceLife, TakesTheModelNameOnlyWhereThereIsOne) {
  EXPECT_EQ(service->modelName(), "Pocket One");
  service->setDeviceInformation(std::nullopt);
  service->setDeviceInformation(Dictionary{{"Other", "x"}});
  service->setDeviceInformation(Dictionary{{"MN", Null()}});
  EXPECT_EQ(service->modelName(), "Pocket One");
  service->setDeviceInformation(Dictionary{{"MN", "Pocket Two"}});
  EXPECT_EQ(service->modelName(), "Pocket Two");
}

TEST_F(ServiceLife, KeepsTheOldDelegateWhenItIsGivenNone) {
  useDelegate();
  service->setConfirmDelegate(nullptr);
  int asked = 0;
  delegate.onService = [&](const MaybeString&) {
    ++asked;
    return nullptr;
  };
  service->copyContentsDeviceToDevice(1, shortContents(), "location-1", "location-2", kMediaMusic, 0);
  EXPECT_EQ(asked, 1);
}

TEST_F(ServiceLife, AnswersThatFoldersWereReadAgain) {
  log.clear();
  EXPECT_TRUE(service->reEnumerateAtFolder("/card"));
  EXPECT_TRUE(service->reEnumerateAtFolder(std::nullopt));
}

TEST_F(ServiceLife, RefusesEveryEntryPointOnceItsThreadIsToEnd) {
  useDelegate();
  delegate.onService = [this](const MaybeString&) { return service; };
  EXPECT_TRUE(service->exitServiceThread());
  EXPECT_TRUE(waitForWorkersEnd());
  EXPECT_EQ(service->getReleaseState(), 1);
  log.clear();
  EXPECT_FALSE(service->syncContents(1, shortContents(), kMediaMusic, true));
  EXPECT_FALSE(queueShort(1, "short.mp3"));
  EXPECT_FALSE(service->copyContentsDeviceToMac(1, shortContents(), sandbox.at("out"), kMediaMusic, {}));
  EXPECT_FALSE(
      service->copyContentsDeviceToDevice(1, shortContents(), "location-1", "location-1", kMediaMusic, 0));
  EXPECT_FALSE(service->deleteContents(1, shortContents(), kMediaMusic, 0));
  EXPECT_FALSE(service->deleteContents(1, shortContents(), kMediaPodcast, 0));
  EXPECT_EQ(log.lines(), Lines());
  EXPECT_TRUE(service->exitServiceThread());
  delegate.onService = nullptr;
  service.reset();
  EXPECT_TRUE(notifications.all().empty());
  EXPECT_EQ(treeOf(internal), Lines());
}

TEST_F(ServiceLife, DisconnectsItsOwnDeviceInAnyLetterCase) {
  service->disconnectDevice("location-2");
  service->disconnectDevice("");
  service->disconnectDevice(std::nullopt);
  EXPECT_EQ(service->getReleaseState(), 0);
  service->disconnectDevice("LOCATION-1");
  EXPECT_EQ(service->getReleaseState(), 1);
  EXPECT_FALSE(queueShort(1, "short.mp3"));
}

TEST_F(ServiceLife, AServiceWithoutALocationIsNobodysDevice) {
  service->setLocationID(std::nullopt);
  service->disconnectDevice(std::nullopt);
  service->disconnectDevice("location-1");
  EXPECT_EQ(service->getReleaseState(), 0);
}

TEST_F(ServiceLife, ADisconnectedServiceStillEndsItsThread) {
  ASSERT_TRUE(log.waitFor("Try Wait"));
  service->disconnectDevice("location-1");
  service->exitServiceThread();
  EXPECT_TRUE(waitForWorkersEnd());
}

TEST_F(ServiceLife, DisconnectingWaitsWhileTheHostMarksATransfer) {
  for (const char* location : {"location-2", "location-1"}) {
    service->setFileTransferStatus(2);
    std::atomic<bool> begun{false};
    std::atomic<int32_t> statusWhenDone{2};
    std::thread host([&, location] {
      begun = true;
      service->disconnectDevice(location);
      statusWhenDone = service->fileTransferStatus();
    });
    EXPECT_TRUE(eventually([&] { return begun.load(); }));
    service->setFileTransferStatus(4);
    host.join();
    EXPECT_EQ(statusWhenDone, 4);
  }
}

TEST_F(ServiceLife, ReleasingWaitsWhileTheHostMarksATransfer) {
  UMSService* released = service.get();
  Array volumes = *service->diskInformation();
  service->cancelFileAction(99);
  service->setFileTransferStatus(2);
  std::atomic<bool> gone{false};
  std::thread host([&] {
    service.reset();
    gone = true;
  });
  EXPECT_TRUE(
      eventually([&] { return released->getReleaseState() == 1 && !released->isCancelServiceId(99); }));
  EXPECT_EQ(volumes.count(), 2u);
  EXPECT_EQ(released->locationID(), "location-1");
  EXPECT_FALSE(gone);
  released->setFileTransferStatus(0);
  host.join();
  EXPECT_EQ(volumes.count(), 2u) << "the host's own hold on the list";
}

TEST_F(ServiceLife, TheListOfVolumesShowsLaterChangesAndOutlivesTheService) {
  Array volumes = *service->diskInformation();
  service->addDiskInformation(disk(1, "/second"));
  EXPECT_EQ(volumes.count(), 3u);
  EXPECT_EQ(volumes.at(1).dictionary()->string(key::kVolumePath), "/second");
  service->removeDiskInformation(volumes.at(1).dictionary());
  EXPECT_EQ(volumes.count(), 2u);
  EXPECT_EQ(service->volumePath(2), card);
  service.reset();
  EXPECT_EQ(volumes.count(), 2u);
}

TEST_F(ServiceLife, AnswersForItsVolumesAndFolders) {
  EXPECT_EQ(service->diskVolumeNameFromIndex(1), card);
  EXPECT_EQ(service->volumePath(0), internal);
  EXPECT_EQ(service->diskInfoFromIndex(1)->get(key::kDiskType).intValue(), 2);
  EXPECT_EQ(service->diskInfoFromDiskInfoList(service->diskInformation(), 1)->string(key::kVolumePath), card);
  uint32_t index = 0;
  EXPECT_EQ(service->volumePathWithOption(false, &index), card);
  EXPECT_EQ(index, 1u);
  EXPECT_EQ(service->volumePathWithOption(true, nullptr), internal);
  EXPECT_GT(service->freeSpace(1, 0), 0u);
  EXPECT_GT(service->totalSpace(1, 1), service->freeSpace(1, 1));
  EXPECT_EQ(service->freeSpace(1, 2), 0u);
  EXPECT_GT(service->volumeFreeSpace(card + "/Music/a.mp3"), 0u);
  EXPECT_EQ(service->defaultMediaContentsPath(MaybeString("/v"), 1, kMediaMusic), "/v/Music");
  EXPECT_EQ(service->defaultMediaContentsPath(service->diskInformation(), 1, kMediaVolumeItself), card);
  EXPECT_EQ(service->defaultUmsMediaPath(1, kMediaImage), "DCIM/Camera");
  EXPECT_EQ(service->getMediaDefaultPath(kMediaImage), "/DCIM/Camera/");
}

}  // namespace
}  // namespace umsservice::testing
