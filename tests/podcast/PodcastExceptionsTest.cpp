/// A handler of the host's that throws in the middle of a sync or a delete: the request ends there, and the
/// index says what is on the device.
#include <atomic>
#include <stdexcept>

#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

class PodcastExceptions : public PodcastTest {
 protected:
  /// Throws at the first result of an item.
  void throwAtFirstResult() {
    notifications.onEach([thrown = std::make_shared<std::atomic<bool>>(false)](const Notification& posted) {
      if (posted.name == kMediaResultNotification && !thrown->exchange(true))
        throw std::runtime_error("no more");
    });
  }
  /// Waits for the end of the request that was queued, and of the run behind it.
  void waitForItsEnd() {
    ASSERT_TRUE(notifications.waitUntil([](const Notification& posted) {
      return posted.userInfo.get(key::kTransferStatus).unsignedIntValue() == kTransferCancelled;
    }));
    std::lock_guard untilTheRunIsOver(service->synchronizedSection());
  }
  std::vector<uint32_t> endsOfProgress() const {
    std::vector<uint32_t> ends;
    for (uint32_t status : numbers(progress(), key::kTransferStatus)) {
      if (status != kTransferRunning) ends.push_back(status);
    }
    return ends;
  }
  Texts outcomesAfter(size_t told) const {
    Texts all = outcomes();
    return Texts(all.begin() + static_cast<std::ptrdiff_t>(told), all.end());
  }
  Dictionary onDevice(const std::string& name) const {
    return Dictionary{{"Url", "http://host/" + name}, {key::kFilePath, podcasts + "/News/" + name}};
  }
};

TEST_F(PodcastExceptions, InASyncLeaveWhatHasArrivedInTheIndex) {
  throwAtFirstResult();
  Array channels{channel("News", {episode("1.mp3"), episode("2.mp3")}), channel("Arts", {episode("3.mp3")})};
  ASSERT_TRUE(service->syncContents(7, channels, kMediaPodcast, true));
  waitForItsEnd();
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/News.xml"}));
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 not reached $/in/2.mp3 0x23000001",
                               "2 not reached $/in/3.mp3 0x23000001"}));
  EXPECT_EQ(endsOfProgress(), (std::vector<uint32_t>{kTransferCancelled}));
}

TEST_F(PodcastExceptions, InAFallOverLeaveWhatHasArrivedInTheIndexOfTheOtherVolume) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume tiny(internal, 4096);
  throwAtFirstResult();
  Array channels{channel("News", {episode("1.mp3", std::string(5000, 'x')), episode("2.mp3")})};
  ASSERT_TRUE(service->syncContents(7, channels, kMediaPodcast, true));
  waitForItsEnd();
  EXPECT_EQ(treeOf(card + "/Podcast"), (Texts{"News/", "News/1.mp3", "News/News.xml"}));
  EXPECT_EQ(fieldOf(service->checkXmlData(card + "/Podcast/News", "News"), "FilePath"), Texts{"1.mp3"});
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 not reached $/in/2.mp3 0x23000001"}));
  EXPECT_EQ(endsOfProgress(), (std::vector<uint32_t>{kTransferCancelled}));
}

TEST_F(PodcastExceptions, InADeleteTakeWhatIsGoneOutOfTheIndex) {
  copy({channel("News", {episode("1.mp3"), episode("2.mp3"), episode("3.mp3")})});
  const size_t told = items.outcomes().size();
  notifications.clear();
  throwAtFirstResult();
  Array channels{channel("News", {onDevice("1.mp3"), onDevice("2.mp3")})};
  ASSERT_TRUE(service->deleteContents(7, channels, kMediaPodcast, 0));
  waitForItsEnd();
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/2.mp3", "News/3.mp3", "News/News.xml"}));
  EXPECT_EQ(listed("News"), (Texts{"2.mp3", "3.mp3"}));
  EXPECT_EQ(outcomesAfter(told), (Texts{"0 done $/internal/Podcast/News/1.mp3 0x00000000",
                                        "1 not reached $/internal/Podcast/News/2.mp3 0x23000001"}));
  EXPECT_EQ(endsOfProgress(), (std::vector<uint32_t>{kTransferCancelled}));
}

TEST_F(PodcastExceptions, InTheDeleteOfAWholeChannelLeaveItsEpisodesCountedAsGone) {
  copy({channel("News", {episode("1.mp3"), episode("2.mp3")}), channel("Arts", {episode("3.mp3")})});
  const size_t told = items.outcomes().size();
  notifications.clear();
  throwAtFirstResult();
  Dictionary whole = channel("News", {onDevice("1.mp3"), onDevice("2.mp3")});
  whole.set("Delete", true);
  Dictionary arts = episode("3.mp3");
  arts.set(key::kFilePath, podcasts + "/Arts/3.mp3");
  ASSERT_TRUE(service->deleteContents(7, Array{whole, channel("Arts", {arts, arts})}, kMediaPodcast, 0));
  waitForItsEnd();
  EXPECT_EQ(treeOf(podcasts), (Texts{"Arts/", "Arts/3.mp3", "Arts/Arts.xml"}));
  EXPECT_EQ(outcomesAfter(told), (Texts{"0 done $/internal/Podcast/News/1.mp3 0x00000000",
                                        "1 done $/internal/Podcast/News/2.mp3 0x00000000",
                                        "2 not reached $/internal/Podcast/Arts/3.mp3 0x23000001",
                                        "3 not reached $/internal/Podcast/Arts/3.mp3 0x23000001"}));
  EXPECT_EQ(endsOfProgress(), (std::vector<uint32_t>{kTransferCancelled}));
}

}  // namespace
}  // namespace umsservice::testing
