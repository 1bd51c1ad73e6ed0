#include "ServiceTest.h"

namespace umsservice::testing {
namespace {

using ServiceRelease = ServiceTest;

TEST_F(ServiceRelease, WhileIdleEndsTheWorkerAtOnce) {
  ASSERT_TRUE(log.waitFor("Try Wait"));
  service.reset();
  EXPECT_EQ(log.count("umsFileServiceQueueThread Exit!"), 1u);
  EXPECT_TRUE(notifications.all().empty());
}

TEST_F(ServiceRelease, RightAfterTheBeginningEndsTheWorkerToo) {
  for (int i = 0; i < 50; ++i) UMSService brief(surroundings.environment);
  EXPECT_EQ(log.count("umsFileServiceQueueThread Exit!"), 50u);
}

TEST_F(ServiceRelease, DropsWhatIsQueuedWithoutNotice) {
  onFirstProgress([this] { EXPECT_TRUE(waitForRelease()); });
  ASSERT_TRUE(queueLong(1));
  for (uint32_t id : {2u, 3u, 4u}) ASSERT_TRUE(queueShort(id, std::to_string(id) + ".mp3"));
  ASSERT_TRUE(notifications.waitFor(kTransferProgressNotification));
  service.reset();
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/long.mp3"}));
  for (uint32_t id : numbers(notifications.all(), key::kServiceID)) EXPECT_EQ(id, 1u);
}

TEST_F(ServiceRelease, FromAnotherThreadStopsACopyWithinOneChunk) {
  onFirstProgress([this] { EXPECT_TRUE(waitForRelease()); });
  ASSERT_TRUE(queueLong(1));
  ASSERT_TRUE(notifications.waitFor(kTransferProgressNotification));
  service.reset();
  EXPECT_EQ(log.count("umsFileServiceQueueThread Exit!"), 1u) << "the release waits for its worker";
  expectFirstReportOnly();
  EXPECT_EQ(linesOf(surroundings, "-[UMSService dealloc]"), (Lines{"ENTER", "EXIT"}));
}

TEST_F(ServiceRelease, InsideAHandlerOnTheWorkerStopsTheCopyWithinOneChunk) {
  onFirstProgress([this] { service.reset(); });
  ASSERT_TRUE(queueLong(1));
  ASSERT_TRUE(waitForWorkersEnd());
  expectFirstReportOnly();
  EXPECT_EQ(linesOf(surroundings, "-[UMSService dealloc]"), (Lines{"ENTER", "EXIT"}));
}

TEST_F(ServiceRelease, InsideTheResultOfARequestRunsNothingMore) {
  std::atomic<bool> everythingIsQueued{false};
  notifications.onEach([&](const Notification& posted) {
    if (posted.name != kUmsResultNotification) return;
    EXPECT_TRUE(eventually([&] { return everythingIsQueued.load(); }));
    service.reset();
  });
  ASSERT_TRUE(queueShort(1, "1.mp3"));
  ASSERT_TRUE(queueShort(2, "2.mp3"));
  everythingIsQueued = true;
  ASSERT_TRUE(waitForWorkersEnd());
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/1.mp3"}));
  EXPECT_EQ(finished(), (std::vector<uint32_t>{1}));
}

TEST_F(ServiceRelease, InsideTheAnnouncementOfACancellationOnTheHostsThread) {
  onFirstProgress([this] { EXPECT_TRUE(waitForRelease()); });
  ASSERT_TRUE(queueLong(1));
  ASSERT_TRUE(queueShort(2, "2.mp3"));
  ASSERT_TRUE(queueShort(2, "2.mp3"));
  ASSERT_TRUE(notifications.waitFor(kTransferProgressNotification));
  notifications.onEach([this](const Notification&) { service.reset(); });
  service->cancelFileAction(2);
  EXPECT_EQ(service, nullptr);
  EXPECT_EQ(log.count("umsFileServiceQueueThread Exit!"), 1u);
  EXPECT_TRUE(log.has("Cancel Service ID : 0x00000002")) << "the call goes on to its end";
  expectFirstReportOnly();
}

TEST_F(ServiceRelease, InsideTheSectionLeavesAWorkerThatStandsBeforeItToItself) {
  const std::function<bool()> kRequests[] = {
      [this] { return queueShort(1, "1.mp3"); },
      [this] { return service->syncContents(1, shortContents("1.mp3"), kMediaMusic, true); }};
  for (const auto& queue : kRequests) {
    const std::shared_ptr<SynchronizedObject> section = makeSynchronizedObject();
    service = std::make_shared<UMSService>(surroundings.environment, section);
    service->addDiskInformation(disk(1, internal));
    log.clear();
    {
      std::lock_guard<SynchronizedObject> held(*section);
      ASSERT_TRUE(queue());
      ASSERT_TRUE(
          eventually([this] { return !linesOf(surroundings, "-[UMSService doUmsFileService:]").empty(); }));
      service.reset();
      EXPECT_EQ(log.count("umsFileServiceQueueThread Exit!"), 0u);
    }
    ASSERT_TRUE(waitForWorkersEnd());
    EXPECT_EQ(treeOf(internal), Lines()) << "nothing is made for a service that has gone";
  }
}

TEST_F(ServiceRelease, InsideARequestThatTheHostRunsItselfWhileTheWorkerWaitsForTheSection) {
  onFirstProgress([this] {
    EXPECT_TRUE(service->deleteContents(2, shortContents(), kMediaMusic, 0));
    EXPECT_TRUE(eventually([this] {
      auto lines = linesOf(surroundings, "-[UMSService doUmsFileService:]");
      return !lines.empty() && lines.back().ends_with("FS_COMMAND_OV_DELETE_FILE");
    }));
    service.reset();
  });
  runCopy(longContents());
  EXPECT_TRUE(waitForWorkersEnd());
  expectFirstReportOnly();
}

TEST_F(ServiceRelease, OfTheLastReferenceThatARequestHoldsItself) {
  // The contents of a request own its service, as a host's own array class may.
  class OwningContents final : public ArrayStorage {
   public:
    OwningContents(std::shared_ptr<UMSService> owner, Value item) : owner_(std::move(owner)), item_(item) {}
    size_t count() const override { return 1; }
    Value at(size_t) const override { return item_; }
    void append(Value) override {}
    void removeAt(size_t) override {}
    void assign(std::vector<Value>) override {}
    std::vector<Value> snapshot() const override { return {item_}; }

   private:
    const std::shared_ptr<UMSService> owner_;
    const Value item_;
  };
  Array owning(std::make_shared<OwningContents>(service, content(shortFile, "short.mp3")));
  ASSERT_TRUE(service->copyContentsMacToDevice(1, owning, kMediaMusic, 0));
  owning = Array();
  service.reset();
  EXPECT_TRUE(waitForWorkersEnd());
  EXPECT_EQ(finished(), (std::vector<uint32_t>{1}));
  EXPECT_TRUE(exists(onDevice("short.mp3")));
}

/// Two devices of one host.
class ServiceReleaseOfTwo : public ServiceTest {
 protected:
  std::shared_ptr<UMSService> other = std::make_shared<UMSService>(surroundings.environment, "location-2");

  ServiceReleaseOfTwo() { other->addDiskInformation(disk(1, card)); }

  void queueBoth() {
    ASSERT_TRUE(queueLong(1));
    ASSERT_TRUE(other->copyContentsMacToDevice(2, longContents(), kMediaMusic, 0));
  }
};

TEST_F(ServiceReleaseOfTwo, LettingGoOfEachOtherInsideHandlersEndsBoth) {
  std::atomic<int> arrived{0};
  notifications.onEach([&](const Notification& posted) {
    if (posted.name != kTransferProgressNotification) return;
    uint32_t id = posted.userInfo.get(key::kServiceID).unsignedIntValue();
    std::shared_ptr<UMSService>& opposite = id == 1 ? other : service;
    if (!opposite) return;
    ++arrived;
    EXPECT_TRUE(eventually([&] { return arrived >= 2; }));
    opposite.reset();
    EXPECT_TRUE(eventually([&] { return linesOf(surroundings, "-[UMSService dealloc]").size() == 4; }));
  });
  queueBoth();
  EXPECT_TRUE(waitForWorkersEnd(2));
  expectFirstReportOnly();
  EXPECT_EQ(bytesOf(card + "/Music/long.mp3").size(), kFirstReport);
}

TEST_F(ServiceReleaseOfTwo, AHostsReleaseOfOneWhoseHandlerLetsGoOfTheOther) {
  onFirstProgress([this] {
    EXPECT_TRUE(waitForRelease());
    other.reset();
  });
  ASSERT_TRUE(queueLong(1));
  ASSERT_TRUE(notifications.waitFor(kTransferProgressNotification));
  service.reset();
  EXPECT_TRUE(waitForWorkersEnd(2));
  expectFirstReportOnly();
}

TEST_F(ServiceReleaseOfTwo, OneGoesWithoutTheOtherNoticing) {
  queueBoth();
  service.reset();
  EXPECT_TRUE(notifications.waitUntil([](const Notification& posted) {
    return posted.name == kUmsResultNotification && posted.userInfo.get(key::kServiceID).intValue() == 2;
  }));
  EXPECT_EQ(bytesOf(card + "/Music/long.mp3"), bytesOf(longFile));
}

}  // namespace
}  // namespace umsservice::testing
