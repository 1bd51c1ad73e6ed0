/// A handler that throws, or any other object of the host's: its request ends there, once and for everybody.
#include <stdexcept>
#include <thread>

#include "ServiceTest.h"

namespace umsservice::testing {
namespace {

using Kind = ItemOutcome::Kind;

class ServiceExceptions : public ServiceTest {
 protected:
  Array three() const {
    return Array{content(shortFile, "1.mp3"), content(shortFile, "2.mp3"), content(shortFile, "3.mp3")};
  }
  /// Throws at the first notification that it is asked about and likes.
  void throwAtFirst(std::function<bool(const Notification&)> isIt) {
    notifications.onEach(
        [isIt, thrown = std::make_shared<std::atomic<bool>>(false)](const Notification& posted) {
          if (isIt(posted) && !thrown->exchange(true)) throw std::runtime_error("no more");
        });
  }
  static bool isResult(const Notification& posted) { return posted.name == kMediaResultNotification; }
  static std::function<bool(const Notification&)> hasStatus(uint32_t status) {
    return [status](const Notification& posted) {
      return posted.name == kTransferProgressNotification &&
             posted.userInfo.get(key::kTransferStatus).unsignedIntValue() == status;
    };
  }
  void copyThree() {
    ASSERT_TRUE(service->copyContentsMacToDevice(1, three(), kMediaMusic, 0));
    ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  }
  /// The states of the progress that say that the request is over.
  std::vector<uint32_t> ends() const {
    std::vector<uint32_t> ends;
    for (uint32_t status :
         numbers(notifications.named(kTransferProgressNotification), key::kTransferStatus)) {
      if (status != kTransferRunning) ends.push_back(status);
    }
    return ends;
  }
  /// What the observer was told of a request's items, in order.
  std::vector<Kind> kinds(uint32_t serviceID = 1) const {
    std::vector<Kind> kinds;
    for (const ItemOutcome& item : items.outcomes()) {
      if (item.serviceID == serviceID) kinds.push_back(item.kind);
    }
    return kinds;
  }
};

TEST_F(ServiceExceptions, InTheLastProgressAddNoOtherEndToIt) {
  throwAtFirst(hasStatus(kTransferFinished));
  copyThree();
  EXPECT_EQ(ends(), (std::vector<uint32_t>{kTransferFinished}));
  EXPECT_EQ(kinds(), (std::vector<Kind>{Kind::Done, Kind::Done, Kind::Done}));
}

TEST_F(ServiceExceptions, InTheProgressOfACancellationAddNoOtherEndToIt) {
  notifications.onEach([this](const Notification& posted) {
    if (isResult(posted)) service->cancelFileAction(1);
    if (hasStatus(kTransferCancelled)(posted)) throw std::runtime_error("no more");
  });
  copyThree();
  EXPECT_EQ(ends(), (std::vector<uint32_t>{kTransferCancelled}));
  EXPECT_EQ(kinds(), (std::vector<Kind>{Kind::Done, Kind::NotReached, Kind::NotReached}));
  EXPECT_FALSE(service->isCancelServiceId(1));
}

TEST_F(ServiceExceptions, InTheMiddleEndTheRequestLikeACancellation) {
  throwAtFirst(isResult);
  copyThree();
  EXPECT_EQ(ends(), (std::vector<uint32_t>{kTransferCancelled}));
  EXPECT_EQ(kinds(), (std::vector<Kind>{Kind::Done, Kind::NotReached, Kind::NotReached}));
  EXPECT_EQ(notifications.named(kTransferProgressNotification).back().userInfo.get(key::kMax).intValue(), 3)
      << "told by the run itself, which knows its files";
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/1.mp3"}));
}

TEST_F(ServiceExceptions, OfASkippedAndOfAFailedItemLeaveItWhatItWas) {
  sandbox.file("internal/Music/1.mp3", "old");
  useDelegate();
  throwAtFirst(isResult);
  copyThree();
  EXPECT_EQ(kinds(), (std::vector<Kind>{Kind::Skipped, Kind::NotReached, Kind::NotReached}));
  throwAtFirst(hasStatus(kTransferFinished));
  Array gone{content(sandbox.at("in/gone.mp3"), "gone.mp3")};
  ASSERT_TRUE(service->copyContentsMacToDevice(2, gone, kMediaMusic, 0));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
  EXPECT_EQ(kinds(2), (std::vector<Kind>{Kind::Failed}));
}

TEST_F(ServiceExceptions, InAPodcastLeaveWhatHasArrivedInTheIndex) {
  auto episode = [this](const std::string& name) {
    return Dictionary{
        {"Title", name}, {"Url", "http://host/" + name}, {key::kFilePath, sandbox.file("in/" + name, "la")}};
  };
  Dictionary news{{"Title", "News"}, {"children", Array{episode("1.mp3"), episode("2.mp3")}}};
  throwAtFirst(isResult);
  ASSERT_TRUE(service->copyContentsMacToDevice(1, Array{news}, kMediaPodcast, 0));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  EXPECT_EQ(ends(), (std::vector<uint32_t>{kTransferCancelled}));
  EXPECT_EQ(kinds(), (std::vector<Kind>{Kind::Done, Kind::NotReached}));
  MaybeDictionary index = service->checkXmlData(internal + "/Podcast/News", "News");
  ASSERT_TRUE(index);
  EXPECT_EQ(index->get("children").array()->count(), 1u);
}

TEST_F(ServiceExceptions, InACancellationOfARequestThatTheHostRunsItselfLeaveNoCancelBehind) {
  notifications.onEach([this](const Notification& posted) {
    if (isResult(posted)) service->cancelFileAction(1);
    if (hasStatus(kTransferCancelled)(posted)) throw std::runtime_error("no more");
  });
  EXPECT_THROW(runCopy(three()), std::runtime_error);
  EXPECT_EQ(ends(), (std::vector<uint32_t>{kTransferCancelled}));
  EXPECT_FALSE(service->isCancelServiceId(1));
}

TEST_F(ServiceExceptions, ReachTheHostThatRunsARequestItself) {
  throwAtFirst(isResult);
  EXPECT_THROW(runCopy(three()), std::runtime_error);
  EXPECT_EQ(ends(), (std::vector<uint32_t>{kTransferCancelled}));
  EXPECT_EQ(kinds(), (std::vector<Kind>{Kind::Done, Kind::NotReached, Kind::NotReached}));
}

}  // namespace
}  // namespace umsservice::testing
