#include <cerrno>
#include <filesystem>

#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kSyncName = "-[UMSService doSyncPodcastContents:]";

/// What a sync leaves behind when the volume fills, or goes, or the run is stopped in the middle.
class PodcastSyncEnds : public PodcastTest {
 protected:
  bool sync(const Array& contents, uint32_t serviceID = 7) {
    _serviceinfo record = request(contents, serviceID);
    record.isStartInternal = 1;
    return service->doSyncPodcastContents(record);
  }
  /// A large episode that says that it is small.
  Dictionary lying(const std::string& name) const {
    Dictionary large = episode(name, std::string(300 * 1024, 'x'));
    large.set("Length", 1);
    return large;
  }
  Texts outcomesAfter(size_t told) const {
    Texts all = outcomes();
    return Texts(all.begin() + static_cast<std::ptrdiff_t>(told), all.end());
  }
  /// Starts from a channel with one old episode.
  void putOldEpisode() {
    sync({channel("News", {episode("1.mp3", "old")})});
    forget();
  }
};

TEST_F(PodcastSyncEnds, ListsAndCountsAnEpisodeForWhichTheVolumeHasNoRoom) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume small(internal, 128 * 1024);
  EXPECT_TRUE(
      sync({channel("News", {lying("1.mp3"), episode("2.mp3")}), channel("Arts", {episode("3.mp3")})}));
  EXPECT_EQ(story(surroundings),
            (Lines{"result 0x1000000a volume 0 $/in/1.mp3", "progress 2/3 fail 0 status 2 47% 2.mp3",
                   "result 0x10000001 volume 0 $/in/2.mp3", "progress 3/3 fail 0 status 2 94% 3.mp3",
                   "result 0x10000001 volume 0 $/in/3.mp3", "progress 3/3 fail 0 status 4 100% 3.mp3"}))
      << "the episode's own result, and none for the volume";
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(treeOf(podcasts),
            (Texts{"Arts/", "Arts/3.mp3", "Arts/Arts.xml", "News/", "News/2.mp3", "News/News.xml"}));
  EXPECT_EQ(treeOf(card), Texts{}) << "no other volume is tried";
  EXPECT_EQ(outcomes(), (Texts{"0 failed $/in/1.mp3 0x1000000a", "1 done $/in/2.mp3 0x00000000",
                               "2 done $/in/3.mp3 0x00000000"}));
}

TEST_F(PodcastSyncEnds, KeepsTheOldIndexWhenTheVolumeHasNoRoomForTheNewOne) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume small(internal, 128 * 1024);
  putOldEpisode();
  const std::string before = bytesOf(podcasts + "/News/News.xml");
  small.fillUpTo(4096);
  Dictionary two = episode("2.mp3", std::string(4096, 'x'));
  two.set("Length", 1);
  expectLine(surroundings, 3, kSyncName, "Podcast XML Data send is failed.", [&] {
    std::filesystem::remove(podcasts + "/News/2.mp3");
    EXPECT_FALSE(sync({channel("News", {two.mutableCopy()})}));
  });
  EXPECT_EQ(bytesOf(podcasts + "/News/News.xml"), before);
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/2.mp3", "News/News.xml"}));
}

TEST_F(PodcastSyncEnds, StopsForAStopInTheSecondCopyAskedForOrNot) {
  useDelegate();
  delegate.answer = {true, true, true};
  for (uint32_t serviceID : {0x00200005u, 0x00100005u}) {
    std::filesystem::remove_all(podcasts);
    putOldEpisode();
    const size_t told = items.outcomes().size();
    files.setFault([&](FileCall call, const std::string& path) {
      if (call == FileCall::Remove && path.ends_with("1.mp3")) service->cancelFileAction(serviceID);
      return 0;
    });
    EXPECT_TRUE(sync({channel("News", {episode("1.mp3", "new"), episode("2.mp3")})}, serviceID));
    EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/News.xml"}));
    EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "") << "stopped before the first of its bytes";
    EXPECT_EQ(listed("News"), Texts{"1.mp3"});
    EXPECT_EQ(results().size(), 0u);
    EXPECT_EQ(numbers(progress(), key::kTransferStatus).back(), 3u);
    EXPECT_FALSE(service->isCancelServiceId(serviceID));
    EXPECT_EQ(outcomesAfter(told),
              (Texts{"0 not reached $/in/1.mp3 0x10000008", "1 not reached $/in/2.mp3 0x10000008"}));
    files.setFault(nullptr);
  }
}

TEST_F(PodcastSyncEnds, LeavesTheIndexOfADeviceThatGoesAwayBeforeItIsWritten) {
  putOldEpisode();
  const std::string elsewhere = sandbox.at("pulled");
  once(kMediaResultNotification, [&] { std::filesystem::rename(internal, elsewhere); });
  EXPECT_FALSE(sync({channel("News", {episode("2.mp3")})}));
  EXPECT_EQ(linesOf(surroundings, kSyncName), Lines{"Podcast XML Data send is failed."});
  EXPECT_FALSE(exists(internal));
  EXPECT_EQ(treeOf(elsewhere + "/Podcast"), (Texts{"News/", "News/1.mp3", "News/2.mp3", "News/News.xml"}));
  EXPECT_EQ(fieldOf(service->checkXmlData(elsewhere + "/Podcast/News", "News"), "FilePath"), Texts{"1.mp3"});
}

TEST_F(PodcastSyncEnds, WritesNoIndexOnTheComputerWhenTheVolumeIsPulled) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 512 * 1024);
  once(kMediaResultNotification, [&] { volume.vanish(); });
  EXPECT_FALSE(sync({channel("News", {episode("1.mp3")})}));
  EXPECT_EQ(treeOf(internal), Texts{});
  EXPECT_EQ(outcomes(), Texts{"0 done $/in/1.mp3 0x00000000"});
}

/// A delete from a device that goes away in the middle.
class PodcastDeleteEnds : public PodcastSyncEnds {
 protected:
  bool remove(const std::vector<Value>& episodes) {
    return service->doDeletePodcastContents(request({channel("News", episodes)}));
  }
  Dictionary onDevice(const std::string& name) const {
    return Dictionary{{"Url", "http://host/" + name}, {key::kFilePath, podcasts + "/News/" + name}};
  }
};

TEST_F(PodcastDeleteEnds, LeavesTheIndexOfADeviceThatGoesAwayBeforeItIsWritten) {
  copy({channel("News", {episode("1.mp3"), episode("2.mp3"), episode("3.mp3")})});
  const size_t told = items.outcomes().size();
  forget();
  const std::string elsewhere = sandbox.at("pulled");
  once(kMediaResultNotification, [&] { std::filesystem::rename(internal, elsewhere); });
  EXPECT_FALSE(remove({onDevice("1.mp3"), onDevice("2.mp3")}));
  EXPECT_TRUE(log.has("Podcast XML Data send is failed."));
  EXPECT_FALSE(exists(internal));
  EXPECT_EQ(treeOf(elsewhere + "/Podcast"), (Texts{"News/", "News/2.mp3", "News/3.mp3", "News/News.xml"}));
  EXPECT_EQ(fieldOf(service->checkXmlData(elsewhere + "/Podcast/News", "News"), "FilePath"),
            (Texts{"1.mp3", "2.mp3", "3.mp3"}))
      << "the index that the device went away with";
  EXPECT_EQ(outcomesAfter(told), (Texts{"0 done $/internal/Podcast/News/1.mp3 0x00000000",
                                        "1 failed $/internal/Podcast/News/2.mp3 0x20000003"}));
}

TEST_F(PodcastDeleteEnds, CallsNoFolderGoneThatDoesNotAnswerAnyMore) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 512 * 1024);
  copy({channel("News", {episode("1.mp3")})});
  forget();
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::List && path.ends_with("/News")) volume.vanish();
    return 0;
  });
  EXPECT_FALSE(remove({onDevice("1.mp3")}));
  EXPECT_EQ(treeOf(internal), Texts{});
  EXPECT_FALSE(podcastOf(results().back()).contains("Delete"));
  EXPECT_TRUE(log.has("Podcast XML Data send is failed."));
}

}  // namespace
}  // namespace umsservice::testing
