#include <thread>

#include "NotifierTest.h"

namespace umsservice::testing {
namespace {

using NotifierPosting = NotifierTest;

TEST_F(NotifierPosting, ProgressCarriesUnsigned32BitNumbersTheSourceAndTheFile) {
  auto notifier = notifierOf(3, 0);
  notifier->setFilePath("/card/Movies/harbour.mp4");
  notifier->setCurrentTransferStatus(kTransferRunning);
  notifier->sendTransferEvent(100, 42);
  ASSERT_EQ(progress().size(), 1u);
  EXPECT_EQ(typed(progress()[0].userInfo),
            (Lines{"Current: u32 1", "CurrentProgress: u32 42", "Fail: u32 0", "FileName: text harbour.mp4",
                   "LocationId: text source", "MN: text Pocket One", "Max: u32 3", "MaxProgress: u32 100",
                   "MediaNotiType: u32 3", "ServiceID: u32 7", "TransferStatus: u32 2"}));
}

/// An object of a host's that counts who holds it.
class HostsObject final : public SynchronizedObject {
 public:
  void lock() override { ++depth; }
  void unlock() override { --depth; }
  std::string description() const override { return {}; }
  int depth = 0;
};

TEST_F(NotifierPosting, IsAStepOfTheObjectThatTheHostKnowsTheNotifierBy) {
  auto object = std::make_shared<HostsObject>();
  OVUmsDeviceNotifier notifier(surroundings.environment, object);
  int depth = 0;
  notifications.onEach([&](const Notification&) { depth = object->depth; });
  notifier.sendTransferEvent(100, 0);
  EXPECT_EQ(depth, 1);
  EXPECT_EQ(object->depth, 0);
  EXPECT_EQ(&notifier.synchronizedSection(), object.get());
}

/// Makes notifiers as a host's objects would.
class HostsFactory final : public NotifierFactory {
 public:
  explicit HostsFactory(const Environment& environment) : environment_(environment) {}
  std::shared_ptr<OVUmsDeviceNotifier> make(const MaybeString& srcLocationID,
                                            const MaybeString& destLocationID, uint32_t serviceID,
                                            uint32_t mediaType, const MaybeString& deviceName,
                                            uint32_t storageIndex, uint32_t maxTransferFileCount,
                                            uint64_t maxTransferSize) override {
    last = std::make_shared<OVUmsDeviceNotifier>(environment_, srcLocationID, destLocationID, serviceID,
                                                 mediaType, deviceName, storageIndex, maxTransferFileCount,
                                                 maxTransferSize);
    return last;
  }
  std::shared_ptr<OVUmsDeviceNotifier> last;

 private:
  const Environment environment_;
};

TEST_F(NotifierPosting, OfARunIsTheHostsBusinessWhereItHasAFactory) {
  auto make = [this] {
    return OVUmsDeviceNotifier::forRun(surroundings.environment, "source", "destination", 7, 1, "Pocket One",
                                       2, 3, 4);
  };
  EXPECT_EQ(make()->maxTransferSize(), 4u);
  auto factory = std::make_shared<HostsFactory>(surroundings.environment);
  surroundings.environment.notifierFactory = factory;
  auto notifier = make();
  EXPECT_EQ(notifier, factory->last);
  EXPECT_EQ(notifier->destLocationID(), "destination");
  EXPECT_EQ(notifier->storageIndex(), 2u);
}

TEST_F(NotifierPosting, ProgressLeavesOutWhatTheNotifierDoesNotKnow) {
  OVUmsDeviceNotifier notifier(surroundings.environment);
  notifier.sendTransferEvent(100, 0);
  ASSERT_EQ(progress().size(), 1u);
  EXPECT_EQ(
      typed(progress()[0].userInfo),
      (Lines{"Current: u32 1", "CurrentProgress: u32 0", "Fail: u32 0", "Max: u32 0", "MaxProgress: u32 100",
             "MediaNotiType: u32 0", "ServiceID: u32 0", "TransferStatus: u32 0"}));
}

TEST_F(NotifierPosting, AnItemsResultCarriesUnsigned32BitNumbersTheDestinationAndThePath) {
  auto notifier = notifierOf(3, 0);
  notifier->setFilePath("/card/Movies/harbour.mp4");
  notifier->setPlaylistName("Evening");
  notifier->setChannelName("Harbour Hour");
  Dictionary channel{{"title", "Harbour Hour"}};
  notifier->setPodcastXmlData(channel);
  notifier->sendResultEvent();
  ASSERT_EQ(results().size(), 1u);
  EXPECT_EQ(typed(results()[0].userInfo),
            (Lines{"ChannelName: text Harbour Hour", "FilePath: text /card/Movies/harbour.mp4",
                   "LocationId: text destination", "MN: text Pocket One", "MediaNotiType: u32 3",
                   "PlaylistName: text Evening", "PodcastXmlInfo: dictionary {\n    title = Harbour Hour;\n}",
                   "ResultStatus: u32 268435457", "ServiceID: u32 7", "VolumeIndex: u32 2"}));
  channel.set("title", "changed later");
  notifier->sendResultEvent();
  EXPECT_EQ(results()[1].userInfo.get("PodcastXmlInfo").dictionary()->string("title"), "Harbour Hour");
}

TEST_F(NotifierPosting, AnItemsResultLeavesOutWhatTheNotifierDoesNotKnow) {
  OVUmsDeviceNotifier notifier(surroundings.environment);
  notifier.setPodcastXmlData(Dictionary{{"title", "gone"}});
  notifier.setPodcastXmlData(std::nullopt);
  notifier.sendResultNotification();
  ASSERT_EQ(results().size(), 1u);
  EXPECT_EQ(typed(results()[0].userInfo), (Lines{"MediaNotiType: u32 0", "ResultStatus: u32 268435457",
                                                 "ServiceID: u32 0", "VolumeIndex: u32 0"}));
}

TEST_F(NotifierPosting, TagsLeadAnItemsResultAndNeverHideItsOwnKeys) {
  auto notifier = notifierOf(1, 0);
  Dictionary tags{{"Title", "Evening"}, {"Duration", 12.5},       {"ServiceID", "tag"},
                  {"MN", "tag"},        {"ResultStatus", "tag"},  {"VolumeIndex", "tag"},
                  {"FilePath", "tag"},  {"MediaNotiType", "tag"}, {"LocationId", "tag"}};
  notifier->setMediaInfo(tags);
  notifier->setFilePath("/card/a.mp3");
  tags.set("Title", "changed later");
  notifier->sendResultEvent();
  EXPECT_EQ(typed(results().at(0).userInfo),
            (Lines{"Duration: real 12.5", "FilePath: text /card/a.mp3", "LocationId: text destination",
                   "MN: text Pocket One", "MediaNotiType: u32 3", "ResultStatus: u32 268435457",
                   "ServiceID: u32 7", "Title: text Evening", "VolumeIndex: u32 2"}));
  EXPECT_EQ(notifier->mediaInfo()->string("Title"), "Evening");
  notifier->setMediaInfo(std::nullopt);
  notifier->sendResultEvent();
  EXPECT_FALSE(results().at(1).userInfo.contains("Title"));
}

TEST_F(NotifierPosting, AStoredZeroIsSentAsTheSuccessCodeAndEveryOtherNumberAsItIs) {
  auto notifier = notifierOf(9, 0);
  for (uint32_t result : {0u, 0x10000001u, 0x21000002u, 0x1000000au}) {
    notifier->setTransferResult(result);
    notifier->sendResultEvent();
    EXPECT_EQ(notifier->transferResult(), result);
  }
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{0x10000001, 0x10000001, 0x21000002, 0x1000000a}));
}

TEST_F(NotifierPosting, EveryPropertyKeepsWhatItIsGiven) {
  OVUmsDeviceNotifier notifier(surroundings.environment);
  notifier.setSrcLocationID("a");
  notifier.setDestLocationID("b");
  notifier.setDeviceName("c");
  notifier.setServiceID(1);
  notifier.setStorageIndex(2);
  notifier.setMediaType(3);
  notifier.setMaxTransferFileCount(4);
  notifier.setFailTransferFileCount(5);
  notifier.setCurrentTransferSize(1ull << 40);
  notifier.setMaxTransferSize(1ull << 41);
  notifier.setPrevTransferFileSize(1ull << 42);
  notifier.setPrevSendBytes(1ull << 43);
  EXPECT_EQ(notifier.srcLocationID(), "a");
  EXPECT_EQ(notifier.destLocationID(), "b");
  EXPECT_EQ(notifier.deviceName(), "c");
  EXPECT_EQ(notifier.serviceID(), 1u);
  EXPECT_EQ(notifier.storageIndex(), 2u);
  EXPECT_EQ(notifier.mediaType(), 3u);
  EXPECT_EQ(notifier.maxTransferFileCount(), 4u);
  EXPECT_EQ(notifier.failTransferFileCount(), 5u);
  EXPECT_EQ(notifier.currentTransferSize(), 1ull << 40);
  EXPECT_EQ(notifier.maxTransferSize(), 1ull << 41);
  EXPECT_EQ(notifier.prevTransferFileSize(), 1ull << 42);
  EXPECT_EQ(notifier.prevSendBytes(), 1ull << 43);
}

TEST_F(NotifierPosting, AHandlerMayCallTheNotifierThatPosts) {
  auto notifier = notifierOf(3, 0);
  int depth = 0;
  notifications.onEach([&](const Notification&) {
    if (++depth > 1) return;
    EXPECT_EQ(notifier->currentTransferFileCount(), 1u);
    notifier->setPlaylistName("from inside");
    notifier->cancelFileTransfer();
  });
  notifier->sendTransferEvent(100, 10);
  notifications.onEach(nullptr);
  EXPECT_EQ(told(), (Lines{"1/3 failed 0 status 0 at 10 of 100", "1/3 failed 0 status 3 at 100 of 100"}));
  EXPECT_EQ(notifier->playlistName(), "from inside");
}

TEST_F(NotifierPosting, AHandlerThatThrowsLeavesTheNotifierUsable) {
  auto notifier = notifierOf(3, 0);
  notifications.onEach([](const Notification&) { throw std::runtime_error("no"); });
  EXPECT_THROW(notifier->sendTransferEvent(100, 10), std::runtime_error);
  notifications.onEach(nullptr);
  std::thread([&] { notifier->sendTransferEvent(100, 20); }).join();
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{10, 20}));
}

TEST_F(NotifierPosting, ACountAndItsNotificationAreOneStep) {
  constexpr uint32_t kThreads = 4;
  constexpr uint32_t kEach = 200;
  surroundings.level->level = 0;
  auto notifier = notifierOf(kThreads * kEach + 1, 0);
  std::vector<std::thread> threads;
  for (uint32_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (uint32_t n = 0; n < kEach; ++n) notifier->incCurrentTransferFileCount();
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(notifier->currentTransferFileCount(), kThreads * kEach + 1);
  EXPECT_EQ(results().size(), kThreads * kEach);
  notifier->incCurrentTransferFileCount();
  EXPECT_EQ(told().back(), "801/801 failed 0 status 4 at 100 of 100");
}

TEST_F(NotifierPosting, ACancellationFromAnotherThreadIsNeverHalfApplied) {
  surroundings.level->level = 0;
  auto notifier = notifierOf(2, 1'000'000'000);
  notifier->setMaxSendBytes(1'000'000'000);
  std::thread host([&] { notifier->cancelFileTransfer(); });
  for (uint64_t sent = 2'000'000; sent < 400'000'000; sent += 2'000'000)
    notifier->addCurrentSendBytesEx(sent);
  host.join();
  uint32_t cancelled = 0;
  for (const Notification& posted : progress()) {
    if (posted.userInfo.get(key::kCurrentProgress).unsignedIntValue() == 100) ++cancelled;
    EXPECT_EQ(posted.userInfo.get(key::kTransferStatus).unsignedIntValue(), cancelled * 3);
  }
  EXPECT_EQ(cancelled, 1u);
}

}  // namespace
}  // namespace umsservice::testing
