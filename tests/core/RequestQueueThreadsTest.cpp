#include <map>
#include <thread>

#include "CoreRoom.h"

namespace umsservice::testing {
namespace {

/// A queue with its worker on a thread of its own, and a count of what became of every request.
class RequestQueueThreads : public CoreTest {
 protected:
  ~RequestQueueThreads() override { stop(); }

  void start() {
    worker_ = std::thread([this] {
      queue.umsFileServiceQueueThread([this](_serviceinfo& serviceInfo) {
        std::lock_guard lock(mutex_);
        ran_.push_back(serviceInfo.serviceID);
      });
    });
  }
  void stop() {
    if (!worker_.joinable()) return;
    queue.exitServiceThread();
    worker_.join();
  }
  Ids ran() const {
    std::lock_guard lock(mutex_);
    return ran_;
  }
  bool hasRun(size_t count) const {
    return eventually([&] { return ran().size() >= count; });
  }

  /// Request IDs of one producer: its number in the high half, a running number in the low one.
  static uint32_t idOf(uint32_t producer, uint32_t number) { return producer << 16 | number; }

 private:
  std::thread worker_;
  mutable std::mutex mutex_;
  Ids ran_;
};

/// A level source that tells how often the worker has stood before a log statement.
class WatchedLevel final : public DebugLevelSource {
 public:
  explicit WatchedLevel(int32_t level) : level_(level) {}
  int32_t debugLevel() override {
    ++asked;
    return level_;
  }
  std::atomic<int> asked{0};

 private:
  const int32_t level_;
};

TEST_F(RequestQueueThreads, EveryRequestOfManyProducersRunsOnceAndInTheOrderOfItsProducer) {
  constexpr uint32_t kProducers = 6;
  constexpr uint32_t kEach = 1000;
  surroundings.level->level = 0;
  start();
  std::vector<std::thread> producers;
  for (uint32_t producer = 1; producer <= kProducers; ++producer) {
    producers.emplace_back([this, producer] {
      for (uint32_t i = 0; i < kEach; ++i) EXPECT_TRUE(queue.enqueue(request(idOf(producer, i))));
    });
  }
  for (auto& producer : producers) producer.join();
  ASSERT_TRUE(hasRun(kProducers * kEach));
  stop();
  std::map<uint32_t, uint32_t> next;
  for (uint32_t id : ran()) EXPECT_EQ(id & 0xffff, next[id >> 16]++);
  EXPECT_EQ(ran().size(), kProducers * kEach);
}

TEST_F(RequestQueueThreads, ARequestThatArrivesWhileTheWorkerGoesToSleepIsSeen) {
  constexpr size_t kRounds = 3000;
  std::atomic<size_t> done{0};
  std::thread worker([&] { queue.umsFileServiceQueueThread([&](_serviceinfo&) { ++done; }); });
  size_t lost = 0;
  for (size_t round = 1; round <= kRounds && lost == 0; ++round) {
    queue.enqueue(request(1));
    auto seen = [&] { return done.load() >= round; };
    for (int spin = 0; spin < 1000 && !seen(); ++spin) std::this_thread::yield();
    if (!eventually(seen)) ++lost;
  }
  EXPECT_EQ(lost, 0u);
  queue.exitServiceThread();
  worker.join();
  EXPECT_EQ(done.load(), kRounds);
}

TEST_F(RequestQueueThreads, EveryThreadThatServesTheQueueHearsOfItsEnd) {
  std::vector<std::thread> workers;
  for (int i = 0; i < 3; ++i)
    workers.emplace_back([this] { queue.umsFileServiceQueueThread([](_serviceinfo&) {}); });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));  // so that most often all of them sleep
  queue.exitServiceThread();
  for (std::thread& worker : workers) worker.join();
  EXPECT_EQ(log.count("umsFileServiceQueueThread Exit!"), 3u);
}

TEST_F(RequestQueueThreads, ASignalWithoutARequestDoesNothing) {
  start();
  for (int i = 0; i < 1000; ++i) queue.signal();
  queue.enqueue(request(1));
  for (int i = 0; i < 1000; ++i) queue.signal();
  ASSERT_TRUE(hasRun(1));
  stop();
  EXPECT_EQ(ran(), (Ids{1}));
}

TEST_F(RequestQueueThreads, EveryRequestIsEitherRunOrAnnouncedAsCancelled) {
  constexpr uint32_t kProducers = 3;
  constexpr uint32_t kEach = 700;
  surroundings.level->level = 0;
  start();
  std::vector<std::thread> threads;
  for (uint32_t producer = 1; producer <= kProducers; ++producer) {
    threads.emplace_back([this, producer] {
      for (uint32_t i = 0; i < kEach; ++i) EXPECT_TRUE(queue.enqueue(request(idOf(producer, i))));
    });
    threads.emplace_back([this, producer] {
      for (uint32_t i = 0; i < kEach; i += 3) queue.cancelFileAction(idOf(producer, i));
    });
  }
  for (auto& thread : threads) thread.join();
  ASSERT_TRUE(eventually([&] { return ran().size() + reports.lines().size() >= kProducers * kEach; }));
  stop();
  EXPECT_EQ(ran().size() + reports.lines().size(), kProducers * kEach);
  std::map<uint32_t, uint32_t> last;
  for (uint32_t id : ran()) {
    auto [found, first] = last.try_emplace(id >> 16, id & 0xffff);
    EXPECT_TRUE(first || found->second < (id & 0xffff)) << "out of order or twice";
    found->second = id & 0xffff;
  }
}

TEST_F(RequestQueueThreads, AnEndInTheMiddleOfProducingRunsNothingTwiceAndRefusesTheRest) {
  for (int round = 0; round < 20; ++round) {
    ServiceContext once(surroundings.environment, "<service>", std::nullopt);
    umsservice::RequestQueue brief(once, reports);
    std::atomic<int> accepted{0};
    std::atomic<int> ran{0};
    std::thread worker([&] { brief.umsFileServiceQueueThread([&](_serviceinfo&) { ++ran; }); });
    std::vector<std::thread> producers;
    for (int producer = 0; producer < 3; ++producer) {
      producers.emplace_back([&] {
        for (int i = 0; i < 10000 && brief.enqueue(request(1)); ++i) ++accepted;
      });
    }
    if (round % 2 == 0)
      brief.exitServiceThread();
    else
      brief.releaseAndDropAll(), brief.signal();
    worker.join();
    for (auto& producer : producers) producer.join();
    EXPECT_FALSE(brief.enqueue(request(1)));
    EXPECT_LE(ran.load(), accepted.load());
  }
}

TEST_F(RequestQueueThreads, AnExitEndsTheThreadsThatAHostLentAsWell) {
  std::atomic<int> ended{0};
  std::vector<std::thread> lent;
  for (int i = 0; i < 3; ++i) {
    lent.emplace_back([&] {
      queue.umsFileServiceQueueThread([](_serviceinfo&) {});
      ++ended;
    });
  }
  ASSERT_TRUE(eventually([&] { return log.count("Try Wait") >= 3; }));
  queue.exitServiceThread();
  EXPECT_TRUE(eventually([&] { return ended == 3; }));
  while (ended < 3) queue.signal();  // a failure ends too
  for (auto& thread : lent) thread.join();
}

TEST_F(RequestQueueThreads, TheWorkerTracesItsSleepAtLevelSix) {
  for (int level : {5, 6}) {
    auto watched = std::make_shared<WatchedLevel>(level);
    surroundings.environment.debugLevelSource = watched;
    log.clear();
    ServiceContext idle(surroundings.environment, "<service>", std::nullopt);
    umsservice::RequestQueue empty(idle, reports);
    std::thread worker([&] { empty.umsFileServiceQueueThread([](_serviceinfo&) {}); });
    EXPECT_TRUE(eventually([&] { return watched->asked > 0; }));
    empty.exitServiceThread();
    worker.join();
    EXPECT_EQ(log.has("Try Wait"), level == 6);
  }
}

TEST_F(RequestQueueThreads, ADeviceThatIsMarkedGoneEndsTheWorkerAtTheNextSignal) {
  start();
  ASSERT_TRUE(log.waitFor("Try Wait"));
  context.releaseState = 1;
  EXPECT_FALSE(queue.enqueue(request(1)));
  queue.signal();
  ASSERT_TRUE(log.waitFor("umsFileServiceQueueThread Exit!"));
  EXPECT_EQ(ran(), Ids());
}

}  // namespace
}  // namespace umsservice::testing
