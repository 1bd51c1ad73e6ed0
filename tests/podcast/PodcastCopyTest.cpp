#include "PodcastTest.h"
#include "ScriptedTags.h"

namespace umsservice::testing {
namespace {

using PodcastCopy = PodcastTest;

TEST_F(PodcastCopy, PutsTheEpisodesIntoAFolderForTheChannelAndListsThemInItsIndex) {
  ASSERT_TRUE(copy({channel("News", {episode("1.mp3", "one"), episode("2.mp3", "two")})}));
  EXPECT_EQ(treeOf(internal), (Texts{"Podcast/", "Podcast/News/", "Podcast/News/1.mp3", "Podcast/News/2.mp3",
                                     "Podcast/News/News.xml"}));
  EXPECT_EQ(bytesOf(podcasts + "/News/2.mp3"), "two");
  EXPECT_EQ(indexOf("News")->string("Title"), "News");
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(fieldOf(indexOf("News"), "FilePath"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(fieldOf(indexOf("News"), "Length"), (Texts{"3", "3"}));
}

TEST_F(PodcastCopy, TellsTheHostOfEachEpisodeWithTheChannelAsItIsThen) {
  copy({channel("News", {episode("1.mp3"), episode("2.mp3")})});
  auto told = results();
  ASSERT_EQ(told.size(), 2u);
  EXPECT_EQ(fieldOf(podcastOf(told[0]), "FilePath"), (Texts{podcasts + "/News/1.mp3"}));
  EXPECT_EQ(fieldOf(podcastOf(told[1]), "FilePath"),
            (Texts{podcasts + "/News/1.mp3", podcasts + "/News/2.mp3"}));
  EXPECT_EQ(podcastOf(told[1]).string("Link"), "http://host");
  Dictionary rest = told[1].userInfo.mutableCopy();
  rest.remove(key::kPodcastXmlInfo);
  EXPECT_EQ(typed(rest), (Lines{"ChannelName: text News", "FilePath: text " + sandbox.at("in/2.mp3"),
                                "LocationId: text location-1", "MN: text Pocket One", "MediaNotiType: u32 4",
                                "ResultStatus: u32 268435457", "ServiceID: u32 7", "VolumeIndex: u32 0"}));
}

TEST_F(PodcastCopy, CountsEpisodesAndBytesOfTheWholeRequest) {
  copy({channel("A", {episode("1.mp3", "123456")}), channel("B", {episode("2.mp3", "78")})});
  EXPECT_EQ(numbers(progress(), key::kMax), (std::vector<uint32_t>{2, 2, 2}));
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{75, 100, 100}));
  EXPECT_EQ(numbers(progress(), key::kTransferStatus), (std::vector<uint32_t>{2, 2, 4}));
  EXPECT_EQ(texts(progress(), key::kFileName), (Texts{"1.mp3", "2.mp3", "2.mp3"}));
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 done $/in/2.mp3 0x00000000"}));
  EXPECT_EQ(items.outcomes()[0].bytes, 6u);
  EXPECT_EQ(items.outcomes()[1].destPath, podcasts + "/B/2.mp3");
}

TEST_F(PodcastCopy, RunsFromTheQueueWithAResultForTheRequest) {
  ASSERT_TRUE(
      service->copyContentsMacToDevice(9, Array{channel("News", {episode("1.mp3")})}, kMediaPodcast, 1));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  EXPECT_EQ(treeOf(card),
            (Texts{"Podcast/", "Podcast/News/", "Podcast/News/1.mp3", "Podcast/News/News.xml"}));
  EXPECT_EQ(numbers(notifications.named(kUmsResultNotification), key::kStatus), (std::vector<uint32_t>{0}));
  EXPECT_EQ(numbers(results(), key::kVolumeIndex), (std::vector<uint32_t>{1}));
}

TEST_F(PodcastCopy, BringsAChannelFromTheDeviceToTheComputerToo) {
  copy({channel("News", {episode("1.mp3", "one")})});
  notifications.clear();
  std::string folder = sandbox.folder("computer");
  MaybeDictionary news = service->umsPodcastXmlData(podcasts + "/News/News.xml");
  ASSERT_TRUE(service->copyContentsDeviceToMac(9, Array{*news}, folder, kMediaPodcast, std::nullopt));
  ASSERT_TRUE(notifications.waitFor(kMediaResultNotification));
  std::lock_guard untilTheRunIsOver(service->synchronizedSection());
  EXPECT_EQ(treeOf(folder), (Texts{"News/", "News/1.mp3", "News/News.xml"}));
  EXPECT_EQ(bytesOf(folder + "/News/News.xml"), bytesOf(podcasts + "/News/News.xml"));
  EXPECT_EQ(notifications.count(kUmsResultNotification), 0u);
}

TEST_F(PodcastCopy, LeavesTheHostsDictionariesAsTheyAre) {
  Dictionary one = episode("1.mp3");
  Dictionary news = channel("News", {one});
  copy({news});
  EXPECT_EQ(one.string(key::kFilePath), sandbox.at("in/1.mp3"));
  EXPECT_EQ(news.get("children").array()->count(), 1u);
}

TEST_F(PodcastCopy, KeepsTheDevicesChannelFieldsAndAppendsToItsEpisodes) {
  copy({channel("News", {episode("1.mp3"), episode("2.mp3")})});
  Dictionary again = channel("News", {episode("3.mp3")});
  again.set("Link", "http://elsewhere");
  forget();
  ASSERT_TRUE(copy({again}));
  EXPECT_EQ(indexOf("News")->string("Link"), "http://host");
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3", "3.mp3"}));
  EXPECT_EQ(fieldOf(podcastOf(results().at(0)), "FilePath"),
            (Texts{podcasts + "/News/1.mp3", podcasts + "/News/2.mp3", podcasts + "/News/3.mp3"}));
}

TEST_F(PodcastCopy, ListsAnEpisodeThatIsCopiedTwiceOnce) {
  useDelegate();
  delegate.answer = {true, true, true};
  copy({channel("News", {episode("1.mp3", "old")})});
  log.clear();
  ASSERT_TRUE(copy({channel("News", {episode("1.mp3", "new")})}));
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "new");
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
  auto lines = log.lines();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "same episode: http://host/1.mp3"), 1);
}

TEST_F(PodcastCopy, MakesFolderAndIndexOfAChannelWithAnEmptyListOfEpisodes) {
  ASSERT_TRUE(copy({channel("News", {})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/News.xml"}));
  EXPECT_EQ(listed("News"), Texts{});
  copy({channel("News", {episode("1.mp3")})});
  ASSERT_TRUE(copy({channel("News", {})}));
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
}

TEST_F(PodcastCopy, CleansTheTitleAndTheFileNameForTheDevice) {
  ASSERT_TRUE(copy({channel(" News: 9/11? ", {episode("1.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News_ 9_11_/", "News_ 9_11_/1.mp3", "News_ 9_11_/News_ 9_11_.xml"}));
  EXPECT_EQ(texts(results(), key::kChannelName), Texts{"News_ 9_11_"});
  EXPECT_EQ(indexOf("News_ 9_11_")->string("Title"), " News: 9/11? ");
}

TEST_F(PodcastCopy, StaysOnAVolumeWhoseMountPointNamesMayNotHave) {
  std::string odd = sandbox.folder("odd: volume?");
  _serviceinfo record = request({channel("News", {episode("1.mp3")})});
  record.destPath = odd + "//Podcast/";
  ASSERT_TRUE(service->doCopyPodcastContents(record));
  EXPECT_EQ(treeOf(odd), (Texts{"Podcast/", "Podcast/News/", "Podcast/News/1.mp3", "Podcast/News/News.xml"}));
}

TEST_F(PodcastCopy, PutsTwoChannelsWhoseTitlesCleanToOneNameTogether) {
  ASSERT_TRUE(copy({channel("A/B", {episode("1.mp3")}), channel("A:B", {episode("2.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"A_B/", "A_B/1.mp3", "A_B/2.mp3", "A_B/A_B.xml"}));
  EXPECT_EQ(listed("A_B"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(indexOf("A_B")->string("Title"), "A/B");
}

TEST_F(PodcastCopy, FailsTheSecondOfTwoEpisodesWithOneFileName) {
  Dictionary twin = episode("1.mp3", "first");
  Dictionary other = twin.mutableCopy();
  other.set("Url", "http://host/other");
  other.set(key::kFilePath, sandbox.file("elsewhere/1.mp3", "second"));
  copy({channel("News", {twin, other})});
  EXPECT_EQ(bytesOf(podcasts + "/News/1.mp3"), "first");
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});
  EXPECT_EQ(outcomes(), (Texts{"0 done $/in/1.mp3 0x00000000", "1 failed $/elsewhere/1.mp3 0x21000002"}));
}

TEST_F(PodcastCopy, TakesALengthThatLiesForNoMoreThanASize) {
  std::vector<Value> episodes;
  for (const char* length : {"-1", "abc", "99999999999999999999", ""}) {
    Dictionary lying = episode("e" + std::to_string(episodes.size()) + ".mp3");
    lying.set("Length", length);
    episodes.emplace_back(lying);
  }
  ASSERT_TRUE(copy({channel("News", episodes)}));
  EXPECT_EQ(fieldOf(indexOf("News"), "Length"), (Texts{"-1", "abc", "99999999999999999999", "(none)"}));
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(bytesOf(podcasts + "/News/e" + std::to_string(i) + ".mp3"), "la la la");
}

TEST_F(PodcastCopy, ADictionaryThatAHandlerKeepsNeverChanges) {
  std::vector<Dictionary> kept;
  notifications.onEach([&](const Notification& posted) {
    if (posted.name == kMediaResultNotification) kept.push_back(podcastOf(posted));
  });
  copy({channel("News", {episode("1.mp3"), episode("2.mp3"), episode("3.mp3")})});
  ASSERT_EQ(kept.size(), 3u);
  EXPECT_EQ(fieldOf(kept[0], "Title"), (Texts{"1.mp3"}));
  EXPECT_EQ(fieldOf(kept[1], "Title"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(fieldOf(kept[2], "Title"), (Texts{"1.mp3", "2.mp3", "3.mp3"}));
}

TEST_F(PodcastCopy, WhatAHandlerDoesToADictionaryChangesNoOther) {
  notifications.onEach([&](const Notification& posted) {
    if (posted.name != kMediaResultNotification) return;
    Dictionary podcast = podcastOf(posted);
    Array episodes = *podcast.get("children").array();
    episodes.at(0).dictionary()->set("Title", "scribble");
    episodes.append(Dictionary{{"Url", "scribble"}});
    podcast.set("Title", "scribble");
  });
  copy({channel("News", {episode("1.mp3"), episode("2.mp3")})});
  EXPECT_EQ(indexOf("News")->string("Title"), "News");
  EXPECT_EQ(fieldOf(indexOf("News"), "Title"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(fieldOf(podcastOf(results().at(1)), "Title"), (Texts{"scribble", "2.mp3", "(none)"}));
}

TEST_F(PodcastCopy, SendsTheTagsOfEachCopyAndNeverThoseOfAnother) {
  auto tags = std::make_shared<ScriptedTags>([](const std::string& path) {
    return Dictionary{{"Artist", "tags of " + path}};
  });
  tags->knows = [](const std::string& path) { return !path.ends_with(".txt"); };
  surroundings.environment.mediaInfoFactory = tags;
  service = surroundings.makeService();
  copy({channel("News", {episode("1.mp3"), episode("2.txt")})});
  EXPECT_EQ(texts(results(), "Artist"), (Texts{"tags of " + podcasts + "/News/1.mp3", "(none)"}));
}

}  // namespace
}  // namespace umsservice::testing
