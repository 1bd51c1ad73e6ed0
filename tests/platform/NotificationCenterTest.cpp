#include <atomic>
#include <thread>

#include "umsservice/NotificationCenter.h"

namespace umsservice::testing {
namespace {

class NotificationCenters : public ::testing::Test {
 protected:
  /// Adds an observer that writes its name down.
  NotificationCenter::ObserverId observe(const std::string& name, const std::string& observer) {
    return center->addObserver(name, [this, observer](const Notification&) { called.push_back(observer); });
  }

  using Names = std::vector<std::string>;
  std::shared_ptr<NotificationCenter> center = makeNotificationCenter();
  Names called;
};

TEST_F(NotificationCenters, CallTheObserversOfANameInTheOrderTheyWereAdded) {
  observe("A", "first");
  observe("B", "other");
  observe("A", "second");
  observe("A", "third");
  center->post("A", Dictionary());
  EXPECT_EQ(called, (Names{"first", "second", "third"}));
}

TEST_F(NotificationCenters, PassTheNameAndTheVeryDictionaryThatWasPosted) {
  Dictionary info{{"key", 7}};
  std::string name;
  center->addObserver("A", [&](const Notification& notification) {
    name = notification.name;
    EXPECT_TRUE(notification.userInfo.isSame(info));
  });
  center->post("A", info);
  EXPECT_EQ(name, "A");
}

TEST_F(NotificationCenters, CallHandlersOnThePostingThreadBeforePostReturns) {
  std::thread::id seen;
  center->addObserver("A", [&](const Notification&) { seen = std::this_thread::get_id(); });
  center->post("A", Dictionary());
  EXPECT_EQ(seen, std::this_thread::get_id());
}

TEST_F(NotificationCenters, TellNamesApartExactly) {
  observe("A", "upper");
  observe("", "empty");
  center->post("a", Dictionary());
  center->post("AA", Dictionary());
  EXPECT_TRUE(called.empty());
  center->post("", Dictionary());
  EXPECT_EQ(called, Names{"empty"});
}

TEST_F(NotificationCenters, DoNotCallAnObserverThatWasRemoved) {
  auto first = observe("A", "first");
  observe("A", "second");
  center->removeObserver(first);
  center->post("A", Dictionary());
  EXPECT_EQ(called, Names{"second"});
}

TEST_F(NotificationCenters, IgnoreRemovalOfUnknownAndOfRemovedObservers) {
  auto first = observe("A", "first");
  center->removeObserver(first + 100);
  center->removeObserver(0);
  center->removeObserver(first);
  center->removeObserver(first);
  auto second = observe("A", "second");
  EXPECT_NE(first, second);
  center->removeObserver(first);
  center->post("A", Dictionary());
  EXPECT_EQ(called, Names{"second"});
}

TEST_F(NotificationCenters, LetAHandlerRemoveItselfAndThoseStillToCome) {
  NotificationCenter::ObserverId self = 0;
  NotificationCenter::ObserverId later = 0;
  self = center->addObserver("A", [&](const Notification&) {
    called.push_back("self");
    center->removeObserver(self);
    center->removeObserver(later);
  });
  later = observe("A", "later");
  observe("A", "last");
  center->post("A", Dictionary());
  EXPECT_EQ(called, (Names{"self", "last"}));
  center->post("A", Dictionary());
  EXPECT_EQ(called, (Names{"self", "last", "last"}));
}

TEST_F(NotificationCenters, CallAnObserverAddedInsideAHandlerFromTheNextPostOn) {
  bool added = false;
  center->addObserver("A", [&](const Notification&) {
    if (!std::exchange(added, true)) observe("A", "new");
  });
  center->post("A", Dictionary());
  EXPECT_TRUE(called.empty());
  center->post("A", Dictionary());
  EXPECT_EQ(called, Names{"new"});
}

TEST_F(NotificationCenters, LetAHandlerPost) {
  observe("B", "inner");
  center->addObserver("A", [&](const Notification&) {
    center->post("B", Dictionary());
    called.push_back("outer");
  });
  center->post("A", Dictionary());
  EXPECT_EQ(called, (Names{"inner", "outer"}));
}

TEST_F(NotificationCenters, LetAHandlerGoWhoseOwnResourcesComeBackToTheCenter) {
  // What a handler owns may itself end an observation when it goes.
  struct Owner {
    std::shared_ptr<NotificationCenter> center;
    NotificationCenter::ObserverId other;
    ~Owner() { center->removeObserver(other); }
  };
  auto other = observe("A", "other");
  auto owner = std::make_shared<Owner>(Owner{center, 0});
  owner->other = other;
  auto first = center->addObserver("A", [owner](const Notification&) {});
  owner.reset();
  center->removeObserver(first);
  center->post("A", Dictionary());
  EXPECT_TRUE(called.empty());
}

TEST_F(NotificationCenters, PassOverAnEmptyHandler) {
  center->addObserver("A", nullptr);
  observe("A", "second");
  center->post("A", Dictionary());
  EXPECT_EQ(called, Names{"second"});
}

TEST_F(NotificationCenters, AreSeparateButForTheDefaultOne) {
  observe("A", "mine");
  makeNotificationCenter()->post("A", Dictionary());
  defaultNotificationCenter()->post("A", Dictionary());
  EXPECT_TRUE(called.empty());
  EXPECT_EQ(defaultNotificationCenter(), defaultNotificationCenter());
}

TEST_F(NotificationCenters, DeliverEveryPostOfSeveralThreadsWhileObserversComeAndGo) {
  std::atomic<int> delivered{0};
  center->addObserver("A", [&](const Notification&) { ++delivered; });
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 300; ++n) center->post("A", Dictionary{{"n", n}});
    });
  }
  threads.emplace_back([&] {
    for (int n = 0; n < 300; ++n) {
      auto observer =
          center->addObserver("A", [](const Notification& seen) { (void)seen.userInfo.get("n"); });
      center->removeObserver(observer);
    }
  });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(delivered, 900);
}

TEST_F(NotificationCenters, DoNotCallRemovedObserversInPostsThatBeginLaterOnOtherThreads) {
  for (int round = 0; round < 50; ++round) {
    std::atomic<bool> removed{false};
    std::atomic<int> late{0};
    auto observer = center->addObserver("A", [&](const Notification& seen) {
      if (seen.userInfo.contains("after")) ++late;
    });
    std::thread poster([&] {
      center->post("A", Dictionary());
      while (!removed) std::this_thread::yield();
      center->post("A", Dictionary{{"after", true}});
    });
    center->removeObserver(observer);
    removed = true;
    poster.join();
    EXPECT_EQ(late, 0);
  }
}

}  // namespace
}  // namespace umsservice::testing
