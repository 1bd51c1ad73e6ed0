#include <cerrno>
#include <filesystem>

#include "KeptNotifiers.h"
#include "PodcastTest.h"
#include "ScriptedTags.h"

namespace umsservice::testing {
namespace {

constexpr auto kSyncMethod = "-[UMSService doSyncPodcastContents:]";

class PodcastSync : public PodcastTest {
 protected:
  bool sync(const Array& contents, uint32_t serviceID = 7, bool isStartInternal = true) {
    _serviceinfo record = request(contents, serviceID);
    record.destPath = std::nullopt;
    record.storageIndex = 5;  // not looked at
    record.isStartInternal = isStartInternal ? 1 : 0;
    return service->doSyncPodcastContents(record);
  }
};

TEST_F(PodcastSync, PutsAChannelOntoTheVolumeItStartsOn) {
  ASSERT_TRUE(sync({channel("News", {episode("1.mp3"), episode("2.mp3")})}));
  EXPECT_EQ(treeOf(internal), (Texts{"Podcast/", "Podcast/News/", "Podcast/News/1.mp3", "Podcast/News/2.mp3",
                                     "Podcast/News/News.xml"}));
  EXPECT_EQ(fieldOf(indexOf("News"), "FilePath"), (Texts{"1.mp3", "2.mp3"}));
  ASSERT_TRUE(sync({channel("Arts", {episode("3.mp3")})}, 7, false));
  EXPECT_EQ(treeOf(card),
            (Texts{"Podcast/", "Podcast/Arts/", "Podcast/Arts/3.mp3", "Podcast/Arts/Arts.xml"}));
  EXPECT_EQ(numbers(results(), key::kVolumeIndex), (std::vector<uint32_t>{0, 0, 1}));
  EXPECT_EQ(fieldOf(podcastOf(results()[1]), "FilePath"),
            (Texts{podcasts + "/News/1.mp3", podcasts + "/News/2.mp3"}));
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 done $/in/2.mp3 0x00000000",
                               "0 done $/in/3.mp3 0x00000000"}));
}

TEST_F(PodcastSync, RunsFromTheQueueWithoutAResultForTheRequest) {
  ASSERT_TRUE(service->syncContents(7, Array{channel("News", {episode("1.mp3")})}, kMediaPodcast, true));
  ASSERT_TRUE(notifications.waitUntil([](const Notification& posted) {
    return posted.userInfo.get(key::kTransferStatus).intValue() == kTransferFinished;
  }));
  std::lock_guard untilTheRunIsOver(service->synchronizedSection());
  EXPECT_EQ(notifications.count(kUmsResultNotification), 0u);
  EXPECT_TRUE(exists(podcasts + "/News/News.xml"));
}

TEST_F(PodcastSync, KeepsTheDevicesChannelFieldsAndRemovesNothing) {
  sync({channel("News", {episode("1.mp3")})});
  Dictionary again = channel("News", {episode("2.mp3")});
  again.set("Link", "http://elsewhere");
  ASSERT_TRUE(sync({again}));
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(indexOf("News")->string("Link"), "http://host");
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "la la la");
}

TEST_F(PodcastSync, ChangesTheHostsEpisodeToItsBareName) {
  Dictionary one = episode("1.mp3");
  sync({channel("News", {one})});
  EXPECT_EQ(one.string(key::kFilePath), "1.mp3");
  EXPECT_EQ(outcomes(), Texts{"0 done $/in/1.mp3 0x00000000"});
}

TEST_F(PodcastSync, SendsTheTagsOfTheSource) {
  surroundings.environment.mediaInfoFactory = std::make_shared<ScriptedTags>([](const std::string& path) {
    return Dictionary{{"Artist", "tags of " + path}};
  });
  service = surroundings.makeService();
  service->addDiskInformation(disk(1, internal));
  sync({channel("News", {episode("1.mp3")})});
  EXPECT_EQ(texts(results(), "Artist"), Texts{"tags of " + sandbox.at("in/1.mp3")});
}

TEST_F(PodcastSync, ListsAndCountsAnEpisodeWhoseCopyFailed) {
  files.failNth(FileCall::Write, 1, EIO);
  ASSERT_TRUE(sync({channel("News", {episode("1.mp3"), missing("2.mp3"), episode("3.mp3")})}));
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3", "3.mp3"}));
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kErrorCopyFailed, kErrorAttributesUnreadable, kItemTransferred}));
  EXPECT_EQ(lastFailCount(), 0u);
  EXPECT_EQ(outcomes(), (Texts{"0 failed $/in/1.mp3 0x20000005", "1 failed $/in/2.mp3 0x20000008",
                               "2 done $/in/3.mp3 0x00000000"}));
  EXPECT_FALSE(
      log.has("Podcast Download " + sandbox.at("in/1.mp3") + " to " + podcasts + "/News/1.mp3 failed."));
}

TEST_F(PodcastSync, TellsTheHostADoneFileAndTheObserverAFailedOneWhereNoFileCanBeMade) {
  files.failAlways(FileCall::CreateFile, "1.mp3", EACCES);
  sync({channel("News", {episode("1.mp3")})});
  EXPECT_EQ(numbers(results(), key::kResultStatus), (std::vector<uint32_t>{kItemTransferred}));
  EXPECT_EQ(items.outcomes().back().kind, ItemOutcome::Kind::Failed);
  EXPECT_EQ(items.outcomes().back().errorNumber, kErrorCopyFailed);
}

TEST_F(PodcastSync, CountsAConflictAsDoneWhenNobodyCanBeAsked) {
  sync({channel("News", {episode("1.mp3", "old")})});
  forget();
  ASSERT_TRUE(sync({channel("News", {episode("1.mp3", "new")})}));
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "old");
  EXPECT_EQ(numbers(results(), key::kResultStatus), (std::vector<uint32_t>{kErrorFileExists}));
  EXPECT_EQ(outcomes().back(), "0 skipped $/in/1.mp3 0x21000002");
}

TEST_F(PodcastSync, AsksAboutAConflictUnlessTheNumberSaysNotTo) {
  sync({channel("News", {episode("1.mp3", "old")})});
  useDelegate();
  delegate.answer = {false, false, false};
  sync({channel("News", {episode("1.mp3", "asked")})}, 0x00200005);
  EXPECT_EQ(delegate.asked(), Texts{sandbox.at("in/1.mp3")});
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "old");
  sync({channel("News", {episode("1.mp3", "unasked")})}, 0x00100005);
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "unasked");
  delegate.answer = {true, true, false};
  sync({channel("News", {episode("1.mp3", "agreed")})}, 0x00110005);
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "agreed");
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
}

TEST_F(PodcastSync, AnUnattendedOneNeverReplacesAFolderOrAFileByItself) {
  sync({channel("News", {episode("1.mp3", "old")})});
  sandbox.file("internal/Podcast/News/2.mp3/inside", "precious");
  Dictionary itself = episode("1.mp3");
  itself.set(key::kFilePath, podcasts + "/News/1.mp3");
  sync({channel("News", {itself, episode("2.mp3")})}, 0x00100005);
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "old");
  EXPECT_EQ(bytesOf(podcasts + "/News/2.mp3/inside"), "precious");
}

TEST_F(PodcastSync, AnUnattendedOneGoesOnWhenTheOldFileCannotBeDeleted) {
  sync({channel("News", {episode("1.mp3", "old")})});
  forget();
  files.failAlways(FileCall::Remove, "1.mp3", EACCES);
  sync({channel("News", {episode("1.mp3", "new"), episode("2.mp3")})}, 0x00100005);
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kErrorDeleteFailed, kItemTransferred}));
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3"}));
}

TEST_F(PodcastSync, AnUnattendedOneEndsWhenTheDeviceGoesBeforeTheSecondCopy) {
  sync({channel("News", {episode("1.mp3", "old")})});
  forget();
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Remove && path.ends_with("1.mp3")) service->disconnectDevice("location-1");
    return 0;
  });
  EXPECT_FALSE(sync({channel("News", {episode("1.mp3", "new"), episode("2.mp3")})}, 0x00100005));
  EXPECT_EQ(results().size(), 0u);
  EXPECT_EQ(outcomes().back(), "1 not reached $/in/2.mp3 0x10000008");
}

TEST_F(PodcastSync, CountsWhatIsNoEpisodeAndGoesOn) {
  auto notifiers = KeptNotifiers::of(surroundings);
  service = surroundings.makeService();
  service->addDiskInformation(disk(1, internal));
  Dictionary pathless{{"Url", "http://host/x"}};
  Dictionary nameless{{"Url", "http://host/y"}, {key::kFilePath, "/"}};
  const std::tuple<Value, const char*, uint32_t> kRows[] = {
      {Null(), "Episode Data is nil.", kErrorBadSyncItem},
      // Only the count tells: the number stays that of the episode before it.
      {pathless, "Episode Medias File Path is nil.", kErrorAttributesUnreadable},
      {nameless, "Target Episode Path is nil. Next episode processing.", kErrorBadSyncItem},
  };
  for (const auto& [bad, message, result] : kRows) {
    expectLine(surroundings, 1, kSyncMethod, message, [&, bad = bad] {
      std::filesystem::remove_all(podcasts);
      EXPECT_TRUE(sync({channel("News", {episode("1.mp3"), missing("2.mp3"), bad})}));
    });
    EXPECT_EQ(notifiers->lastResult(), result) << message;
    EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3"}));
    EXPECT_EQ(lastFailCount(), 1u);
    EXPECT_EQ(items.outcomes().back().errorNumber, kErrorBadSyncItem);
  }
}

TEST_F(PodcastSync, CountsChannelsThatAreNoneOrHaveNoName) {
  expectLine(surroundings, 1, kSyncMethod, "Podcast data is nil. Next Podcast search", [&] {
    sync({Null(), channel("News", {})});
  });
  EXPECT_EQ(outcomes()[0], "0 failed (nil) 0x23000004");
  expectLine(surroundings, 3, kSyncMethod, "Podcast Episode is NULL", [&] {
    sync({Dictionary{{"Title", "A"}}});
  });
  const Texts before = treeOf(internal);
  for (const char* title : {"", ".", "..", "http://"}) {
    expectLine(surroundings, 3, kSyncMethod, "Consist of Podcast Default Path is failed.",
               [&] { EXPECT_FALSE(sync({channel(title, {episode("1.mp3")})})); });
    EXPECT_EQ(items.outcomes().back().errorNumber, kErrorBadSyncItem);
    EXPECT_EQ(treeOf(internal), before);
  }
}

TEST_F(PodcastSync, KeepsTheFirstOfTwoFilesOfOneNameAndListsBothEpisodes) {
  Dictionary twin = episode("1.mp3", "first");
  Dictionary other{{"Url", "http://host/other"},
                   {"Length", 6},
                   {key::kFilePath, sandbox.file("elsewhere/1.mp3", "second")}};
  ASSERT_TRUE(sync({channel("News", {twin, other})}));
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "first");
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "other"}));
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 skipped $/elsewhere/1.mp3 0x21000002"}));
}

TEST_F(PodcastSync, PutsTwoChannelsWhoseTitlesCleanToOneNameTogether) {
  ASSERT_TRUE(sync({channel("A/B", {episode("1.mp3")}), channel("A:B", {episode("2.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"A_B/", "A_B/1.mp3", "A_B/2.mp3", "A_B/A_B.xml"}));
  EXPECT_EQ(listed("A_B"), (Texts{"1.mp3", "2.mp3"}));
}

/// A length says whether a channel fits, and nothing else.
TEST_F(PodcastSync, BelievesALengthThatLiesOnlyAsToWhetherTheChannelFits) {
  auto lying = [this](const std::string& name, const Value& length) {
    Dictionary episode = PodcastTest::episode(name);
    episode.set("Length", length);
    return episode;
  };
  ASSERT_TRUE(sync({channel("News", {lying("1.mp3", "text"), lying("2.mp3", ""), lying("3.mp3", 1)})}));
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3", "3.mp3"}));
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "la la la");
  service->removeDiskInformation(service->diskInfoFromIndex(1));
  // Taken as a signed number, -1 is more than every volume holds.
  EXPECT_FALSE(sync({channel("Arts", {lying("4.mp3", "-1")})}));
  EXPECT_FALSE(exists(podcasts + "/Arts"));
  EXPECT_EQ(outcomes().back(), "0 failed $/in/4.mp3 0x1000000a");
}

TEST_F(PodcastSync, TakesALengthLargerThanTheVolumeForAChannelThatDoesNotFit) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume small(internal, 256 * 1024);
  Dictionary boasting = episode("1.mp3");
  boasting.set("Length", "99999999999999");
  ASSERT_TRUE(sync({channel("News", {boasting})}));
  EXPECT_EQ(treeOf(internal), Texts{});
  EXPECT_TRUE(exists(card + "/Podcast/News/1.mp3"));
  EXPECT_EQ(fieldOf(service->checkXmlData(card + "/Podcast/News", "News"), "Length"),
            Texts{"99999999999999"});
}

TEST_F(PodcastSync, RefusesOtherMediaAndADeviceWithoutThatVolume) {
  _serviceinfo record = request({channel("News", {episode("1.mp3")})});
  record.mediaType = kMediaVideo;
  expectLine(surroundings, 3, kSyncMethod, "Media Type is not podcast. Media Type = 3",
             [&] { EXPECT_FALSE(service->doSyncPodcastContents(record)); });
  service = surroundings.makeService();
  service->addDiskInformation(disk(2, card));
  expectLine(surroundings, 3, kSyncMethod, "Get Storage Path is failed.",
             [&] { EXPECT_FALSE(sync({channel("News", {episode("1.mp3")})})); });
  EXPECT_EQ(notifications.all().size(), 0u);
  EXPECT_EQ(outcomes()[0], "0 failed $/in/1.mp3 0x10000002");
}

TEST_F(PodcastSync, CountsEveryEpisodeOfAChannelWhoseFolderCannotBeMade) {
  sandbox.file("internal/Podcast/News", "a file");
  expectLine(surroundings, 1, kSyncMethod, "Create Folder for News is failed", [&] {
    EXPECT_FALSE(sync({channel("News", {episode("1.mp3"), episode("2.mp3")})}));
  });
  EXPECT_EQ(lastFailCount(), 2u);
}

TEST_F(PodcastSync, StopsForACancelAndAnswersIt) {
  once(kMediaResultNotification, [&] { service->cancelFileAction(7); });
  sync({channel("News", {episode("1.mp3"), episode("2.mp3")}), channel("Arts", {episode("3.mp3")})});
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
  EXPECT_FALSE(exists(podcasts + "/Arts"));
  EXPECT_EQ(linesOf(surroundings, kSyncMethod),
            (Lines{"Cancel Podcast Processing.", "Cancel Podcast Processing."}));
  EXPECT_FALSE(service->isCancelServiceId(7));
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 not reached $/in/2.mp3 0x10000008",
                               "2 not reached $/in/3.mp3 0x10000008"}));
}

TEST_F(PodcastSync, StopsWhenTheServiceIsReleased) {
  once(kMediaResultNotification, [&] { service->disconnectDevice("location-1"); });
  EXPECT_FALSE(
      sync({channel("News", {episode("1.mp3"), episode("2.mp3")}), channel("Arts", {episode("3.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3"}));
  EXPECT_EQ(linesOf(surroundings, kSyncMethod),
            (Lines{"Device Disconnected - location-1", "Podcast XML Data send is failed.",
                   "Device Disconnected - location-1"}));
}

TEST_F(PodcastSync, JoinsVolumeAndFolderAsTheRulesOfTheDeviceSay) {
  surroundings.profile->podcastInternal = "Shows";
  ASSERT_TRUE(sync({channel("News", {episode("1.mp3")})}));
  surroundings.profile->podcastInternal = "/Slashed";
  ASSERT_TRUE(sync({channel("News", {episode("1.mp3")})}));
  EXPECT_TRUE(exists(internal + "/Shows/News/News.xml"));
  EXPECT_TRUE(exists(internal + "/Slashed/News/News.xml"));
}

TEST_F(PodcastSync, JoinsVolumeAndFolderWithNothingBetweenByTheRulesOfTheHost) {
  std::string volumes = sandbox.folder("volumes");
  surroundings.environment.fileSystem = std::make_shared<MappedFileSystem>("/Volumes", volumes);
  surroundings.environment.placementRules = hostPlacementRules();
  service = surroundings.makeService();
  sandbox.folder("volumes/PHONE");
  service->addDiskInformation(disk(1, "/Volumes/PHONE"));
  surroundings.profile->podcastInternal = "/Podcasts";
  ASSERT_TRUE(sync({channel("News", {episode("1.mp3")})}));
  surroundings.profile->podcastInternal = std::nullopt;
  ASSERT_TRUE(sync({channel("News", {episode("1.mp3")})}));
  EXPECT_TRUE(exists(volumes + "/PHONE/Podcasts/News/1.mp3"));
  EXPECT_TRUE(exists(volumes + "/PHONEPodcast/News/1.mp3"));
}

TEST_F(PodcastSync, StopsForACancelInsideAnEpisodeAndListsItNot) {
  once(kTransferProgressNotification, [&] { service->cancelFileAction(7); });
  const std::string bytes(2'500'000, 'x');
  sync({channel("News", {episode("1.mp3", bytes), episode("2.mp3")})});
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3").size(), 245u * 4096);
  EXPECT_FALSE(exists(podcasts + "/News/2.mp3"));
  EXPECT_EQ(fieldOf(indexOf("News"), "FilePath"), Texts());
  EXPECT_FALSE(service->isCancelServiceId(7));
}

}  // namespace
}  // namespace umsservice::testing
