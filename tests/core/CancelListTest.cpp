#include <thread>

#include "CoreRoom.h"

namespace umsservice::testing {
namespace {

constexpr auto kNilLine = "Cancel Service ID Value is nil.";

/// Runs a handler of the test for each line.
class CallingSink final : public LogSink {
 public:
  void write(const std::string&) override { onLine(); }
  std::function<void()> onLine = [] {};
};

class CancelList : public CoreTest {
 protected:
  umsservice::CancelList& list = context.cancelList;
};

TEST_F(CancelList, FindsAndRemovesAnID) {
  list.add(5);
  list.add(0xfffffffe);
  EXPECT_TRUE(list.isCancelServiceId(5));
  EXPECT_TRUE(list.isCancelServiceId(0xfffffffe));
  EXPECT_FALSE(list.isCancelServiceId(6));
  EXPECT_TRUE(list.removeCancelServiceId(5));
  EXPECT_FALSE(list.isCancelServiceId(5));
  EXPECT_FALSE(list.removeCancelServiceId(5));
  EXPECT_EQ(list.count(), 1u);
}

TEST_F(CancelList, RemovesOneEntryAtATime) {
  list.add(5);
  list.add(5);
  EXPECT_TRUE(list.removeCancelServiceId(5));
  EXPECT_TRUE(list.isCancelServiceId(5));
}

TEST_F(CancelList, GivesItsEntriesInOrderAndNothingPastItsEnd) {
  list.add(5);
  list.add(std::nullopt);
  EXPECT_EQ(list.entryAt(0), std::optional(umsservice::CancelList::Entry(5)));
  ASSERT_TRUE(list.entryAt(1).has_value());
  EXPECT_FALSE(list.entryAt(1)->has_value());
  EXPECT_FALSE(list.entryAt(2).has_value());
  list.clear();
  EXPECT_FALSE(list.entryAt(0).has_value());
  EXPECT_FALSE(list.isCancelServiceId(5));
}

TEST_F(CancelList, PassesOverAnEntryThatIsNoNumberAndSaysSoAtEveryDebugLevel) {
  surroundings.level->level = -1;
  list.add(std::nullopt);
  list.add(5);
  EXPECT_TRUE(list.isCancelServiceId(5));
  EXPECT_EQ(log.messages(), (Lines{"-[UMSService isCancelServiceId:] Cancel Service ID Value is nil."}));
  log.clear();
  EXPECT_TRUE(list.removeCancelServiceId(5));
  EXPECT_FALSE(list.removeCancelServiceId(5));
  EXPECT_EQ(log.messages(), (Lines{"-[UMSService removeCancelServiceId:] Cancel Service ID Value is nil.",
                                   "-[UMSService removeCancelServiceId:] Cancel Service ID Value is nil."}));
  EXPECT_EQ(list.count(), 1u);
}

TEST_F(CancelList, SaysNothingOfEntriesBehindTheOneThatItFinds) {
  list.add(5);
  list.add(std::nullopt);
  EXPECT_TRUE(list.isCancelServiceId(5));
  EXPECT_FALSE(log.has(kNilLine));
  EXPECT_FALSE(list.isCancelServiceId(6));
  EXPECT_EQ(log.count(kNilLine), 1u);
}

TEST_F(CancelList, HoldsNoLockWhileALineIsWritten) {
  auto sink = std::make_shared<CallingSink>();
  surroundings.environment.logSink = sink;
  ServiceContext talking(surroundings.environment, "<service>", std::nullopt);
  talking.cancelList.add(std::nullopt);
  int depth = 0;
  sink->onLine = [&] {
    if (++depth > 1) return;
    talking.cancelList.add(7);
    EXPECT_TRUE(talking.cancelList.removeCancelServiceId(7));
  };
  EXPECT_FALSE(talking.cancelList.isCancelServiceId(5));
  EXPECT_EQ(depth, 2);
}

TEST_F(CancelList, KeepsEveryEntryWhenManyThreadsUseIt) {
  constexpr uint32_t kRounds = 2000;
  std::vector<std::thread> threads;
  for (uint32_t id : {1u, 2u, 3u}) {
    threads.emplace_back([this, id] {
      for (uint32_t i = 0; i < kRounds; ++i) {
        list.add(id);
        EXPECT_TRUE(list.isCancelServiceId(id));
        EXPECT_TRUE(list.removeCancelServiceId(id));
        EXPECT_FALSE(list.isCancelServiceId(id));
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(list.count(), 0u);
}

}  // namespace
}  // namespace umsservice::testing
