#include <latch>

#include "DeviceToDeviceTest.h"

namespace umsservice::testing {
namespace {

/// Two devices whose services copy into each other at once.
class DeviceToDeviceThreads : public DeviceToDeviceTest {
 protected:
  DeviceToDeviceThreads() {
    second->setConfirmDelegate(surroundings.delegate);
    delegate.onService = [first = std::weak_ptr(service), other = std::weak_ptr(second)](
                             const MaybeString& location) -> std::shared_ptr<OVFileService> {
      return location == "location-1" ? first.lock() : other.lock();
    };
    for (int i = 0; i < kFiles; ++i) {
      const std::string number = std::to_string(i);
      there1.append(
          content(sandbox.patternFile("internal/from/" + number, kSize), "to-2-" + number + ".mp3"));
      there2.append(content(sandbox.patternFile("there/from/" + number, kSize), "to-1-" + number + ".mp3"));
    }
  }
  void startBoth() {
    const auto one = service;  // a handler may let go of them before the calls have returned
    const auto two = second;
    ASSERT_TRUE(one->copyContentsDeviceToDevice(1, there1, "location-1", "location-2", kMediaMusic, 0));
    ASSERT_TRUE(two->copyContentsDeviceToDevice(2, there2, "location-2", "location-1", kMediaMusic, 0));
  }

  /// Holds both runs at their first result until both are there, then does something on either worker.
  void onceBothRun(const std::function<void(uint32_t serviceID)>& action = nullptr) {
    notifications.onEach([this, action](const Notification& posted) {
      const uint32_t serviceID = posted.userInfo.get(key::kServiceID).unsignedIntValue();
      if (posted.name != kMediaResultNotification || seen[serviceID - 1].exchange(true)) return;
      both.arrive_and_wait();
      if (action) action(serviceID);
    });
  }

  static constexpr int kFiles = 20;
  static constexpr uint64_t kSize = 300'000;
  std::shared_ptr<UMSService> second = secondDevice();
  Array there1;
  Array there2;
  std::atomic<bool> seen[2] = {};
  std::latch both{2};
};

TEST_F(DeviceToDeviceThreads, BothFinish) {
  startBoth();
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
  EXPECT_EQ(numbers(notifications.named(kUmsResultNotification), key::kStatus),
            (std::vector<uint32_t>{0, 0}));
  const std::string bytes = bytesOf(internal + "/from/0");
  for (int i = 0; i < kFiles; ++i) {
    EXPECT_EQ(bytesOf(there + "/Music/to-2-" + std::to_string(i) + ".mp3"), bytes);
    EXPECT_EQ(bytesOf(internal + "/Music/to-1-" + std::to_string(i) + ".mp3"), bytes);
  }
  EXPECT_EQ(items.outcomes().size(), 2u * kFiles);
}

TEST_F(DeviceToDeviceThreads, BothEndWhenReleasedInMidRun) {
  onceBothRun();
  startBoth();
  ASSERT_TRUE(notifications.waitFor(kMediaResultNotification, 2));
  std::thread one([&] { service.reset(); });
  std::thread other([&] { second.reset(); });
  one.join();
  other.join();
  EXPECT_TRUE(items.waitFor(2u * kFiles));
  EXPECT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
}

TEST_F(DeviceToDeviceThreads, BothEndWhenEachIsReleasedInAHandlerOfTheOther) {
  onceBothRun([&](uint32_t serviceID) { (serviceID == 1 ? second : service).reset(); });
  startBoth();
  EXPECT_TRUE(items.waitFor(2u * kFiles));
  EXPECT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
}

TEST_F(DeviceToDeviceThreads, BothStopForACancelInAHandler) {
  onceBothRun([&](uint32_t serviceID) { (serviceID == 1 ? service : second)->cancelFileAction(serviceID); });
  startBoth();
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification, 2));
  const auto outcomes = items.outcomes();
  ASSERT_EQ(outcomes.size(), 2u * kFiles);
  EXPECT_EQ(std::count_if(outcomes.begin(), outcomes.end(),
                          [](const ItemOutcome& outcome) { return outcome.kind == ItemOutcome::Kind::Done; }),
            2);
}

/// The destination waits for a thread of its own, and so does the worker: a release there must not wait for
/// the worker.
TEST_F(DeviceToDeviceTest, MayBeReleasedInAHandlerOnAThreadOfTheDestinations) {
  auto foreign = std::make_shared<FakeFileService>();
  foreign->onWrite = [](const FakeFileService::Write& call) {
    bool goesOn = true;
    std::thread([&] { goesOn = call.callbackObject->transferProgressInfoEx(call.context, 4, 4); }).join();
    return call.answer(goesOn, goesOn ? uint32_t{kErrorNone} : uint32_t{kErrorStopped});
  };
  foreign->disks.append(Dictionary{{key::kDiskType, 1}, {key::kDiskIndex, 0}, {key::kVolumePath, there}});
  destination = foreign;
  add("1.mp3", "song");
  add("2.mp3", "song");
  notifications.onEach([this](const Notification& posted) {
    if (posted.name == kTransferProgressNotification) service.reset();
  });
  const auto kept = std::weak_ptr(service);
  ASSERT_TRUE(std::shared_ptr(service)->copyContentsDeviceToDevice(kRequest, *request.contents, "location-1",
                                                                   "location-2", kMediaMusic, 0));
  EXPECT_TRUE(items.waitFor(2));
  EXPECT_TRUE(kept.expired());
}

}  // namespace
}  // namespace umsservice::testing
