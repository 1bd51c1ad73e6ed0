#include "ServiceTest.h"

namespace umsservice::testing {
namespace {

/// What a host does from inside notification handlers.
class ServiceHandlers : public ServiceTest {
 protected:
  /// Calls about everything that a service answers at once.
  void callEverything() {
    service->setLocationID(service->locationID());
    service->setDeviceInformation(Dictionary{{"MN", service->modelName()}});
    service->addDiskInformation(disk(2, card));
    service->removeDiskInformation(service->diskInfoFromIndex(2));
    EXPECT_EQ(service->diskInformation()->count(), 2u);
    EXPECT_GT(service->freeSpace(1, 0), 0u);
    EXPECT_GT(service->volumeFreeSpace(internal + "/a"), 0u);
    EXPECT_TRUE(service->defaultMediaContentsPath(MaybeString(internal), 1, kMediaMusic).has_value());
    service->cancelFileAction(99);
    service->emptyQueue();
    EXPECT_FALSE(service->emptyQueue(98));
    EXPECT_TRUE(service->isCancelServiceId(99));
    EXPECT_TRUE(service->removeCancelServiceId(99));
    EXPECT_TRUE(service->createFolder(internal + "/New"));
    EXPECT_TRUE(service->folderLists(internal).has_value());
    EXPECT_EQ(service->getReleaseState(), 0);
    _serviceinfo request;
    request.command = kCommandGetList;
    EXPECT_FALSE(service->doUmsFileService(&request));
    std::lock_guard section(service->synchronizedSection());
  }
};

TEST_F(ServiceHandlers, MayCallAnythingOnTheService) {
  std::atomic<int> depth{0};
  std::atomic<int> handled{0};
  notifications.onEach([&](const Notification&) {
    if (depth.fetch_add(1) == 0) {
      callEverything();
      ++handled;
    }
    --depth;
  });
  ASSERT_TRUE(queueShort(1, "1.mp3"));
  constexpr int kNotificationsOfARequest = 4;
  EXPECT_TRUE(eventually([&] { return handled == kNotificationsOfARequest; }));
  service.reset();
  EXPECT_TRUE(exists(onDevice("1.mp3")));
}

TEST_F(ServiceHandlers, MayQueueTheNextRequestInsideTheResultOfTheLast) {
  notifications.onEach([this](const Notification& posted) {
    if (posted.name != kUmsResultNotification) return;
    uint32_t next = posted.userInfo.get(key::kServiceID).unsignedIntValue() + 1;
    if (next > 5) return;
    EXPECT_TRUE(queueShort(next, std::to_string(next) + ".mp3"));
  });
  ASSERT_TRUE(queueShort(1, "1.mp3"));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 5));
  EXPECT_EQ(finished(), (std::vector<uint32_t>{1, 2, 3, 4, 5}));
  EXPECT_TRUE(exists(onDevice("5.mp3")));
}

TEST_F(ServiceHandlers, MayCancelTheRunningRequest) {
  onFirstProgress([this] { service->cancelFileAction(1); });
  ASSERT_TRUE(queueLong(1));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  expectFirstReportOnly();
  EXPECT_EQ(numbers(notifications.named(kTransferProgressNotification), key::kTransferStatus),
            (std::vector<uint32_t>{2, 3}));
  EXPECT_FALSE(service->isCancelServiceId(1));
}

TEST_F(ServiceHandlers, MayCancelQueuedRequestsFromTheWorker) {
  std::atomic<bool> everythingIsQueued{false};
  onFirstProgress([&] {
    EXPECT_TRUE(eventually([&] { return everythingIsQueued.load(); }));
    service->cancelFileAction(2);
    EXPECT_FALSE(service->isCancelServiceId(2));
  });
  ASSERT_TRUE(queueLong(1));
  for (uint32_t id : {2u, 3u}) ASSERT_TRUE(queueShort(id, std::to_string(id) + ".mp3"));
  everythingIsQueued = true;
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
  EXPECT_EQ(finished(), (std::vector<uint32_t>{1, 3}));
}

TEST_F(ServiceHandlers, MayQueueAndCancelInsideTheAnnouncementOfACancellation) {
  std::lock_guard section(service->synchronizedSection());
  for (uint32_t id : {1u, 2u, 3u}) ASSERT_TRUE(queueShort(id, std::to_string(id) + ".mp3"));
  ASSERT_TRUE(waitForDispatchedCopy());
  notifications.onEach([this](const Notification& posted) {
    if (posted.userInfo.get(key::kServiceID).unsignedIntValue() != 2) return;
    service->cancelFileAction(3);
    EXPECT_TRUE(queueShort(4, "4.mp3"));
  });
  service->cancelFileAction(2);
  EXPECT_EQ(numbers(notifications.all(), key::kServiceID), (std::vector<uint32_t>{2, 3}));
  EXPECT_TRUE(service->emptyQueue(4));
}

TEST_F(ServiceHandlers, ThatThrowEndTheirRequestAndNotTheWorker) {
  notifications.onEach([](const Notification& posted) {
    if (posted.userInfo.get(key::kServiceID).unsignedIntValue() == 1) throw std::runtime_error("no more");
  });
  ASSERT_TRUE(queueShort(1, "1.mp3"));
  ASSERT_TRUE(queueShort(2, "2.mp3"));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
  EXPECT_EQ(finished(), (std::vector<uint32_t>{1, 2})) << "told once of the end, thrown or not";
  EXPECT_EQ(notifications.named(kUmsResultNotification).front().userInfo.get(key::kStatus).intValue(),
            0x23000001);
  EXPECT_TRUE(exists(onDevice("2.mp3")));
  EXPECT_TRUE(log.has("Request is stopped by an exception. Reason :no more"));
  std::thread([this] { std::lock_guard section(service->synchronizedSection()); }).join();
}

TEST_F(ServiceHandlers, ThatThrowInACancellationDoNotKeepTheOthersFromBeingAnnounced) {
  std::lock_guard section(service->synchronizedSection());
  ASSERT_TRUE(queueShort(1, "1.mp3"));
  ASSERT_TRUE(waitForDispatchedCopy());
  for (uint32_t id : {2u, 2u, 3u}) ASSERT_TRUE(queueShort(id, std::to_string(id) + ".mp3"));
  notifications.onEach([](const Notification&) { throw std::runtime_error("no more"); });
  EXPECT_THROW(service->cancelFileAction(2), std::runtime_error);
  EXPECT_EQ(numbers(notifications.all(), key::kServiceID), (std::vector<uint32_t>{2, 2}));
  EXPECT_FALSE(service->emptyQueue(2));
  notifications.onEach(nullptr);
  service->cancelFileAction(3);
  EXPECT_EQ(numbers(notifications.all(), key::kServiceID), (std::vector<uint32_t>{2, 2, 3}));
}

TEST_F(ServiceHandlers, MayEndTheThreadOfTheService) {
  onFirstProgress([this] { EXPECT_TRUE(service->exitServiceThread()); });
  ASSERT_TRUE(queueLong(1));
  ASSERT_TRUE(waitForWorkersEnd());
  expectFirstReportOnly();
  EXPECT_FALSE(queueShort(2, "2.mp3"));
}

TEST_F(ServiceHandlers, MayDisconnectTheDevice) {
  onFirstProgress([this] { service->disconnectDevice("Location-1"); });
  ASSERT_TRUE(queueLong(1));
  ASSERT_TRUE(waitForWorkersEnd());
  expectFirstReportOnly();
}

/// The log of a whole request, with the level in a property list as hosts keep it.
class ServiceLog : public ServiceTest {
 protected:
  std::shared_ptr<UMSService> logged;

  void start() {
    surroundings.environment.debugLevelSource =
        plistDebugLevelSource(posixFileSystem(), sandbox.at("DEBUG.plist"));
    service.reset();
    log.clear();
    logged = std::make_shared<UMSService>(surroundings.environment, "location-1");
    logged->addDiskInformation(disk(1, internal));
  }
  void setLevel(int level) {
    sandbox.file("DEBUG.plist", "<plist version=\"1.0\"><dict><key>DEBUG_LEVEL</key><integer>" +
                                    std::to_string(level) + "</integer></dict></plist>");
  }
  void copyTwo() {
    Array contents{content(shortFile, "1.mp3"), content(shortFile, "2.mp3")};
    ASSERT_TRUE(logged->copyContentsMacToDevice(1, contents, kMediaMusic, 0));
    ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  }
  std::string copyLine(const std::string& name) const {
    return "Copy File : " + shortFile + "  to  " + onDevice(name);
  }
};

TEST_F(ServiceLog, IsEmptyWithoutAPropertyList) {
  start();
  copyTwo();
  EXPECT_FALSE(logged->syncContents(1, Array(), kMediaMusic, true));
  EXPECT_FALSE(logged->copyContentsMacToDevice(1, shortContents(), kMediaMusic, 9));
  logged.reset();
  EXPECT_EQ(log.lines(), Lines());
}

TEST_F(ServiceLog, HasTheFormOfTheHostsLogInEveryLine) {
  setLevel(7);
  start();
  copyTwo();
  EXPECT_FALSE(logged->copyContentsMacToDevice(1, shortContents(), kMediaMusic, 9));
  logged.reset();
  const std::regex form(
      R"(\[[A-Za-z]+\.cpp:-\[(UMSService|OVUmsDeviceNotifier) [A-Za-z:]+\]-\([0-9]+\)\] .+)");
  EXPECT_GT(log.lines().size(), 10u);
  for (const std::string& line : log.lines()) EXPECT_TRUE(std::regex_match(line, form)) << line;
}

TEST_F(ServiceLog, ObeysAChangeOfTheLevelInTheMiddleOfARequest) {
  setLevel(5);
  start();
  notifications.onEach([this](const Notification& posted) {
    if (posted.name == kMediaResultNotification) setLevel(6);
  });
  copyTwo();
  EXPECT_FALSE(log.has(copyLine("1.mp3")));
  EXPECT_TRUE(log.has(copyLine("2.mp3")));
}

}  // namespace
}  // namespace umsservice::testing
