#include "ServiceTest.h"

namespace umsservice::testing {
namespace {

/// Requests that wait behind one that is held in the middle of its copy.
class ServiceRequests : public ServiceTest {
 protected:
  ~ServiceRequests() override {
    letGo();
    service.reset();
  }

  /// Queues request 1 and catches the worker in it.
  void holdFirst() {
    onFirstProgress([this] {
      held_ = true;
      EXPECT_TRUE(eventually([this] { return released_.load(); }));
    });
    ASSERT_TRUE(queueLong(1));
    ASSERT_TRUE(eventually([this] { return held_.load(); }));
    notifications.clear();
  }
  void letGo() { released_ = true; }

 private:
  std::atomic<bool> held_{false};
  std::atomic<bool> released_{false};
};

Lines cancellation(uint32_t serviceID, uint32_t mediaType) {
  return {"Current: u32 0",
          "LocationId: text location-1",
          "Max: u32 0",
          "MediaNotiType: u32 " + std::to_string(mediaType),
          "ServiceID: u32 " + std::to_string(serviceID),
          "TransferStatus: u32 3"};
}

TEST_F(ServiceRequests, OneRequestIsToldFromItsFirstBytesToItsResult) {
  ASSERT_TRUE(queueShort(7, "short.mp3"));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  auto told = notifications.all();
  ASSERT_EQ(told.size(), 4u);
  Lines progress{"Current: u32 1",
                 "CurrentProgress: u32 100",
                 "Fail: u32 0",
                 "FileName: text short.mp3",
                 "LocationId: text location-1",
                 "MN: text Pocket One",
                 "Max: u32 1",
                 "MaxProgress: u32 100",
                 "MediaNotiType: u32 1",
                 "ServiceID: u32 7",
                 "TransferStatus: u32 2"};
  EXPECT_EQ(told[0].name, "QDORVEL_NOTI_TRANSFER_PROGRESS");
  EXPECT_EQ(typed(told[0].userInfo), progress);
  EXPECT_EQ(told[1].name, "QDORVEL_NOTI_MEDIA_TRASFER_RESULT");
  EXPECT_EQ(typed(told[1].userInfo),
            (Lines{"FilePath: text " + onDevice("short.mp3"), "LocationId: text location-1",
                   "MN: text Pocket One", "MediaNotiType: u32 1", "ResultStatus: u32 268435457",
                   "ServiceID: u32 7", "VolumeIndex: u32 0"}));
  progress.back() = "TransferStatus: u32 4";
  EXPECT_EQ(told[2].name, "QDORVEL_NOTI_TRANSFER_PROGRESS");
  EXPECT_EQ(typed(told[2].userInfo), progress);
  EXPECT_EQ(told[3].name, "QDORVEL_NOTI_UMS_RESULT");
  EXPECT_EQ(typed(told[3].userInfo),
            (Lines{"DestPath: text " + internal + "/Music", "DiskSize: u64 0", "ErrorNumber: i32 0",
                   "EventType: i32 1", "ServiceID: i32 7", "Status: i32 0", "VolumeIndex: i32 0"}));
}

TEST_F(ServiceRequests, RunInTheOrderInWhichTheyWereQueued) {
  holdFirst();
  for (uint32_t id : {5u, 3u, 4u, 3u}) ASSERT_TRUE(queueShort(id, std::to_string(id) + ".mp3"));
  letGo();
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 5));
  EXPECT_EQ(finished(), (std::vector<uint32_t>{1, 5, 3, 4, 3}));
}

TEST_F(ServiceRequests, ACancelledQueuedRequestIsToldOnceAndTheOthersKeepTheirOrder) {
  holdFirst();
  ASSERT_TRUE(queueShort(2, "2.mp3"));
  ASSERT_TRUE(service->copyContentsMacToDevice(3, shortContents("3.mp3"), kMediaImage, 0));
  ASSERT_TRUE(queueShort(4, "4.mp3"));
  service->cancelFileAction(3);
  auto told = notifications.all();
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0].name, "QDORVEL_NOTI_TRANSFER_PROGRESS");
  EXPECT_EQ(typed(told[0].userInfo), cancellation(3, kMediaImage));
  EXPECT_FALSE(service->isCancelServiceId(3));
  letGo();
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 3));
  EXPECT_EQ(finished(), (std::vector<uint32_t>{1, 2, 4}));
  EXPECT_FALSE(exists(onDevice("3.mp3")));
}

TEST_F(ServiceRequests, TwoQueuedRequestsOfOneNumberAreBothCancelled) {
  holdFirst();
  for (uint32_t id : {2u, 3u, 2u}) ASSERT_TRUE(queueShort(id, std::to_string(id) + ".mp3"));
  service->cancelFileAction(2);
  auto told = notifications.all();
  ASSERT_EQ(told.size(), 2u);
  for (const auto& posted : told) EXPECT_EQ(typed(posted.userInfo), cancellation(2, kMediaMusic));
  letGo();
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
  EXPECT_EQ(finished(), (std::vector<uint32_t>{1, 3}));
}

TEST_F(ServiceRequests, ACancelOfAnUnknownNumberStaysInTheListAndIsNotTold) {
  holdFirst();
  service->cancelFileAction(99);
  EXPECT_TRUE(service->isCancelServiceId(99));
  EXPECT_TRUE(notifications.all().empty());
  EXPECT_TRUE(service->removeCancelServiceId(99));
  EXPECT_FALSE(service->removeCancelServiceId(99));
}

TEST_F(ServiceRequests, ACancelOfTheRunningRequestStopsItAtTheNextChunk) {
  holdFirst();
  service->cancelFileAction(1);
  EXPECT_TRUE(service->isCancelServiceId(1));
  letGo();
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  expectFirstReportOnly();
  EXPECT_FALSE(service->isCancelServiceId(1));
  ASSERT_TRUE(queueShort(1, "again.mp3"));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
  EXPECT_TRUE(exists(onDevice("again.mp3"))) << "an old cancel does not stop a later request";
}

TEST_F(ServiceRequests, EmptyingTheQueueTellsWhetherThereWasOne) {
  holdFirst();
  ASSERT_TRUE(queueShort(2, "2.mp3"));
  EXPECT_FALSE(service->emptyQueue(3));
  EXPECT_TRUE(service->emptyQueue(2));
  EXPECT_FALSE(service->emptyQueue(2));
  EXPECT_EQ(notifications.count(kTransferProgressNotification), 1u);
  service->emptyQueue();
  EXPECT_EQ(notifications.count(kTransferProgressNotification), 1u);
}

TEST_F(ServiceRequests, RequestsOfTwoDevicesRunBesideEachOther) {
  holdFirst();
  auto other = std::make_shared<UMSService>(surroundings.environment, "location-2");
  other->addDiskInformation(disk(1, card));
  ASSERT_TRUE(other->copyContentsMacToDevice(2, shortContents(), kMediaMusic, 0));
  EXPECT_TRUE(notifications.waitFor(kUmsResultNotification));
  EXPECT_EQ(finished(), (std::vector<uint32_t>{2}));
}

TEST_F(ServiceRequests, AHostThatHoldsTheSectionKeepsLongOperationsFromStarting) {
  {
    std::lock_guard section(service->synchronizedSection());
    ASSERT_TRUE(queueShort(1, "short.mp3"));
    ASSERT_TRUE(waitForDispatchedCopy());
    EXPECT_TRUE(notifications.all().empty());
    EXPECT_FALSE(exists(onDevice("short.mp3")));
  }
  EXPECT_TRUE(notifications.waitFor(kUmsResultNotification));
}

/// Commands that no entry point queues, run as the worker runs them.
class ServiceCommands : public ServiceTest {
 protected:
  Lines resultOf(uint32_t command, const MaybeString& filePath, bool expected) {
    _serviceinfo request;
    request.serviceID = 7;
    request.command = command;
    request.filePath = filePath;
    EXPECT_EQ(service->doUmsFileService(&request), expected);
    auto told = notifications.named(kUmsResultNotification);
    EXPECT_EQ(told.size(), 1u);
    notifications.clear();
    return told.empty() ? Lines() : typed(told[0].userInfo);
  }
};

TEST_F(ServiceCommands, WithoutAnActionReportStatusZero) {
  for (uint32_t command : {204u, 207u, 300u}) {
    EXPECT_EQ(resultOf(command, std::nullopt, false),
              (Lines{"DiskSize: u64 0", "ErrorNumber: i32 0", "EventType: i32 1", "ServiceID: i32 7",
                     "Status: i32 0", "VolumeIndex: i32 0"}));
  }
  EXPECT_FALSE(service->doUmsFileService(nullptr));
  EXPECT_TRUE(notifications.all().empty());
}

TEST_F(ServiceCommands, ReportThePlatformsCodeOfAFailure) {
  std::string path = sandbox.at("card/new");
  files.failAlways(FileCall::CreateFolders, "card/new", EROFS);
  EXPECT_EQ(resultOf(kCommandCreateFolder, path, false),
            (Lines{"DiskSize: u64 0", "ErrorNumber: i32 642", "EventType: i32 1", "ServiceID: i32 7",
                   "SourcePath: text " + path, "Status: i32 536870914", "VolumeIndex: i32 0"}));
}

TEST_F(ServiceCommands, DescribeTheServiceInTheirTraceLines) {
  log.clear();
  resultOf(kCommandWriteFile, std::nullopt, false);
  char expected[80];
  std::snprintf(expected, sizeof expected, "UMSService = <UMSService: %p>, FS_COMMAND_UMS_WRITE_FLE",
                static_cast<void*>(service.get()));
  EXPECT_TRUE(log.has(expected)) << expected;
}

}  // namespace
}  // namespace umsservice::testing
