#include <cerrno>
#include <filesystem>

#include "KeptNotifiers.h"
#include "PodcastFallOver.h"
#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kSync = "-[UMSService doSyncPodcastContents:]";
constexpr auto kFallOverMethod =
    "-[UMSService syncUmsPodcastFile:index:mediaType:podcastInfo:xmlConverter:context:]";

/// A device whose internal memory is too small for what is synced.
class PodcastFallOver : public PodcastTest {
 protected:
  void SetUp() override { REQUIRE_TMPFS_VOLUMES(); }

  bool sync(const Array& contents, uint32_t serviceID = 7) {
    _serviceinfo record = request(contents, serviceID);
    record.isStartInternal = 1;
    return service->doSyncPodcastContents(record);
  }
  /// More than the internal memory holds.
  Dictionary large(const std::string& name) const { return episode(name, std::string(300 * 1024, 'x')); }
  static Lines linesWith(const std::string& start, const Lines& all) {
    Lines found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [&](const std::string& line) { return line.starts_with(start); });
    return found;
  }
  void addThirdVolume() { service->addDiskInformation(disk(2, third)); }

  const std::string third = sandbox.folder("third");
  std::unique_ptr<TmpfsVolume> small =
      TmpfsVolume::isPossible() ? std::make_unique<TmpfsVolume>(internal, 128 * 1024) : nullptr;
};

TEST_F(PodcastFallOver, PutsAChannelThatDoesNotFitOntoTheNextVolume) {
  expectLine(surroundings, 5, kSync, "$/internal volume not enought memory. Send Next volume", [&] {
    std::filesystem::remove_all(card + "/Podcast");
    EXPECT_TRUE(
        sync({channel("News", {large("1.mp3"), episode("2.mp3")}), channel("Arts", {episode("3.mp3")})}));
  });
  EXPECT_EQ(treeOf(card), (Texts{"Podcast/", "Podcast/News/", "Podcast/News/1.mp3", "Podcast/News/2.mp3",
                                 "Podcast/News/News.xml"}));
  EXPECT_EQ(fieldOf(service->checkXmlData(card + "/Podcast/News", "News"), "FilePath"),
            (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(treeOf(internal),
            (Texts{"Podcast/", "Podcast/Arts/", "Podcast/Arts/3.mp3", "Podcast/Arts/Arts.xml"}));
  EXPECT_EQ(lastFailCount(), 0u);
  EXPECT_EQ(outcomes()[1], "1 done $/in/2.mp3 0x00000000");
}

TEST_F(PodcastFallOver, TellsTheHostOnWhichVolumeEachEpisodeIs) {
  sync({channel("News", {large("1.mp3")}), channel("Arts", {episode("2.mp3")})});
  EXPECT_EQ(numbers(results(), key::kVolumeIndex), (std::vector<uint32_t>{1, 0}));
}

TEST_F(PodcastFallOver, GoesOnToTheVolumeThatHasRoom) {
  TmpfsVolume smallCard(card, 128 * 1024);
  addThirdVolume();
  EXPECT_TRUE(sync({channel("News", {large("1.mp3")})}));
  EXPECT_TRUE(log.has(card + " volume not enought memory. Send Next volume"));
  EXPECT_EQ(treeOf(card), Texts{});
  EXPECT_TRUE(exists(third + "/Podcast/News/News.xml"));
}

TEST_F(PodcastFallOver, CountsNothingForAChannelThatFitsNowhereButTellsTheObserver) {
  TmpfsVolume smallCard(card, 128 * 1024);
  EXPECT_FALSE(sync({channel("News", {large("1.mp3"), episode("2.mp3")})}));
  EXPECT_EQ(story(surroundings), Lines{});
  EXPECT_EQ(outcomes(), (Texts{"0 failed $/in/1.mp3 0x1000000a", "1 failed $/in/2.mp3 0x1000000a"}));
}

TEST_F(PodcastFallOver, TriesNothingOnADeviceWithOneVolume) {
  service->removeDiskInformation(service->diskInfoFromIndex(1));
  EXPECT_FALSE(sync({channel("News", {large("1.mp3")})}));
  EXPECT_EQ(story(surroundings), Lines{});
  EXPECT_EQ(outcomes(), Texts{"0 failed $/in/1.mp3 0x1000000a"});
}

TEST_F(PodcastFallOver, SendsTheResultOfAFullVolumeOnceInARun) {
  TmpfsVolume smallCard(card, 256 * 1024);
  // The lengths lie: too much for the internal memory, little enough for the card.
  auto lying = [this](const std::string& name) {
    Dictionary episode = large(name);
    episode.set("Length", 160 * 1024);
    return episode;
  };
  EXPECT_FALSE(sync({channel("News", {lying("1.mp3")}), channel("Arts", {lying("2.mp3")})}));
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kErrorVolumeFull, kErrorVolumeFull, kErrorVolumeFull}));
  EXPECT_EQ(texts(results(), key::kChannelName), (Texts{"News", "News", "Arts"}));
  EXPECT_EQ(lastFailCount(), 2u);
  EXPECT_EQ(treeOf(card), Texts{"Podcast/"});  // a channel's folder comes with its first file
  EXPECT_EQ(outcomes(), (Texts{"0 failed $/in/1.mp3 0x1000000a", "1 failed $/in/2.mp3 0x1000000a"}));
}

TEST_F(PodcastFallOver, TellsOfEachEpisodeOnceWhenTwoVolumesAreTried) {
  addThirdVolume();
  files.failAlways(FileCall::Replace, "card/Podcast/News/News.xml", EIO);
  expectLine(surroundings, 3, kFallOverMethod, "Podcast XML Data send is failed.", [&] {
    std::filesystem::remove_all(card + "/Podcast");
    std::filesystem::remove_all(third + "/Podcast");
    EXPECT_TRUE(sync({channel("News", {large("1.mp3")})}));
  });
  EXPECT_EQ(fieldOf(service->checkXmlData(third + "/Podcast/News", "News"), "Url").size(), 1u);
  EXPECT_EQ(outcomes().size(), 2u);  // one for each of the two runs
  EXPECT_EQ(outcomes()[0], "0 done $/in/1.mp3 0x00000000");
}

TEST_F(PodcastFallOver, UsesThePathsOfEpisodesAsTheyAreGiven) {
  Dictionary odd = large("what?.mp3");
  EXPECT_TRUE(sync({channel("News", {odd})}));
  EXPECT_TRUE(exists(card + "/Podcast/News/what?.mp3"));
}

TEST_F(PodcastFallOver, CountsWhatIsNoEpisodeWithoutAResultNumber) {
  Dictionary pathless{{"Url", "http://host/x"}, {"Length", 0}};
  EXPECT_TRUE(sync({channel("News", {Null(), pathless, large("1.mp3")})}));
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod),
            (Lines{"Episode Data is nil.", "Episode Medias File Path is nil."}));
  EXPECT_EQ(lastFailCount(), 2u);
  EXPECT_EQ(numbers(results(), key::kResultStatus), (std::vector<uint32_t>{kItemTransferred}));
  EXPECT_EQ(items.outcomes()[0].errorNumber, kErrorBadSyncItem);
}

TEST_F(PodcastFallOver, ReplacesUnaskedForAnUnattendedSync) {
  sync({channel("News", {large("1.mp3")})});
  useDelegate();
  sandbox.file("card/Podcast/News/1.mp3", "old");
  EXPECT_TRUE(sync({channel("News", {large("1.mp3")})}, 0x00100005));
  EXPECT_EQ(delegate.asked(), Texts{});
  EXPECT_EQ(bytesOf(card + "/Podcast/News/1.mp3").size(), 300u * 1024);
}

TEST_F(PodcastFallOver, AsksBeforeItReplacesAFileOnTheOtherVolume) {
  useDelegate();
  for (bool replaces : {false, true}) {
    sandbox.file("card/Podcast/News/1.mp3", "old");
    delegate.answer = {true, replaces, false};
    EXPECT_TRUE(sync({channel("News", {large("1.mp3")})}));
    EXPECT_EQ(bytesOf(card + "/Podcast/News/1.mp3").size(), replaces ? 300u * 1024 : 3u);
  }
  EXPECT_EQ(delegate.asked().size(), 2u);
}

TEST_F(PodcastFallOver, CountsEveryEpisodeWhenTheFolderCannotBeMade) {
  sandbox.file("card/Podcast", "a file");
  expectLine(surroundings, 1, kFallOverMethod, "Create Folder for News is failed", [&] {
    EXPECT_FALSE(sync({channel("News", {large("1.mp3"), episode("2.mp3")})}));
  });
  EXPECT_EQ(lastFailCount(), 2u);
  EXPECT_EQ(outcomes()[0], "0 failed $/in/1.mp3 0x20000002");
}

TEST_F(PodcastFallOver, StopsForACancelBetweenEpisodes) {
  addThirdVolume();
  once(kMediaResultNotification, [&] { service->cancelFileAction(7); });
  sync({channel("News", {episode("1.mp3"), large("2.mp3")}), channel("Arts", {episode("3.mp3")})});
  EXPECT_EQ(fieldOf(service->checkXmlData(card + "/Podcast/News", "News"), "FilePath"), Texts{"1.mp3"});
  EXPECT_EQ(treeOf(third), Texts{});
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod), Lines{"Cancel Podcast Processing."});
  EXPECT_EQ(linesOf(surroundings, kSync).back(), "Cancel Podcast Processing.");
  EXPECT_FALSE(service->isCancelServiceId(7));
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 not reached $/in/2.mp3 0x10000008",
                               "2 not reached $/in/3.mp3 0x10000008"}));
}

TEST_F(PodcastFallOver, StopsForACancelInsideAnEpisodeAndListsItNot) {
  once(kTransferProgressNotification, [&] { service->cancelFileAction(7); });
  const std::string bytes(2'500'000, 'x');
  sync({channel("News", {episode("1.mp3", bytes), episode("2.mp3")})});
  EXPECT_EQ(bytesOf(card + "/Podcast/News/1.mp3").size(), 245u * 4096);
  EXPECT_FALSE(exists(card + "/Podcast/News/2.mp3"));
  EXPECT_EQ(fieldOf(service->checkXmlData(card + "/Podcast/News", "News"), "FilePath"), Texts());
  EXPECT_FALSE(service->isCancelServiceId(7));
}

TEST_F(PodcastFallOver, OfAChannelThatFitsNowhereLeavesTheResultOfTheChannelBefore) {
  TmpfsVolume smallCard(card, 512 * 1024);
  sandbox.file("internal/Podcast/Bad", "a file");  // no folder can be made there
  for (const Value& length : {Value(2'000'000'000), Value("2000000000")}) {
    Dictionary boasting = episode("2.mp3");
    boasting.set("Length", length);
    const Dictionary news = channel("News", {large("1.mp3")});
    const Dictionary bad = channel("Bad", {episode("3.mp3")});
    const Dictionary arts = channel("Arts", {boasting});
    EXPECT_TRUE(sync({bad, news, arts}));
    EXPECT_EQ(outcomes().back(), "2 failed $/in/2.mp3 0x1000000a");
    EXPECT_EQ(treeOf(internal), (Texts{"Podcast/", "Podcast/Bad"}));
    EXPECT_EQ(treeOf(card),
              (Texts{"Podcast/", "Podcast/News/", "Podcast/News/1.mp3", "Podcast/News/News.xml"}));
    std::filesystem::remove_all(card + "/Podcast");
    EXPECT_FALSE(sync({channel("News", {large("1.mp3")}), bad, arts}));
    EXPECT_EQ(treeOf(internal), (Texts{"Podcast/", "Podcast/Bad"}));
    EXPECT_TRUE(exists(card + "/Podcast/News/News.xml"));
    EXPECT_FALSE(exists(card + "/Podcast/Arts"));
    std::filesystem::remove_all(card + "/Podcast");
  }
}

TEST_F(PodcastFallOver, ThatEndsWithAnotherNumberThanAFullVolumeCountsTheChannelWithoutAResult) {
  EXPECT_TRUE(
      sync({channel("News", {large("1.mp3"), missing("2.mp3")}), channel("Arts", {episode("3.mp3")})}));
  EXPECT_EQ(fieldOf(service->checkXmlData(card + "/Podcast/News", "News"), "Url").size(), 2u);
  EXPECT_EQ(linesWith("result", story(surroundings)),
            (Lines{"result 0x10000001 volume 1 $/in/1.mp3", "result 0x20000008 volume 1 $/in/2.mp3",
                   "result 0x10000001 volume 0 $/in/3.mp3"}))
      << "one for each episode, none for the channel";
  EXPECT_EQ(lastFailCount(), 2u) << "the whole channel";
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 failed $/in/2.mp3 0x20000008",
                               "2 done $/in/3.mp3 0x00000000"}));
}

TEST_F(PodcastFallOver, SaysUnderItsOwnNameThatTheServiceIsReleasedBeforeItMakesAFolder) {
  service->disconnectDevice("location-1");
  expectLine(surroundings, 5, kFallOverMethod, "Device Disconnected - location-1",
             [&] { EXPECT_FALSE(sync({channel("News", {large("1.mp3")})})); });
  EXPECT_EQ(treeOf(card), Texts{});
  EXPECT_EQ(numbers(progress(), key::kTransferStatus).back(), 3u);
  EXPECT_EQ(outcomes().back(), "0 not reached $/in/1.mp3 0x10000008");
}

TEST_F(PodcastFallOver, SaysAtItsLevelWhatIsNoEpisode) {
  const Dictionary pathless{{"Url", "http://host/x"}, {"Length", 0}};
  const Dictionary nameless{{"Url", "http://host/y"}, {"Length", 0}, {key::kFilePath, "/"}};
  const std::pair<Value, const char*> kRows[] = {
      {Null(), "Episode Data is nil."},
      {pathless, "Episode Medias File Path is nil."},
      {nameless, "Target Episode Path is nil. Next episode processing."},
  };
  for (const auto& [bad, message] : kRows) {
    expectLine(surroundings, 1, kFallOverMethod, message, [&, bad = bad] {
      std::filesystem::remove_all(card + "/Podcast");
      notifications.clear();
      EXPECT_TRUE(sync({channel("News", {missing("1.mp3"), bad, large("2.mp3")})}));
    });
    EXPECT_EQ(fieldOf(service->checkXmlData(card + "/Podcast/News", "News"), "Url"),
              (Texts{"http://host/1.mp3", "http://host/2.mp3"}));
    EXPECT_EQ(lastFailCount(), 1u);
    EXPECT_EQ(items.outcomes().end()[-2].errorNumber, kErrorBadSyncItem);
  }
}

TEST_F(PodcastFallOver, LeavesTheResultNumberOfTheEpisodeBeforeOneThatIsNone) {
  auto notifiers = KeptNotifiers::of(surroundings);
  OVUmsDeviceNotifier& notifier = *notifiers->make("a", "b", 7, kMediaPodcast, "Pocket One", 0, 9, 9);
  const Dictionary pathless{{"Url", "http://host/x"}};
  const Dictionary nameless{{"Url", "http://host/y"}, {key::kFilePath, "/"}};
  for (const Value& bad : {Value(Null()), Value(pathless), Value(nameless)}) {
    service->syncUmsPodcastFile(7, 0, kMediaPodcast, channel("News", {missing("1.mp3"), bad}), &notifier);
    EXPECT_EQ(notifiers->lastResult(), kErrorAttributesUnreadable) << bad.description();
  }
}

TEST_F(PodcastFallOver, SaysAtItsLevelThatAVolumeIsTooSmall) {
  TmpfsVolume smallCard(card, 128 * 1024);
  expectLine(surroundings, 5, kFallOverMethod, "$/card volume not enought memory. Send Next volume",
             [&] { EXPECT_FALSE(sync({channel("News", {large("1.mp3")})})); });
}

TEST_F(PodcastFallOver, StopsWhenTheServiceIsReleased) {
  addThirdVolume();
  once(kMediaResultNotification, [&] { service->disconnectDevice("location-1"); });
  EXPECT_FALSE(sync({channel("News", {episode("1.mp3"), large("2.mp3")})}));
  EXPECT_EQ(treeOf(card), (Texts{"Podcast/", "Podcast/News/", "Podcast/News/1.mp3"}));
  EXPECT_EQ(treeOf(third), Texts{});
  EXPECT_EQ(outcomes().back(), "1 not reached $/in/2.mp3 0x10000008");
}

TEST_F(PodcastFallOver, PassesOverAVolumeWithoutAPath) {
  service->removeDiskInformation(service->diskInfoFromIndex(1));
  service->addDiskInformation(Dictionary{{key::kDiskType, 2}});
  service->addDiskInformation(disk(2, third));
  expectLine(surroundings, 3, kFallOverMethod, "Get Volume Path is failed.", [&] {
    std::filesystem::remove_all(third + "/Podcast");
    EXPECT_TRUE(sync({channel("News", {large("1.mp3")})}));
  });
}

/// The fall-over by itself, for what no sync asks of it.
class PodcastFallOverAlone : public PodcastTest {
 protected:
  ServiceContext context{surroundings.environment, "<service>", "location-1"};
  FolderOperations folders{context};
  ServiceReports reports{context};
  MediaTools media{context, folders, reports};
  PodcastTools tools{media};

  uint32_t place(const Value& element, uint32_t failedIndex) {
    _serviceinfo record = request({element});
    PodcastRun run(tools, record, PodcastRun::onThisDevice(context, record));
    return umsservice::PodcastFallOver(tools, run, record).place(run.channels().at(0), failedIndex);
  }
};

TEST_F(PodcastFallOverAlone, RefusesANilChannelAndAVolumeThatIsNotThere) {
  context.volumes.addDiskInformation(disk(1, internal));
  expectLine(surroundings, 1, kFallOverMethod, "Input Parameter is invalid.",
             [&] { EXPECT_EQ(place(Null(), 0), kErrorInvalidInput); });
  expectLine(surroundings, 1, kFallOverMethod,
             "Input Parameter is invalid. Volume is not support. volumeIndex = 1, disk count = 1",
             [&] { EXPECT_EQ(place(channel("News", {}), 1), kErrorInvalidInput); });
}

TEST_F(PodcastFallOverAlone, PassesOverAChannelWithoutEpisodes) {
  context.volumes.addDiskInformation(disk(1, internal));
  context.volumes.addDiskInformation(disk(2, card));
  expectLine(surroundings, 3, kFallOverMethod, "Podcast Episode is NULL", [&] {
    EXPECT_EQ(place(Dictionary{{"Title", "News"}}, 0), kErrorNone);
  });
}

/// The fall-over as hosts can ask for it, counted on a notifier of their own.
class PodcastFallOverOfAHost : public PodcastTest {
 protected:
  int32_t place(const MaybeDictionary& podcast, uint32_t index) {
    return service->syncUmsPodcastFile(7, index, kMediaPodcast, podcast, &notifier);
  }
  OVUmsDeviceNotifier notifier{
      surroundings.environment, "location-1", "location-1", 7, kMediaPodcast, "Pocket One", 0, 2, 16};
};

TEST_F(PodcastFallOverOfAHost, PutsTheChannelOntoAVolumeBehindAndCountsOnTheGivenNotifier) {
  EXPECT_EQ(place(channel("News", {episode("1.mp3"), missing("2.mp3")}), 0),
            static_cast<int32_t>(kErrorAttributesUnreadable));
  EXPECT_EQ(fieldOf(service->checkXmlData(card + "/Podcast/News", "News"), "FilePath"),
            (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(treeOf(internal), Texts{});
  EXPECT_EQ(numbers(results(), key::kVolumeIndex), (std::vector<uint32_t>{1, 1}));
  EXPECT_EQ(numbers(progress(), key::kTransferStatus).back(), kTransferFinished);
  EXPECT_EQ(items.outcomes().size(), 2u);
}

TEST_F(PodcastFallOverOfAHost, IsRefusedWithoutChannelVolumeOrNotifier) {
  EXPECT_EQ(place(std::nullopt, 0), static_cast<int32_t>(kErrorInvalidInput));
  EXPECT_EQ(place(channel("News", {}), 2), static_cast<int32_t>(kErrorInvalidInput));
  EXPECT_EQ(service->syncUmsPodcastFile(7, 0, kMediaPodcast, channel("News", {}), nullptr),
            static_cast<int32_t>(kErrorInvalidInput));
  EXPECT_EQ(place(channel("News", {episode("1.mp3")}), 1), static_cast<int32_t>(kErrorNone));
  EXPECT_EQ(treeOf(card), Texts{});
}

/// By the rules of the host, a fall-over stays on the failed volume's path with the candidate's folder.
class PodcastFallOverByHostRules : public PodcastFallOver {
 protected:
  PodcastFallOverByHostRules() {
    faults->setFault([this](FileCall call, const std::string&) {
      if (call == FileCall::Space && ++looks == 2) onSecondLook();
      return 0;
    });
    surroundings.environment.fileSystem = faults;
    surroundings.environment.placementRules = hostPlacementRules();
    service = surroundings.makeService();
    sandbox.folder("volumes/PHONE");
    sandbox.folder("volumes/CARD");
    service->addDiskInformation(disk(1, "/Volumes/PHONE"));
    service->addDiskInformation(disk(2, "/Volumes/CARD"));
    surroundings.profile->podcastInternal = "/Podcasts";
  }
  std::string volumes = sandbox.folder("volumes");
  std::shared_ptr<FaultyFileSystem> faults =
      std::make_shared<FaultyFileSystem>(std::make_shared<MappedFileSystem>("/Volumes", volumes));
  std::function<void()> onSecondLook = [] {};
  int looks = 0;
};

TEST_F(PodcastFallOverByHostRules, StaysOnTheFailedVolumeAndMakesTheCandidatesFolderUnderItsOwnName) {
  TmpfsVolume phone(volumes + "/PHONE", 1024 * 1024);
  phone.fillUpTo(128 * 1024);
  onSecondLook = [&] { std::filesystem::remove(phone.path() + "/.filler"); };
  surroundings.profile->podcastExternal = sandbox.at("made");
  EXPECT_TRUE(sync({channel("News", {large("1.mp3")})}));
  EXPECT_EQ(treeOf(sandbox.at("made")), Texts{});
  EXPECT_TRUE(exists(phone.path() + sandbox.at("made") + "/News/1.mp3"));
  EXPECT_TRUE(exists(phone.path() + sandbox.at("made") + "/News/News.xml"));
  EXPECT_EQ(treeOf(volumes + "/CARD"), Texts{});
}

TEST_F(PodcastFallOverByHostRules, CountsAFailureForACandidateWithoutAFolder) {
  TmpfsVolume phone(volumes + "/PHONE", 128 * 1024);
  service->removeDiskInformation(service->diskInfoFromIndex(1));
  service->addDiskInformation(Dictionary{{key::kDiskType, 2}});
  service->addDiskInformation(disk(2, "/Volumes/CARD"));
  service->removeDiskInformation(service->diskInfoFromIndex(1));  // indexes 0 and 2 are left
  expectLine(surroundings, 3,
             "-[UMSService syncUmsPodcastFile:index:mediaType:podcastInfo:xmlConverter:context:]",
             "Consist of Podcast Default Path is failed.",
             [&] { EXPECT_FALSE(sync({channel("News", {large("1.mp3")})})); });
  EXPECT_EQ(lastFailCount(), 1u);
}

}  // namespace
}  // namespace umsservice::testing
