#include <cerrno>
#include <filesystem>

#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kCopyMethod = "-[UMSService doCopyPodcastContents:]";

using PodcastCopyFailure = PodcastTest;

TEST_F(PodcastCopyFailure, RefusesARequestThatIsNotAboutPodcasts) {
  _serviceinfo record = request({channel("News", {episode("1.mp3")})});
  record.mediaType = kMediaMusic;
  expectLine(surroundings, 3, kCopyMethod, "Media Type is not podcast. Media Type = 1",
             [&] { EXPECT_FALSE(service->doCopyPodcastContents(record)); });
  EXPECT_EQ(notifications.all().size(), 0u);
  EXPECT_EQ(treeOf(internal), Texts{});
}

TEST_F(PodcastCopyFailure, CountsANilChannelAsOneFailure) {
  expectLine(surroundings, 1, kCopyMethod, "Podcast data is nil. Next Podcast search", [&] {
    std::filesystem::remove_all(podcasts);
    notifications.clear();
    copy({Null(), channel("News", {episode("1.mp3")})});
  });
  EXPECT_EQ(lastFailCount(), 1u);
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
  EXPECT_EQ(outcomes()[0], "0 failed (nil) 0x23000005");
  EXPECT_EQ(outcomes()[1], "1 done $/in/1.mp3 0x00000000");
}

TEST_F(PodcastCopyFailure, PassesOverAChannelWithoutEpisodes) {
  expectLine(surroundings, 3, kCopyMethod, "Podcast Episode is NULL", [&] {
    EXPECT_FALSE(copy({Dictionary{{"Title", "News"}}}));
  });
  EXPECT_EQ(story(surroundings), Lines{});
  EXPECT_EQ(outcomes(), Lines{});
  EXPECT_EQ(treeOf(internal), Texts{});
}

TEST_F(PodcastCopyFailure, CountsEveryEpisodeOfAChannelWhoseFolderCannotBeMade) {
  sandbox.file("internal/Podcast/News", "a file");
  expectLine(surroundings, 1, kCopyMethod, "Create Folder for News is failed", [&] {
    notifications.clear();
    EXPECT_TRUE(
        copy({channel("News", {episode("1.mp3"), episode("2.mp3")}), channel("Arts", {episode("3.mp3")})}));
  });
  EXPECT_EQ(story(surroundings)[0], "progress 3/3 fail 2 status 4 100% News");
  EXPECT_EQ(bytesOf(podcasts + "/News"), "a file");
  EXPECT_EQ(listed("Arts"), Texts{"3.mp3"});
  EXPECT_EQ(outcomes()[0], "0 failed $/in/1.mp3 0x20000002");
  EXPECT_EQ(outcomes()[1], "1 failed $/in/2.mp3 0x20000002");
  EXPECT_EQ(outcomes()[2], "2 done $/in/3.mp3 0x00000000");
}

TEST_F(PodcastCopyFailure, CountsWhatIsNoEpisodeAndGoesOn) {
  Dictionary pathless{{"Url", "http://host/x"}};
  Dictionary nameless{{"Url", "http://host/y"}, {key::kFilePath, "/"}};
  const std::pair<Value, const char*> kRows[] = {
      {Null(), "Episode Data is nil."},
      {pathless, "Episode Medias File Path is nil."},
      {nameless, "Target Episode Path is nil. Next episode processing."},
  };
  for (const auto& [bad, message] : kRows) {
    expectLine(surroundings, 1, kCopyMethod, message, [&, bad = bad] {
      std::filesystem::remove_all(podcasts);
      EXPECT_TRUE(copy({channel("News", {bad, episode("1.mp3")})}));
    });
    EXPECT_EQ(listed("News"), Texts{"1.mp3"});
    EXPECT_EQ(lastFailCount(), 1u);
    EXPECT_EQ(items.outcomes().end()[-2].errorNumber, kErrorBadCopyItem);
  }
}

TEST_F(PodcastCopyFailure, SaysWhichEpisodeFailedAndLeavesItOutOfTheIndex) {
  expectLine(surroundings, 1, kCopyMethod,
             "Podcast Download $/in/1.mp3 to $/internal/Podcast/News/1.mp3 failed.", [&] {
               std::filesystem::remove_all(podcasts);
               notifications.clear();
               EXPECT_TRUE(copy({channel("News", {missing("1.mp3"), episode("2.mp3")})}));
             });
  EXPECT_EQ(listed("News"), Texts{"2.mp3"});
  EXPECT_EQ(outcomes()[0], "0 failed $/in/1.mp3 0x20000008");
  EXPECT_EQ(items.outcomes()[0].reason, "No such file or directory");
  EXPECT_EQ(results().size(), 1u);
}

TEST_F(PodcastCopyFailure, GivesAnInterruptedWriteItsOwnNumber) {
  files.failNth(FileCall::Write, 1, EIO);
  copy({channel("News", {episode("1.mp3"), episode("2.mp3")})});
  EXPECT_EQ(outcomes(), (Texts{"0 failed $/in/1.mp3 0x20000005", "1 done $/in/2.mp3 0x00000000"}));
  EXPECT_EQ(listed("News"), Texts{"2.mp3"});
}

TEST_F(PodcastCopyFailure, NeverLetsANameLeadOutOfThePodcastFolder) {
  std::string precious = sandbox.file("internal/Music/song.mp3", "precious");
  sandbox.file("internal/Podcast/other.mp3", "precious");
  useDelegate();
  delegate.answer = {true, true, true};
  const Texts before = treeOf(internal);
  for (const Value& title :
       {Value(), Value(""), Value("."), Value(".."), Value("  "), Value("http://"), Value(5)}) {
    notifications.clear();
    EXPECT_FALSE(copy({channel(title, {episode("1.mp3"), episode("2.mp3")})})) << title.description();
    EXPECT_EQ(treeOf(internal), before) << title.description();
    EXPECT_EQ(story(surroundings), Lines{"progress 2/2 fail 1 status 4 100% (none)"});
  }
  EXPECT_EQ(outcomes()[0], "0 failed $/in/1.mp3 0x23000005");
  EXPECT_EQ(outcomes()[1], "1 failed $/in/2.mp3 0x23000005");
}

TEST_F(PodcastCopyFailure, NeverTakesAnEpisodesNameForItsFolder) {
  copy({channel("News", {episode("1.mp3")})});
  useDelegate();
  delegate.answer = {true, true, true};
  for (const char* path : {"", "/", "/in/..", "/in/.", "/in/ ", "/in/\t"}) {
    Dictionary bad{{"Url", path}, {key::kFilePath, path}};
    EXPECT_TRUE(copy({channel("News", {bad})}));
    EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/News.xml"})) << path;
    EXPECT_EQ(items.outcomes().back().errorNumber, kErrorBadCopyItem) << path;
  }
  EXPECT_EQ(delegate.asked(), Texts{});
}

TEST_F(PodcastCopyFailure, WritesTheIndexOfWhatWasCopiedWhenCancelledBetweenEpisodes) {
  once(kMediaResultNotification, [&] { service->cancelFileAction(7); });
  EXPECT_TRUE(copy({channel("News", {episode("1.mp3"), episode("2.mp3"), episode("3.mp3")}),
                    channel("Arts", {episode("4.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/News.xml"}));
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
  EXPECT_EQ(numbers(progress(), key::kTransferStatus), (std::vector<uint32_t>{2, 3, 3}));
  EXPECT_EQ(linesOf(surroundings, kCopyMethod),
            (Lines{"Cancel Podcast Processing.", "Cancel Podcast Processing."}));
  EXPECT_EQ(outcomes(),
            (Texts{"0 done $/in/1.mp3 0x00000000", "1 not reached $/in/2.mp3 0x10000008",
                   "2 not reached $/in/3.mp3 0x10000008", "3 not reached $/in/4.mp3 0x10000008"}));
}

TEST_F(PodcastCopyFailure, AnswersACancelSoThatTheNextRequestOfThatNumberRuns) {
  once(kMediaResultNotification, [&] {
    service->cancelFileAction(7);
    service->cancelFileAction(7);
  });
  copy({channel("News", {episode("1.mp3"), episode("2.mp3")})});
  EXPECT_FALSE(service->isCancelServiceId(7));
  EXPECT_TRUE(copy({channel("News", {episode("2.mp3")})}));
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3"}));
}

TEST_F(PodcastCopyFailure, DoesNothingForARequestThatWasCancelledBefore) {
  service->cancelFileAction(7);
  EXPECT_FALSE(copy({channel("News", {episode("1.mp3")})}));
  EXPECT_EQ(treeOf(internal), Texts{});
  EXPECT_FALSE(service->isCancelServiceId(7));
  EXPECT_EQ(outcomes(), Texts{"0 not reached $/in/1.mp3 0x10000008"});
}

TEST_F(PodcastCopyFailure, LeavesAWholeNumberOfUnitsOfTheEpisodeThatACancelInterrupts) {
  Dictionary large = episode("2.mp3");
  large.set(key::kFilePath, sandbox.patternFile("in/2.mp3", 5'000'000));
  large.set("Length", 5'000'000);
  auto cancelled = std::make_shared<bool>(false);
  notifications.onEach([this, cancelled](const Notification& posted) {
    bool inside = posted.userInfo.get(key::kCurrentProgress).intValue() > 20;
    if (inside && !std::exchange(*cancelled, true)) service->cancelFileAction(7);
  });
  copy({channel("News", {episode("1.mp3"), large, episode("3.mp3")})});
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
  uint64_t left = bytesOf(podcasts + "/News/2.mp3").size();
  EXPECT_GT(left, 1'000'000u);
  EXPECT_LT(left, 5'000'000u);
  EXPECT_EQ(left % 4096, 0u);
  EXPECT_FALSE(exists(podcasts + "/News/3.mp3"));
  EXPECT_EQ(outcomes()[1], "1 not reached $/in/2.mp3 0x10000008");
  EXPECT_EQ(items.outcomes()[1].bytes, left);
  EXPECT_FALSE(service->isCancelServiceId(7));
}

TEST_F(PodcastCopyFailure, LeavesTheOldIndexWhenTheServiceIsReleasedBetweenEpisodes) {
  copy({channel("News", {episode("1.mp3")})});
  forget();
  once(kMediaResultNotification, [&] { service->disconnectDevice("location-1"); });
  EXPECT_FALSE(
      copy({channel("News", {episode("2.mp3"), episode("3.mp3")}), channel("Arts", {episode("4.mp3")})}));
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/2.mp3", "News/News.xml"}));
  EXPECT_EQ(linesOf(surroundings, kCopyMethod),
            (Lines{"Device Disconnected - location-1", "Podcast XML Data send is failed.",
                   "Device Disconnected - location-1"}));
  EXPECT_EQ(numbers(progress(), key::kTransferStatus).back(), 3u);
}

TEST_F(PodcastCopyFailure, SaysAtItsLevelThatTheDeviceIsGone) {
  service->disconnectDevice("location-1");
  expectLine(surroundings, 5, kCopyMethod, "Device Disconnected - location-1",
             [&] { EXPECT_FALSE(copy({channel("News", {episode("1.mp3")})})); });
  EXPECT_EQ(treeOf(internal), Texts{});
}

TEST_F(PodcastCopyFailure, KeepsTheOldIndexWhenTheNewOneCannotBeWritten) {
  copy({channel("News", {episode("1.mp3")})});
  const std::string before = bytesOf(podcasts + "/News/News.xml");
  for (FileCall call :
       {FileCall::CreateFile, FileCall::Write, FileCall::Sync, FileCall::Close, FileCall::Replace}) {
    files.setFault([call](FileCall made, const std::string& path) {
      bool ofTheIndex = path.ends_with(".new") || path.ends_with(".xml");
      return made == call && ofTheIndex ? EIO : 0;
    });
    EXPECT_FALSE(copy({channel("News", {})}));
    EXPECT_EQ(bytesOf(podcasts + "/News/News.xml"), before);
    EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/News.xml"}));
  }
  expectLine(surroundings, 3, kCopyMethod, "Podcast XML Data send is failed.",
             [&] { EXPECT_FALSE(copy({channel("News", {})})); });
  expectLine(surroundings, 1, "-[UMSService sendXmlData:xmlDocument:filePath:podcastName:]",
             "XML File Create is failed. XML File Path = $/internal/Podcast/News",
             [&] { EXPECT_FALSE(copy({channel("News", {})})); });
}

TEST_F(PodcastCopyFailure, KeepsADamagedIndexBesideTheNewOne) {
  sandbox.file("internal/Podcast/News/News.xml", "<channel><Title>half");
  EXPECT_TRUE(copy({channel("News", {episode("1.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/News.xml", "News/News.xml.damaged"}));
  EXPECT_EQ(bytesOf(podcasts + "/News/News.xml.damaged"), "<channel><Title>half");
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
}

TEST_F(PodcastCopyFailure, KeepsEveryDamagedIndexUnderANameOfItsOwn) {
  for (const char* damaged : {"first", "second", "third"}) {
    sandbox.file("internal/Podcast/News/News.xml", damaged);
    EXPECT_TRUE(copy({channel("News", {})}));
  }
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/News.xml", "News/News.xml.damaged",
                                     "News/News.xml.damaged.2", "News/News.xml.damaged.3"}));
  EXPECT_EQ(bytesOf(podcasts + "/News/News.xml.damaged"), "first");
  EXPECT_EQ(bytesOf(podcasts + "/News/News.xml.damaged.3"), "third");
}

TEST_F(PodcastCopyFailure, KeepsAGoodIndexThatCouldNotBeReadOnce) {
  copy({channel("News", {episode("1.mp3")})});
  const std::string before = bytesOf(podcasts + "/News/News.xml");
  files.failNth(FileCall::OpenForReading, 1, EIO);
  EXPECT_TRUE(copy({channel("News", {episode("2.mp3")})}));
  EXPECT_EQ(bytesOf(podcasts + "/News/News.xml.damaged"), before);
  EXPECT_EQ(listed("News"), Texts{"2.mp3"});
}

TEST_F(PodcastCopyFailure, LeavesADamagedIndexInItsPlaceWhenNothingCanBeWritten) {
  std::string damaged = sandbox.file("internal/Podcast/News/News.xml", "damaged");
  files.failAlways(FileCall::Replace, "News.xml", ENOSPC);
  EXPECT_FALSE(copy({channel("News", {episode("1.mp3")})}));
  EXPECT_EQ(bytesOf(damaged), "damaged");
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/News.xml"}));
}

class PodcastCopyToAFullVolume : public PodcastTest {
 protected:
  void SetUp() override { REQUIRE_TMPFS_VOLUMES(); }
};

TEST_F(PodcastCopyToAFullVolume, CountsChannelsSendsAResultAndTriesTheNextChannel) {
  TmpfsVolume volume(internal, 512 * 1024);
  std::string large(600 * 1024, 'x');
  EXPECT_TRUE(copy({channel("A", {episode("1.mp3"), episode("2.mp3", large), episode("3.mp3")}),
                    channel("B", {episode("4.mp3")}), channel("C", {episode("5.mp3")})}));
  EXPECT_EQ(listed("A"), Texts{"1.mp3"});
  EXPECT_EQ(listed("B"), Texts{"4.mp3"});
  EXPECT_EQ(listed("C"), Texts{"5.mp3"});
  EXPECT_EQ(numbers(progress(), key::kFail).back(), 3u);
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kItemTransferred, kErrorVolumeFull, kItemTransferred, kItemTransferred}));
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 failed $/in/2.mp3 0x1000000a",
                               "2 not reached $/in/3.mp3 0x1000000a", "3 done $/in/4.mp3 0x00000000",
                               "4 done $/in/5.mp3 0x00000000"}));
}

TEST_F(PodcastCopyToAFullVolume, KeepsTheOldIndexWhenThereIsNoRoomForTheNewOne) {
  TmpfsVolume volume(internal, 512 * 1024);
  copy({channel("News", {episode("1.mp3")})});
  const std::string before = bytesOf(podcasts + "/News/News.xml");
  volume.fillUpTo(4096);
  EXPECT_FALSE(copy({channel("News", {episode("2.mp3", "12")})}));
  EXPECT_EQ(bytesOf(podcasts + "/News/News.xml"), before);
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/2.mp3", "News/News.xml"}));
}

TEST_F(PodcastCopyToAFullVolume, WritesNothingOnTheComputerWhenTheVolumeIsPulledBeforeTheIndex) {
  TmpfsVolume volume(internal, 512 * 1024);
  once(kMediaResultNotification, [&] { volume.vanish(); });
  EXPECT_FALSE(copy({channel("News", {episode("1.mp3")})}));
  EXPECT_EQ(treeOf(internal), Texts{});
}

TEST_F(PodcastCopyFailure, LeavesTheIndexOfADeviceThatGoesAwayBeforeItIsWritten) {
  copy({channel("News", {episode("1.mp3")})});
  std::string elsewhere = sandbox.at("pulled");
  once(kMediaResultNotification, [&] { std::filesystem::rename(internal, elsewhere); });
  EXPECT_FALSE(copy({channel("News", {episode("2.mp3")})}));
  EXPECT_FALSE(exists(internal));
  EXPECT_EQ(treeOf(elsewhere + "/Podcast"), (Texts{"News/", "News/1.mp3", "News/2.mp3", "News/News.xml"}));
  EXPECT_EQ(fieldOf(service->checkXmlData(elsewhere + "/Podcast/News", "News"), "FilePath"), Texts{"1.mp3"});
}

}  // namespace
}  // namespace umsservice::testing
