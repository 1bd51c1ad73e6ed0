#include <cerrno>
#include <filesystem>

#include "PodcastTest.h"
#include "ScriptedTags.h"

namespace umsservice::testing {
namespace {

constexpr auto kDeviceToDeviceMethod = "-[UMSService doDeviceToDevicePodcast:]";

/// Answers writes as a test says, and keeps what it was asked to do.
class ScriptedPeer final : public OVFileService {
 public:
  struct Write {
    std::string name;
    MaybeString subFolder;
    uint32_t diskIndex, mediaType;
    bool isOverWrite;
  };
  MaybeArray diskInformation() override { return std::nullopt; }
  MaybeString modelName() override { return "Peer"; }
  bool createFolder(const MaybeString&) override { return makesFolders; }
  bool syncWriteFileToDevice(const MaybeDictionary& description, const MaybeString& subFolderName,
                             uint32_t diskIndex, uint32_t mediaType, bool isOverWrite,
                             const std::shared_ptr<TransferCallback>& callback, TransferContext* context,
                             uint32_t* error) override {
    writes.push_back(
        {description->string(key::kFilePath).value_or(""), subFolderName, diskIndex, mediaType, isOverWrite});
    EXPECT_EQ(*error, 0u);
    if (reports) EXPECT_TRUE(callback->transferProgressInfoEx(context, 1, 1));
    return answer(*error);
  }
  std::function<bool(uint32_t& error)> answer = [](uint32_t&) { return true; };
  bool makesFolders = true;
  bool reports = true;
  std::vector<Write> writes;
};

/// Bytes of an episode that have been copied when its first progress is posted.
constexpr size_t kFirstReport = 245 * 4096;

class PodcastDeviceToDevice : public PodcastTest {
 protected:
  PodcastDeviceToDevice() {
    peer->setDeviceInformation(Dictionary{{"MN", "Pocket Two"}});
    peer->addDiskInformation(disk(1, peerDisk));
    useDelegate();
    surroundings.delegate->onService = [this](const MaybeString& location) -> std::shared_ptr<OVFileService> {
      if (location != "location-2") return nullptr;
      return scripted ? std::static_pointer_cast<OVFileService>(scripted) : peer;
    };
  }
  bool send(const Array& contents) {
    _serviceinfo record = request(contents);
    record.destPath = peerDisk + "/Podcast";
    record.srcLocationID = "location-1";
    record.destLocationID = "location-2";
    return service->doDeviceToDevicePodcast(record);
  }
  /// An episode that lies on the source device.
  Dictionary onDevice(const std::string& name, const std::string& bytes = "la la la") const {
    Dictionary episode = PodcastTest::episode(name, bytes);
    episode.set(key::kFilePath, sandbox.file("internal/Podcast/News/" + name, bytes));
    return episode;
  }
  MaybeDictionary peerIndex(const std::string& name) {
    return peer->checkXmlData(peerDisk + "/Podcast/" + name, name);
  }
  std::shared_ptr<ScriptedPeer> useScriptedPeer() { return scripted = std::make_shared<ScriptedPeer>(); }

  const std::string peerDisk = sandbox.folder("peer");
  std::shared_ptr<UMSService> peer = std::make_shared<UMSService>(surroundings.environment, "location-2");
  std::shared_ptr<ScriptedPeer> scripted;
};

TEST_F(PodcastDeviceToDevice, WritesEpisodesAndIndexOnTheOtherDevice) {
  EXPECT_TRUE(send({channel("News", {onDevice("1.mp3", "one"), onDevice("2.mp3", "two")})}));
  EXPECT_EQ(treeOf(peerDisk), (Texts{"Podcast/", "Podcast/News/", "Podcast/News/1.mp3", "Podcast/News/2.mp3",
                                     "Podcast/News/News.xml"}));
  EXPECT_EQ(bytesOf(peerDisk + "/Podcast/News/2.mp3"), "two");
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(items.outcomes()[1].bytes, 3u);
  EXPECT_EQ(outcomes()[1], "1 done $/internal/Podcast/News/2.mp3 0x00000000");
  Dictionary last = results().at(1).userInfo.mutableCopy();
  EXPECT_EQ(fieldOf(podcastOf(results()[1]), "FilePath"),
            (Texts{peerDisk + "/Podcast/News/1.mp3", peerDisk + "/Podcast/News/2.mp3"}));
  last.remove(key::kPodcastXmlInfo);
  EXPECT_EQ(typed(last), (Lines{"ChannelName: text News", "FilePath: text " + podcasts + "/News/2.mp3",
                                "LocationId: text location-2", "MN: text Pocket Two", "MediaNotiType: u32 4",
                                "ResultStatus: u32 268435457", "ServiceID: u32 7", "VolumeIndex: u32 0"}));
  EXPECT_EQ(texts(progress(), key::kLocationId)[0], "location-1");
}

TEST_F(PodcastDeviceToDevice, RunsFromTheQueueWithAResultForTheRequest) {
  ASSERT_TRUE(service->copyContentsDeviceToDevice(9, Array{channel("News", {onDevice("1.mp3")})},
                                                  "location-1", "location-2", kMediaPodcast, 0));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), Texts{"1.mp3"});
}

TEST_F(PodcastDeviceToDevice, KeepsTheOtherDevicesChannelFieldsAndAppends) {
  send({channel("News", {onDevice("1.mp3")})});
  Dictionary again = channel("News", {onDevice("2.mp3")});
  again.set("Link", "http://elsewhere");
  EXPECT_TRUE(send({again}));
  EXPECT_EQ(peerIndex("News")->string("Link"), "http://host");
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), (Texts{"1.mp3", "2.mp3"}));
}

TEST_F(PodcastDeviceToDevice, ChangesTheHostsEpisodeAndSendsTheTagsOfTheCopy) {
  surroundings.environment.mediaInfoFactory = std::make_shared<ScriptedTags>([](const std::string& path) {
    return Dictionary{{"Artist", "tags of " + path}};
  });
  service = surroundings.makeService();
  useDelegate();
  Dictionary one = onDevice("1.mp3");
  send({channel("News", {one})});
  EXPECT_EQ(one.string(key::kFilePath), "1.mp3");
  EXPECT_EQ(texts(results(), "Artist"), Texts{"tags of " + peerDisk + "/Podcast/News/1.mp3"});
}

TEST_F(PodcastDeviceToDevice, LetsAnEpisodeArriveUnderTheNameThatTheIndexGives) {
  std::filesystem::create_directories(podcasts + "/News");
  Dictionary padded = onDevice(" 1.mp3 ");
  Dictionary named = onDevice("2.mp3");
  named.set(key::kFileName, "other.mp3");
  std::filesystem::copy(podcasts + "/News/ 1.mp3 ", podcasts + "/News/1.mp3");
  EXPECT_TRUE(send({channel("News", {padded, named})}));
  EXPECT_EQ(treeOf(peerDisk + "/Podcast/News"), (Texts{"1.mp3", "2.mp3", "News.xml"}));
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), (Texts{"1.mp3", "2.mp3"}));
}

TEST_F(PodcastDeviceToDevice, RefusesWithoutAWordWhenThereIsNoOtherDevice) {
  _serviceinfo record = request({channel("News", {onDevice("1.mp3")})});
  record.destLocationID = "location-9";
  EXPECT_FALSE(service->doDeviceToDevicePodcast(record));
  service = surroundings.makeService();
  EXPECT_FALSE(send({channel("News", {onDevice("1.mp3")})}));
  EXPECT_EQ(notifications.all().size(), 0u);
  EXPECT_EQ(items.outcomes().size(), 0u);
}

TEST_F(PodcastDeviceToDevice, RefusesOtherMedia) {
  _serviceinfo record = request({channel("News", {onDevice("1.mp3")})});
  record.mediaType = kMediaImage;
  expectLine(surroundings, 3, kDeviceToDeviceMethod, "Media Type is not podcast. Media Type = 2",
             [&] { EXPECT_FALSE(service->doDeviceToDevicePodcast(record)); });
}

TEST_F(PodcastDeviceToDevice, CountsWhatIsNoChannelAndNoEpisode) {
  Dictionary pathless{{"Url", "u"}};
  Dictionary nameless{{"Url", "u"}, {key::kFilePath, "/"}};
  expectLine(surroundings, 1, kDeviceToDeviceMethod, "Podcast data is nil. Next Podcast search",
             [&] { send({Null()}); });
  expectLine(surroundings, 3, kDeviceToDeviceMethod, "Podcast Episode is NULL", [&] {
    send({Dictionary{{"Title", "News"}}});
  });
  expectLine(surroundings, 1, kDeviceToDeviceMethod, "Episode Data is nil.",
             [&] { send({channel("News", {Null()})}); });
  expectLine(surroundings, 1, kDeviceToDeviceMethod, "Episode Medias File Path is nil.",
             [&] { send({channel("News", {pathless})}); });
  expectLine(surroundings, 1, kDeviceToDeviceMethod, "Target Episode Path is nil. Next episode processing.",
             [&] { send({channel("News", {nameless})}); });
  for (const ItemOutcome& outcome : items.outcomes()) EXPECT_EQ(outcome.errorNumber, kErrorBadCopyItem);
  EXPECT_EQ(items.outcomes().size(), 8u);
  const Texts before = treeOf(peerDisk);
  for (const char* title : {"", ".", "..", "http://"}) {
    log.clear();
    EXPECT_TRUE(send({channel(title, {onDevice("1.mp3")})}));
    EXPECT_EQ(linesOf(surroundings, kDeviceToDeviceMethod), Lines{});
    EXPECT_EQ(treeOf(peerDisk), before);
    EXPECT_EQ(items.outcomes().back().errorNumber, kErrorBadCopyItem);
  }
}

TEST_F(PodcastDeviceToDevice, CountsEveryEpisodeWhenTheOtherDeviceCannotMakeTheFolder) {
  useScriptedPeer()->makesFolders = false;
  expectLine(surroundings, 1, kDeviceToDeviceMethod, "Create Folder for News is failed", [&] {
    EXPECT_FALSE(send({channel("News", {onDevice("1.mp3"), onDevice("2.mp3")})}));
  });
  EXPECT_EQ(lastFailCount(), 2u);
  EXPECT_EQ(treeOf(peerDisk), Texts{});
}

TEST_F(PodcastDeviceToDevice, HandsEachEpisodeToTheOtherDeviceWithTheChannelAsSubFolder) {
  auto other = useScriptedPeer();
  sandbox.folder("peer/Podcast/A_B");
  EXPECT_TRUE(send({channel("A/B", {onDevice("1.mp3")})}));
  ASSERT_EQ(other->writes.size(), 1u);
  EXPECT_EQ(other->writes[0].name, podcasts + "/News/1.mp3");
  EXPECT_EQ(other->writes[0].subFolder, "A_B");
  EXPECT_EQ(other->writes[0].mediaType, uint32_t{kMediaPodcast});
  EXPECT_FALSE(other->writes[0].isOverWrite);
  EXPECT_EQ(texts(results(), key::kDeviceName), Texts{"Peer"});
}

TEST_F(PodcastDeviceToDevice, FailsAnEpisodeWithTheNumberOfTheOtherDevice) {
  auto other = useScriptedPeer();
  sandbox.folder("peer/Podcast/News");
  other->answer = [n = 0](uint32_t& error) mutable {
    if (++n == 1) error = kErrorOpenFailed;
    return n != 2;
  };
  expectLine(
      surroundings, 1, kDeviceToDeviceMethod,
      "Podcast Download $/internal/Podcast/News/1.mp3 to $/peer/Podcast/News/1.mp3 failed.", [&] {
        other->answer = [n = 0](uint32_t& error) mutable {
          if (++n == 1) error = kErrorOpenFailed;
          return n != 2;
        };
        notifications.clear();
        EXPECT_TRUE(send({channel("News", {onDevice("1.mp3"), onDevice("2.mp3"), onDevice("3.mp3")})}));
      });
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), Texts{"3.mp3"});
  EXPECT_EQ(lastFailCount(), 2u);
  EXPECT_EQ(outcomes()[0], "0 failed $/internal/Podcast/News/1.mp3 0x21000004");
  EXPECT_EQ(outcomes()[1], "1 failed $/internal/Podcast/News/2.mp3 0x20000005");
}

TEST_F(PodcastDeviceToDevice, WritesOnceMoreWithoutTheOverwriteFlagWhenTheUserAgrees) {
  auto other = useScriptedPeer();
  sandbox.folder("peer/Podcast/News");
  other->answer = [&](uint32_t& error) {
    error = other->writes.size() % 2 == 1 ? uint32_t{kErrorFileExists} : uint32_t{kErrorNone};
    return error == kErrorNone;
  };
  delegate.answer = {true, true, false};
  EXPECT_TRUE(send({channel("News", {onDevice("1.mp3")})}));
  ASSERT_EQ(other->writes.size(), 2u);
  EXPECT_FALSE(other->writes[1].isOverWrite);
  EXPECT_EQ(delegate.asked(), Texts{podcasts + "/News/1.mp3"});
  EXPECT_EQ(numbers(results(), key::kResultStatus), (std::vector<uint32_t>{kItemTransferred}));
}

TEST_F(PodcastDeviceToDevice, FailsTheEpisodeWhenTheSecondWriteSaysTheSame) {
  auto other = useScriptedPeer();
  sandbox.folder("peer/Podcast/News");
  other->answer = [](uint32_t& error) {
    error = kErrorFileExists;
    return false;
  };
  delegate.answer = {true, true, false};
  send({channel("News", {onDevice("1.mp3")})});
  EXPECT_EQ(lastFailCount(), 1u);
  EXPECT_EQ(outcomes(), Texts{"0 failed $/internal/Podcast/News/1.mp3 0x21000002"});
}

TEST_F(PodcastDeviceToDevice, SkipsAnExistingEpisodeOnNoAndDoesNotAskAgain) {
  auto other = useScriptedPeer();
  sandbox.folder("peer/Podcast/News");
  other->answer = [](uint32_t& error) {
    error = kErrorFileExists;
    return false;
  };
  delegate.answer = {false, true, false};
  EXPECT_TRUE(send({channel("News", {onDevice("1.mp3"), onDevice("2.mp3")})}));
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kErrorFileExists, kErrorFileExists}));
  EXPECT_EQ(lastFailCount(), 0u);
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), Texts{});
}

TEST_F(PodcastDeviceToDevice, EndsTheRunForAStopCodeOfTheOtherDevice) {
  auto other = useScriptedPeer();
  sandbox.folder("peer/Podcast/News");
  other->answer = [](uint32_t& error) {
    error = kErrorStoppedByPeer;
    return false;
  };
  EXPECT_TRUE(
      send({channel("News", {onDevice("1.mp3"), onDevice("2.mp3")}), channel("Arts", {onDevice("3.mp3")})}));
  EXPECT_EQ(other->writes.size(), 1u);
  EXPECT_EQ(numbers(progress(), key::kTransferStatus).back(), 3u);
  EXPECT_TRUE(peerIndex("News"));
  EXPECT_FALSE(exists(peerDisk + "/Podcast/Arts"));
  EXPECT_EQ(outcomes(), (Texts{"0 not reached $/internal/Podcast/News/1.mp3 0x10000009",
                               "1 not reached $/internal/Podcast/News/2.mp3 0x10000008",
                               "2 not reached $/internal/Podcast/News/3.mp3 0x10000008"}));
}

TEST_F(PodcastDeviceToDevice, CountsChannelsForAFullVolumeAndTriesTheNext) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(peerDisk, 256 * 1024);
  EXPECT_TRUE(send({channel("A", {onDevice("1.mp3", std::string(300 * 1024, 'x')), onDevice("2.mp3")}),
                    channel("B", {onDevice("3.mp3")})}));
  EXPECT_EQ(fieldOf(peerIndex("A"), "FilePath"), Texts{});
  EXPECT_EQ(fieldOf(peerIndex("B"), "FilePath"), Texts{"3.mp3"});
  EXPECT_EQ(lastFailCount(), 2u);
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kErrorVolumeFull, kItemTransferred}));
  EXPECT_EQ(outcomes()[1], "1 not reached $/internal/Podcast/News/2.mp3 0x1000000a");
}

TEST_F(PodcastDeviceToDevice, TellsTheObserverTheTruthOfAYesWithoutACopy) {
  useScriptedPeer()->reports = false;
  sandbox.folder("peer/Podcast/News");
  send({channel("News", {onDevice("1.mp3")})});
  EXPECT_EQ(numbers(results(), key::kResultStatus), (std::vector<uint32_t>{kItemTransferred}));
  EXPECT_EQ(outcomes(), Texts{"0 failed $/internal/Podcast/News/1.mp3 0x20000002"});
}

TEST_F(PodcastDeviceToDevice, StopsForACancelAndAnswersIt) {
  once(kMediaResultNotification, [&] { service->cancelFileAction(7); });
  send({channel("News", {onDevice("1.mp3"), onDevice("2.mp3")})});
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), Texts{"1.mp3"});
  EXPECT_EQ(linesOf(surroundings, kDeviceToDeviceMethod), Lines{"Cancel Podcast Processing."});
  EXPECT_FALSE(service->isCancelServiceId(7));
}

TEST_F(PodcastDeviceToDevice, StopsWhenThisServiceIsReleased) {
  once(kMediaResultNotification, [&] { service->disconnectDevice("location-1"); });
  EXPECT_FALSE(send({channel("News", {onDevice("1.mp3"), onDevice("2.mp3")})}));
  EXPECT_EQ(treeOf(peerDisk + "/Podcast"), (Texts{"News/", "News/1.mp3"}));
  EXPECT_EQ(linesOf(surroundings, kDeviceToDeviceMethod),
            (Lines{"Device Disconnected - location-1", "Podcast XML Data send is failed."}));
}

TEST_F(PodcastDeviceToDevice, PutsTwoTitlesThatCleanToOneNameIntoOneFolderAndOneIndex) {
  EXPECT_TRUE(send({channel("New:s", {onDevice("1.mp3")}), channel("New?s", {onDevice("2.mp3")})}));
  EXPECT_EQ(treeOf(peerDisk + "/Podcast"),
            (Texts{"New_s/", "New_s/1.mp3", "New_s/2.mp3", "New_s/New_s.xml"}));
  EXPECT_EQ(fieldOf(peerIndex("New_s"), "FilePath"), (Texts{"1.mp3", "2.mp3"}));
}

TEST_F(PodcastDeviceToDevice, KeepsADamagedIndexOfTheOtherDeviceBesideTheNewOne) {
  sandbox.file("peer/Podcast/News/News.xml", "damaged");
  EXPECT_TRUE(send({channel("News", {onDevice("1.mp3")})}));
  EXPECT_EQ(bytesOf(peerDisk + "/Podcast/News/News.xml.damaged"), "damaged");
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), Texts{"1.mp3"});
}

TEST_F(PodcastDeviceToDevice, StopsForACancelInTheMiddleOfAnEpisode) {
  once(kTransferProgressNotification, [&] { service->cancelFileAction(7); });
  const std::string bytes(2'500'000, 'x');
  send({channel("News", {onDevice("1.mp3", bytes), onDevice("2.mp3")})});
  EXPECT_EQ(bytesOf(peerDisk + "/Podcast/News/1.mp3").size(), kFirstReport);
  EXPECT_FALSE(exists(peerDisk + "/Podcast/News/2.mp3"));
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), Texts());
  EXPECT_FALSE(service->isCancelServiceId(7));
}

TEST_F(PodcastDeviceToDevice, StopsInTheMiddleOfAnEpisodeWhenThisServiceIsReleased) {
  once(kTransferProgressNotification, [&] { service->exitServiceThread(); });
  const std::string bytes(2'500'000, 'x');
  send({channel("News", {onDevice("1.mp3", bytes), onDevice("2.mp3")})});
  EXPECT_EQ(treeOf(peerDisk + "/Podcast"), (Texts{"News/", "News/1.mp3"}));
  EXPECT_EQ(bytesOf(peerDisk + "/Podcast/News/1.mp3").size(), kFirstReport);
}

TEST_F(PodcastDeviceToDevice, EndsTheRunForAStopCodeOfTheSecondWrite) {
  sandbox.folder("peer/Podcast/News");
  delegate.answer = {true, true, false};
  for (uint32_t stop : {uint32_t{kErrorStopped}, uint32_t{kErrorStoppedByPeer}}) {
    auto other = useScriptedPeer();
    other->answer = [&](uint32_t& error) {
      error = other->writes.size() == 1 ? uint32_t{kErrorFileExists} : stop;
      return false;
    };
    notifications.clear();
    EXPECT_TRUE(send(
        {channel("News", {onDevice("1.mp3"), onDevice("2.mp3")}), channel("Arts", {onDevice("3.mp3")})}));
    EXPECT_EQ(other->writes.size(), 2u);
    EXPECT_EQ(results().size(), 0u);
    EXPECT_EQ(numbers(progress(), key::kTransferStatus).back(), 3u);
    EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), Texts{});
    EXPECT_FALSE(exists(peerDisk + "/Podcast/Arts"));
    const Texts last = outcomes();
    EXPECT_EQ(Texts(last.end() - 3, last.end()),
              (Texts{"0 not reached $/internal/Podcast/News/1.mp3 " + hexadecimal(stop),
                     "1 not reached $/internal/Podcast/News/2.mp3 0x10000008",
                     "2 not reached $/internal/Podcast/News/3.mp3 0x10000008"}));
  }
}

TEST_F(PodcastDeviceToDevice, OfTwoFilesOfOneNameTheSecondReplacesTheFirstAndBothAreListed) {
  Dictionary twin{{"Url", "http://host/twin"},
                  {"Length", 6},
                  {key::kFilePath, sandbox.file("internal/Podcast/Arts/1.mp3", "second")}};
  useDelegate();
  EXPECT_TRUE(send({channel("News", {onDevice("1.mp3", "first"), twin})}));
  EXPECT_EQ(delegate.asked(), Texts{}) << "the other device replaces what is there without a word";
  EXPECT_EQ(treeOf(peerDisk + "/Podcast/News"), (Texts{"1.mp3", "News.xml"}));
  EXPECT_EQ(bytesOf(peerDisk + "/Podcast/News/1.mp3"), "second");
  EXPECT_EQ(fieldOf(peerIndex("News"), "Url"), (Texts{"http://host/1.mp3", "http://host/twin"}));
  EXPECT_EQ(fieldOf(peerIndex("News"), "FilePath"), (Texts{"1.mp3", "1.mp3"}));
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kItemTransferred, kItemTransferred}));
  EXPECT_EQ(outcomes(), (Texts{"0 done $/internal/Podcast/News/1.mp3 0x00000000",
                               "1 done $/internal/Podcast/Arts/1.mp3 0x00000000"}));
}

TEST_F(PodcastDeviceToDevice, LeavesTheIndexOfADestinationThatGoesAwayBeforeItIsWritten) {
  send({channel("News", {onDevice("1.mp3")})});
  forget();
  const std::string elsewhere = sandbox.at("pulled");
  once(kMediaResultNotification, [&] { std::filesystem::rename(peerDisk, elsewhere); });
  EXPECT_FALSE(send({channel("News", {onDevice("2.mp3")})}));
  EXPECT_EQ(linesOf(surroundings, kDeviceToDeviceMethod), Lines{"Podcast XML Data send is failed."});
  EXPECT_FALSE(exists(peerDisk));
  EXPECT_EQ(treeOf(elsewhere + "/Podcast"), (Texts{"News/", "News/1.mp3", "News/2.mp3", "News/News.xml"}));
  EXPECT_EQ(fieldOf(service->checkXmlData(elsewhere + "/Podcast/News", "News"), "FilePath"), Texts{"1.mp3"});
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/1.mp3", "News/2.mp3"})) << "the source stays as it is";
}

TEST_F(PodcastDeviceToDevice, WritesNoIndexOnTheComputerWhenTheDestinationIsPulled) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(peerDisk, 512 * 1024);
  once(kMediaResultNotification, [&] { volume.vanish(); });
  EXPECT_FALSE(send({channel("News", {onDevice("1.mp3")})}));
  EXPECT_EQ(treeOf(peerDisk), Texts{});
  EXPECT_EQ(outcomes(), Texts{"0 done $/internal/Podcast/News/1.mp3 0x00000000"});
}

}  // namespace
}  // namespace umsservice::testing
