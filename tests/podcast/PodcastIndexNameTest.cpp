#include <filesystem>
#include <fstream>

#include "KeptNotifiers.h"
#include "PodcastIndexFiles.h"
#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kNoTarget = "Target Episode Path is nil. Next episode processing.";

/// An episode whose file is named like the channel's own index. Everybody says yes to everything here, and
/// the index stays what it is all the same.
class PodcastIndexName : public PodcastTest {
 protected:
  PodcastIndexName() {
    service = surroundings.makeService();
    service->addDiskInformation(disk(1, internal));
    service->addDiskInformation(disk(2, card));
    useDelegate();
    delegate.answer = {true, true, true};
    peer->addDiskInformation(disk(1, peerDisk));
    surroundings.delegate->onService = [this](const MaybeString&) { return peer; };
  }
  static Texts namesOfTheIndex() {
    return {"News.xml", "news.XML", "News.xml.damaged", "NEWS.XML.Damaged.2"};
  }
  /// A request for channel News: an episode like any other, and one of that name.
  _serviceinfo requestWith(const std::string& name, uint32_t serviceID = 7) {
    _serviceinfo record = request({channel("News", {episode("1.mp3"), episode(name, "an episode")})});
    record.serviceID = serviceID;
    record.isStartInternal = 1;
    record.destLocationID = "location-2";
    return record;
  }
  /// Puts an index with an old episode there, and one that was kept beside it.
  void putChannel(const std::string& folder) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    XMLDocument document = converter.makePodcastXMLFromPodcastDictionary(
        channel("News", {Dictionary{{"Url", "http://host/0.mp3"}, {"FilePath", "0.mp3"}}}), true);
    ASSERT_TRUE(service->sendXmlData(0, bytes(*document.bytes()), folder, "News"));
    for (const char* name : {"0.mp3", "News.xml.damaged"}) std::ofstream(folder + "/" + name) << "kept";
    notifications.clear();
  }
  static std::shared_ptr<Data> bytes(const std::string& text) {
    auto data = std::make_shared<Data>();
    for (char c : text) data->push_back(static_cast<std::byte>(c));
    return data;
  }
  /// The one episode has come, the index tells of it and of the old one, and the other has replaced nothing.
  void expectOnlyTheEpisode(const std::string& folder) {
    EXPECT_EQ(treeOf(folder), (Texts{"0.mp3", "1.mp3", "News.xml", "News.xml.damaged"}));
    EXPECT_EQ(bytesOf(folder + "/1.mp3"), "la la la");
    EXPECT_EQ(bytesOf(folder + "/News.xml.damaged"), "kept");
    EXPECT_EQ(fieldOf(service->checkXmlData(folder, "News"), "FilePath"), (Texts{"0.mp3", "1.mp3"}));
    EXPECT_EQ(lastFailCount(), 1u);
    EXPECT_EQ(delegate.asked(), Texts{});
  }

  std::shared_ptr<KeptNotifiers> notifiers = KeptNotifiers::of(surroundings);
  const std::string peerDisk = sandbox.folder("peer");
  std::shared_ptr<UMSService> peer = std::make_shared<UMSService>(surroundings.environment, "location-2");
  const Log writer{surroundings.environment};
  const QDUIPodcastXMLConverter converter{writer};
};

TEST_F(PodcastIndexName, IsNoEpisodesInACopy) {
  for (const std::string& name : namesOfTheIndex()) {
    expectLine(surroundings, 1, "-[UMSService doCopyPodcastContents:]", kNoTarget, [&] {
      putChannel(podcasts + "/News");
      EXPECT_TRUE(service->doCopyPodcastContents(requestWith(name)));
    });
    expectOnlyTheEpisode(podcasts + "/News");
    EXPECT_EQ(notifiers->lastResult(), kErrorBadCopyItem) << name;
    EXPECT_EQ(outcomes().back(), "1 failed $/in/" + name + " 0x23000005");
  }
}

TEST_F(PodcastIndexName, IsNoEpisodesInASyncAnUnattendedOneIncluded) {
  for (uint32_t serviceID : {7u, 0x00100005u}) {
    for (const std::string& name : namesOfTheIndex()) {
      expectLine(surroundings, 1, "-[UMSService doSyncPodcastContents:]", kNoTarget, [&] {
        putChannel(podcasts + "/News");
        EXPECT_TRUE(service->doSyncPodcastContents(requestWith(name, serviceID)));
      });
      expectOnlyTheEpisode(podcasts + "/News");
      EXPECT_EQ(notifiers->lastResult(), kErrorBadSyncItem) << name;
      EXPECT_EQ(outcomes().back(), "1 failed $/in/" + name + " 0x23000004");
    }
  }
}

TEST_F(PodcastIndexName, IsNoEpisodesOnTheVolumeOfAFallOver) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume tiny(internal, 4096);
  for (uint32_t serviceID : {7u, 0x00100005u}) {
    for (const std::string& name : namesOfTheIndex()) {
      expectLine(surroundings, 1,
                 "-[UMSService syncUmsPodcastFile:index:mediaType:podcastInfo:xmlConverter:context:]",
                 kNoTarget, [&] {
                   putChannel(card + "/Podcast/News");
                   _serviceinfo record = requestWith(name, serviceID);
                   record.contents->at(0)
                       .dictionary()
                       ->get("children")
                       .array()
                       ->at(0)
                       .dictionary()
                       ->set("Length", 5000);
                   EXPECT_TRUE(service->doSyncPodcastContents(record));
                 });
      expectOnlyTheEpisode(card + "/Podcast/News");
      EXPECT_EQ(numbers(results(), key::kResultStatus), (std::vector<uint32_t>{kItemTransferred}));
      EXPECT_EQ(outcomes().back(), "1 failed $/in/" + name + " 0x23000004");
    }
  }
}

TEST_F(PodcastIndexName, IsNoEpisodesOnTheOtherDevice) {
  for (const std::string& name : namesOfTheIndex()) {
    expectLine(surroundings, 1, "-[UMSService doDeviceToDevicePodcast:]", kNoTarget, [&] {
      putChannel(peerDisk + "/Podcast/News");
      _serviceinfo record = requestWith(name);
      record.destPath = peerDisk + "/Podcast";
      EXPECT_TRUE(service->doDeviceToDevicePodcast(record));
    });
    expectOnlyTheEpisode(peerDisk + "/Podcast/News");
    EXPECT_EQ(notifiers->lastResult(), kErrorBadCopyItem) << name;
    EXPECT_EQ(outcomes().back(), "1 failed $/in/" + name + " 0x23000005");
  }
}

TEST_F(PodcastIndexName, IsNotDeletedAsAnEpisode) {
  const std::string news = podcasts + "/News";
  for (const std::string& name : namesOfTheIndex()) {
    auto onDevice = [&](const std::string& file) {
      return Dictionary{{"Url", "http://host/" + file}, {key::kFilePath, news + "/" + file}};
    };
    expectLine(surroundings, 1, "-[UMSService doDeletePodcastContents:]", "Episode Medias File Path is nil.",
               [&] {
                 putChannel(news);
                 ASSERT_TRUE(service->doCopyPodcastContents(request({channel("News", {episode("1.mp3")})})));
                 if (!exists(news + "/" + name)) std::ofstream(news + "/" + name) << "kept";
                 notifications.clear();
                 EXPECT_TRUE(service->doDeletePodcastContents(
                     request({channel("News", {onDevice("1.mp3"), onDevice(name)})})));
               });
    EXPECT_TRUE(exists(news + "/" + name)) << name;
    EXPECT_FALSE(exists(news + "/1.mp3"));
    EXPECT_EQ(bytesOf(news + "/0.mp3"), "kept");
    EXPECT_EQ(bytesOf(news + "/News.xml.damaged"), "kept");
    EXPECT_EQ(listed("News"), Texts{"0.mp3"});
    EXPECT_EQ(lastFailCount(), 1u);
    EXPECT_EQ(notifiers->lastResult(), kErrorBadDeleteItem);
    EXPECT_EQ(items.outcomes().back().errorNumber, kErrorBadDeleteItem);
  }
}

TEST_F(PodcastIndexName, IsToldFromOtherNamesAsAPlayersFileSystemDoes) {
  using umsservice::PodcastIndexFiles;
  const Texts same = {"News.xml",           "NEWS.XML",          "news.Xml",          "News.xml.",
                      "News.xml ",          "News.xml. . ",      "News.xml.damaged",  "news.XML.DAMAGED",
                      "News.xml.damaged.2", "News.xml.damaged.", "News.xml.damaged  "};
  for (const std::string& name : same) EXPECT_TRUE(PodcastIndexFiles::isNameOfIndex(name, "News")) << name;
  const Texts others = {
      "",          "News",         ".xml",      "News.xm",   "News.xml2",        "News.xml.mp3",
      "News2.xml", "The News.xml", " News.xml", "News .xml", "News.mp3",         "News_xml",
      "xml",       "Newsxml",      "News..xml", ".damaged",  "Arts.xml.damaged", ". ."};
  for (const std::string& name : others) EXPECT_FALSE(PodcastIndexFiles::isNameOfIndex(name, "News")) << name;
  EXPECT_TRUE(PodcastIndexFiles::isNameOfIndex("GRÜSSE ÉTÉ.XML", "Grüsse été")) << "letters of every script";
}

TEST_F(PodcastIndexName, IsTheIndexsAlsoWhereTheChannelIsNamedLikeOneThatWasKept) {
  using umsservice::PodcastIndexFiles;
  const std::string title = "News.xml.damaged";
  for (const char* ending : {".xml", ".XML.", ".xml.damaged", ".xml.damaged.2"})
    EXPECT_TRUE(PodcastIndexFiles::isNameOfIndex(title + ending, title)) << ending;
  EXPECT_FALSE(PodcastIndexFiles::isNameOfIndex(title, title));
  EXPECT_TRUE(copy({channel(title, {episode("1.mp3"), episode(title + ".xml", "an episode")})}));
  EXPECT_EQ(listed(title), Texts{"1.mp3"});
  EXPECT_EQ(lastFailCount(), 1u);
}

}  // namespace
}  // namespace umsservice::testing
