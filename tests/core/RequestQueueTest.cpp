#include "CoreRoom.h"

namespace umsservice::testing {
namespace {

class RequestQueue : public CoreTest {
 protected:
  void queueAll(const Ids& ids) {
    for (uint32_t id : ids) ASSERT_TRUE(queue.enqueue(request(id)));
  }
  /// What a host is told of a queued request that it cancelled.
  static std::string cancelled(uint32_t serviceID, uint32_t mediaType = kMediaMusic) {
    return stringWithFormat("cancel %u: at location-1 type %u file 0 of 0 status 3", {serviceID, mediaType});
  }
};

/// A list of contents that tells when it is given back.
class WatchedContents final : public ArrayStorage {
 public:
  explicit WatchedContents(std::function<void()> whenGone) : whenGone_(std::move(whenGone)) {}
  ~WatchedContents() override { whenGone_(); }
  size_t count() const override { return 1; }
  Value at(size_t) const override { return Value(); }
  void append(Value) override {}
  void removeAt(size_t) override {}
  void assign(std::vector<Value>) override {}
  std::vector<Value> snapshot() const override { return {Value()}; }

 private:
  const std::function<void()> whenGone_;
};

TEST_F(RequestQueue, RunsRequestsInTheOrderInWhichTheyWereQueued) {
  queueAll({7, 3, 3, 9, 1});
  EXPECT_EQ(idsOf(runQueued(5)), (Ids{7, 3, 3, 9, 1}));
}

TEST_F(RequestQueue, HandsOverTheWholeRequest) {
  auto record = request(7, kMediaVideo);
  record->filePath = "file";
  record->destPath = "dest";
  record->playlistName = "list";
  record->destLocationID = "there";
  record->srcLocationID = "here";
  record->storageIndex = 2;
  record->isStartInternal = 1;
  Array contents = *record->contents;
  queue.enqueue(std::move(record));
  _serviceinfo ran = runQueued(1).at(0);
  EXPECT_EQ(ran.command, kCommandCopyToDevice);
  EXPECT_EQ(ran.mediaType, uint32_t{kMediaVideo});
  EXPECT_EQ(ran.filePath, "file");
  EXPECT_EQ(ran.destPath, "dest");
  EXPECT_EQ(ran.playlistName, "list");
  EXPECT_EQ(ran.destLocationID, "there");
  EXPECT_EQ(ran.srcLocationID, "here");
  EXPECT_EQ(ran.storageIndex, 2u);
  EXPECT_EQ(ran.isStartInternal, 1);
  EXPECT_TRUE(ran.contents->isSame(contents));
}

TEST_F(RequestQueue, GivesARequestBackBeforeTheNextOneRuns) {
  bool gone = false;
  auto first = request(1);
  first->contents = Array(std::make_shared<WatchedContents>([&] { gone = true; }));
  queue.enqueue(std::move(first));
  queue.enqueue(request(2));
  std::vector<bool> goneWhileRunning;
  queue.umsFileServiceQueueThread([&](_serviceinfo& serviceInfo) {
    goneWhileRunning.push_back(gone);
    if (serviceInfo.serviceID == 2) queue.exitServiceThread();
  });
  EXPECT_EQ(goneWhileRunning, (std::vector<bool>{false, true}));
}

TEST_F(RequestQueue, RefusesAndFreesARequestAfterTheEnd) {
  queue.exitServiceThread();
  bool gone = false;
  auto late = request(1);
  late->contents = Array(std::make_shared<WatchedContents>([&] { gone = true; }));
  EXPECT_FALSE(queue.enqueue(std::move(late)));
  EXPECT_TRUE(gone);
  EXPECT_EQ(reports.lines(), Lines());
  EXPECT_EQ(log.lines(), Lines());
}

TEST_F(RequestQueue, LeavesWhatIsQueuedWhereItIsAtTheEnd) {
  queueAll({1, 2, 3});
  EXPECT_EQ(idsOf(runQueued(1)), (Ids{1}));
  EXPECT_EQ(reports.lines(), Lines());
  EXPECT_TRUE(queue.emptyQueue(3));
}

TEST_F(RequestQueue, CancelTakesAQueuedRequestOutAndKeepsTheOrderOfTheOthers) {
  queueAll({1, 2, 3, 4});
  queue.cancelFileAction(2);
  EXPECT_EQ(reports.lines(), (Lines{cancelled(2)}));
  EXPECT_FALSE(context.cancelList.isCancelServiceId(2));
  EXPECT_TRUE(log.has("Cancel Service ID : 0x00000002"));
  EXPECT_EQ(idsOf(runQueued(3)), (Ids{1, 3, 4}));
}

TEST_F(RequestQueue, CancelTakesEveryQueuedRequestOfTheIDAndAnnouncesEach) {
  queue.enqueue(request(5, kMediaImage));
  queueAll({6});
  queue.enqueue(request(5, kMediaVideo));
  queue.cancelFileAction(5);
  EXPECT_EQ(reports.lines(), (Lines{cancelled(5, kMediaImage), cancelled(5, kMediaVideo)}));
  EXPECT_FALSE(context.cancelList.isCancelServiceId(5));
  EXPECT_EQ(idsOf(runQueued(1)), (Ids{6}));
}

TEST_F(RequestQueue, CancelOfAnUnknownIDStaysInTheList) {
  queueAll({1});
  queue.cancelFileAction(99);
  EXPECT_TRUE(context.cancelList.isCancelServiceId(99));
  EXPECT_EQ(reports.lines(), Lines());
  EXPECT_FALSE(log.has("Cancel Service ID : 0x00000063"));
  EXPECT_EQ(idsOf(runQueued(1)), (Ids{1}));
}

TEST_F(RequestQueue, ACancelledRequestIsGivenBack) {
  bool gone = false;
  auto record = request(1);
  record->contents = Array(std::make_shared<WatchedContents>([&] { gone = true; }));
  queue.enqueue(std::move(record));
  queue.cancelFileAction(1);
  EXPECT_TRUE(gone);
}

TEST_F(RequestQueue, AnnouncesTheLocationOfTheMoment) {
  queueAll({1});
  context.identity.setLocationID("location-2");
  queue.cancelFileAction(1);
  EXPECT_EQ(reports.lines(), (Lines{"cancel 1: at location-2 type 1 file 0 of 0 status 3"}));
}

TEST_F(RequestQueue, TheWalkOverCancelledIDsAdvancesAfterARemovalToo) {
  queueAll({5, 6});
  context.cancelList.add(5);
  context.cancelList.add(6);
  queue.emptyQueue();
  EXPECT_EQ(reports.lines(), (Lines{cancelled(5)}));
  EXPECT_TRUE(context.cancelList.isCancelServiceId(6));
  queue.emptyQueue();
  EXPECT_EQ(reports.lines(), (Lines{cancelled(5), cancelled(6)}));
  EXPECT_EQ(context.cancelList.count(), 0u);
}

TEST_F(RequestQueue, TheWalkSpeaksOfEntriesThatAreNoNumbersAndGoesOn) {
  queueAll({5});
  context.cancelList.add(std::nullopt);
  context.cancelList.add(5);
  queue.emptyQueue();
  EXPECT_EQ(log.messages(), (Lines{"-[UMSService emptyQueue] Cancel Service ID Value is nil.",
                                   "-[UMSService removeCancelServiceId:] Cancel Service ID Value is nil.",
                                   "-[UMSService emptyQueue] Cancel Service ID : 0x00000005"}));
  EXPECT_EQ(context.cancelList.count(), 1u);
  log.clear();
  surroundings.level->level = -1;
  queue.emptyQueue();
  EXPECT_EQ(log.messages(), (Lines{"-[UMSService emptyQueue] Cancel Service ID Value is nil."}));
}

TEST_F(RequestQueue, EmptyingForOneIDLeavesTheCancelListAlone) {
  queueAll({5, 6});
  context.cancelList.add(5);
  EXPECT_TRUE(queue.emptyQueue(5));
  EXPECT_FALSE(queue.emptyQueue(5));
  EXPECT_FALSE(queue.emptyQueue(7));
  EXPECT_TRUE(context.cancelList.isCancelServiceId(5));
  EXPECT_EQ(idsOf(runQueued(1)), (Ids{6}));
}

TEST_F(RequestQueue, AnAnnouncementMayQueueCancelAndEnd) {
  queueAll({1, 2, 3});
  reports.onCancel = [this](uint32_t serviceID) {
    if (serviceID != 1) return;
    EXPECT_TRUE(queue.enqueue(request(4)));
    queue.cancelFileAction(3);
    EXPECT_FALSE(queue.emptyQueue(99));
  };
  queue.cancelFileAction(1);
  EXPECT_EQ(reports.lines(), (Lines{cancelled(1), cancelled(3)}));
  EXPECT_EQ(idsOf(runQueued(2)), (Ids{2, 4}));
}

TEST_F(RequestQueue, ARequestQueuedInsideItsOwnCancellationIsNotCancelled) {
  queueAll({1});
  reports.onCancel = [this](uint32_t) { EXPECT_TRUE(queue.enqueue(request(1))); };
  queue.cancelFileAction(1);
  EXPECT_EQ(reports.lines(), (Lines{cancelled(1)}));
  EXPECT_FALSE(context.cancelList.isCancelServiceId(1));
  EXPECT_EQ(idsOf(runQueued(1)), (Ids{1}));
}

TEST_F(RequestQueue, CancelFromInsideARunningRequestTakesOutQueuedOnes) {
  queueAll({1, 2, 3});
  auto ran = runQueued(2, [this](_serviceinfo& serviceInfo) {
    if (serviceInfo.serviceID == 1) queue.cancelFileAction(2);
  });
  EXPECT_EQ(idsOf(ran), (Ids{1, 3}));
  EXPECT_EQ(reports.lines(), (Lines{cancelled(2)}));
}

TEST_F(RequestQueue, CancelOfTheRunningRequestStaysForItToFind) {
  queueAll({1});
  runQueued(1, [this](_serviceinfo&) {
    queue.cancelFileAction(1);
    EXPECT_TRUE(context.cancelList.isCancelServiceId(1));
  });
  EXPECT_EQ(reports.lines(), Lines());
  EXPECT_TRUE(context.cancelList.isCancelServiceId(1));
}

TEST_F(RequestQueue, ARequestThatThrowsDoesNotEndTheWorker) {
  queueAll({1, 2, 3});
  auto ran = runQueued(3, [](_serviceinfo& serviceInfo) {
    if (serviceInfo.serviceID == 1) throw std::runtime_error("a handler gave up");
    if (serviceInfo.serviceID == 2) throw 2;
  });
  EXPECT_EQ(idsOf(ran), (Ids{1, 2, 3}));
  EXPECT_TRUE(log.has("Request is stopped by an exception. Reason :a handler gave up"));
  EXPECT_TRUE(log.has("Request is stopped by an exception. Reason :(null)"));
}

TEST_F(RequestQueue, ReleaseDropsWhatIsQueuedWithoutNotice) {
  int gone = 0;
  for (uint32_t id : {1u, 2u}) {
    auto record = request(id);
    record->contents = Array(std::make_shared<WatchedContents>([&] { ++gone; }));
    queue.enqueue(std::move(record));
  }
  queue.releaseAndDropAll();
  EXPECT_EQ(gone, 2);
  EXPECT_TRUE(context.isReleased());
  EXPECT_EQ(idsOf(runQueued(0)), Ids());
  EXPECT_EQ(reports.lines(), Lines());
}

TEST_F(RequestQueue, ContentsThatAreDroppedMayCallTheQueue) {
  auto record = request(1);
  record->contents = Array(std::make_shared<WatchedContents>([&] {
    EXPECT_FALSE(queue.enqueue(request(2)));
    EXPECT_FALSE(queue.emptyQueue(2));
  }));
  queue.enqueue(std::move(record));
  queue.releaseAndDropAll();
}

TEST_F(RequestQueue, TracesTheEndOfTheWorkerAtLevelSix) {
  expectLine(surroundings, 6, "-[UMSService umsFileServiceQueueThread:]", "umsFileServiceQueueThread Exit!",
             [this] { runQueued(0); });
}

TEST_F(RequestQueue, SpeaksOfACancelledIDAtLevelSeven) {
  expectLine(surroundings, 7, "-[UMSService emptyQueue]", "Cancel Service ID : 0x0000abcd", [this] {
    queueAll({0xabcd});
    queue.cancelFileAction(0xabcd);
  });
}

}  // namespace
}  // namespace umsservice::testing
