/// What `@synchronized` on a service or on a notifier keeps out.
#include <atomic>
#include <thread>

#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class Sections : public HostTest {
 protected:
  UMSService* const service = makeDevice();
  NSArray* const contents = [NSArray arrayWithObject:content(sandbox.file("mac/a.mp3", "a"), "a.mp3")];
};

TEST_F(Sections, OfAServiceKeepsItsLongOperationsOut) {
  std::atomic<bool> held = true;
  std::atomic<bool> ranInside = false;
  Hearing hearing = onEach([&](NSNotification*) { ranInside = ranInside || held; });
  @synchronized(service) {
    ASSERT_TRUE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ([[ear named:nil] count], 0u);
    held = false;
  }
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_FALSE(ranInside);
}

TEST_F(Sections, OfAServiceIsHeldByItsLongOperations) {
  std::atomic<bool> inside = false;
  std::atomic<bool> overlapped = false;
  std::atomic<bool> entered = false;
  std::thread other;
  Hearing hearing = onEach([&](NSNotification* notification) {
    if (![[notification name] isEqualToString:kItemResult]) return;
    inside = true;
    other = std::thread([&] {
      @synchronized(service) {
        overlapped = inside.load();
        entered = true;
      }
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    inside = false;
  });
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
  ASSERT_TRUE(eventually([&] { return entered.load(); }));
  other.join();
  EXPECT_FALSE(overlapped);
}

TEST_F(Sections, OfTheClassKeepsEveryLookThroughCancelledRequestsOut) {
  std::atomic<bool> isThrough = false;
  std::thread other;
  @synchronized([service class]) {
    other = std::thread([&] {
      [service cancelFileAction:5];
      isThrough = true;
    });
    EXPECT_TRUE(eventually([&] { return [service isCancelServiceId:5]; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(isThrough);
  }
  other.join();
  EXPECT_TRUE(isThrough);
}

TEST_F(Sections, OfAServiceMayHoldItsLastRelease) {
  UMSService* last = takeOver(makeDevice());
  const std::string copied = internal + "/Music/a.mp3";
  @synchronized(last) {
    ASSERT_TRUE([last copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    [last release];
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_FALSE(exists(copied)) << "nothing is copied for a service that has gone";
}

/// The last release waits for the worker, which must not wait for what this thread is in.
TEST_F(Sections, OfARequestsArrayMayHoldTheLastRelease) {
  UMSService* last = takeOver(makeDevice());
  @synchronized(contents) {
    ASSERT_TRUE([last copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    [last release];
  }
}

TEST_F(Sections, OfANotifierKeepsItsStepsOut) {
  OVUmsDeviceNotifier* notifier = [[[bundleClass(@"OVUmsDeviceNotifier") alloc] init] autorelease];
  [notifier setMaxTransferFileCount:5];
  std::atomic<bool> held = true;
  std::atomic<bool> postedInside = false;
  Hearing hearing = onEach([&](NSNotification*) { postedInside = held.load(); });
  std::thread other;
  @synchronized(notifier) {
    other = std::thread([&] { [notifier incCurrentTransferFileCount]; });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    held = false;
  }
  other.join();
  EXPECT_FALSE(postedInside);
  EXPECT_EQ([notifier currentTransferFileCount], 2u);
}

}  // namespace
}  // namespace umsplugin::testing
