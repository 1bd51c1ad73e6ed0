#include <cerrno>
#include <filesystem>

#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kDeleteMethod = "-[UMSService doDeletePodcastContents:]";

class PodcastDelete : public PodcastTest {
 protected:
  const std::string news = podcasts + "/News";

  void putThreeEpisodes() {
    copy({channel("News", {episode("1.mp3", "one"), episode("2.mp3"), episode("3.mp3")})});
    notifications.clear();
    log.clear();
    told = items.outcomes().size();
  }
  /// An episode as a listing gives it.
  Dictionary onDevice(const std::string& name) const {
    return Dictionary{{"Url", "http://host/" + name}, {key::kFilePath, news + "/" + name}};
  }
  static Dictionary whole(const char* title, const std::vector<Value>& episodes) {
    Dictionary podcast = channel(title, episodes);
    podcast.set("Delete", true);
    return podcast;
  }
  bool remove(const Array& contents) { return service->doDeletePodcastContents(request(contents)); }
  Texts newOutcomes() const {
    Texts all = outcomes();
    return Texts(all.begin() + static_cast<std::ptrdiff_t>(told), all.end());
  }
  size_t told = 0;
};

TEST_F(PodcastDelete, TakesSingleEpisodesOutOfFolderAndIndex) {
  putThreeEpisodes();
  EXPECT_TRUE(remove({channel("News", {onDevice("1.mp3"), onDevice("3.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/2.mp3", "News/News.xml"}));
  EXPECT_EQ(fieldOf(indexOf("News"), "FilePath"), Texts{"2.mp3"});
  EXPECT_EQ(newOutcomes(), (Texts{"0 done $/internal/Podcast/News/1.mp3 0x00000000",
                                  "1 done $/internal/Podcast/News/3.mp3 0x00000000"}));
  EXPECT_EQ(items.outcomes()[told].bytes, 3u);
}

TEST_F(PodcastDelete, TellsTheHostOfEachEpisodeWithTheChannelThatIsLeft) {
  putThreeEpisodes();
  remove({channel("News", {onDevice("1.mp3"), onDevice("3.mp3")})});
  EXPECT_EQ(story(surroundings), (Lines{"progress 1/2 fail 0 status 2 50% 1.mp3",
                                        "result 0x10000001 volume 0 $/internal/Podcast/News/1.mp3",
                                        "progress 2/2 fail 0 status 2 100% 3.mp3",
                                        "result 0x10000001 volume 0 $/internal/Podcast/News/3.mp3",
                                        "progress 2/2 fail 0 status 4 100% 3.mp3"}));
  EXPECT_EQ(fieldOf(podcastOf(results()[0]), "FilePath"), (Texts{news + "/2.mp3", news + "/3.mp3"}));
  EXPECT_EQ(fieldOf(podcastOf(results()[1]), "FilePath"), Texts{news + "/2.mp3"});
  EXPECT_FALSE(podcastOf(results()[1]).contains("Delete"));
  EXPECT_EQ(texts(results(), key::kChannelName), (Texts{"News", "News"}));
}

TEST_F(PodcastDelete, RemovesTheFolderOfAChannelThatLosesItsLastEpisode) {
  putThreeEpisodes();
  EXPECT_TRUE(remove({channel("News", {onDevice("1.mp3"), onDevice("2.mp3"), onDevice("3.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), Texts{});
  auto told = results();
  ASSERT_EQ(told.size(), 3u);
  EXPECT_FALSE(podcastOf(told[1]).contains("Delete"));
  EXPECT_TRUE(podcastOf(told[2]).get("Delete").boolValue());
  EXPECT_EQ(fieldOf(podcastOf(told[2]), "Url"), Texts{});
}

TEST_F(PodcastDelete, RemovesAWholeChannelAtOnceAndSaysSoBeforeTheNext) {
  putThreeEpisodes();
  copy({channel("Arts", {episode("4.mp3")})});
  notifications.clear();
  Texts treeAtFirstResult;
  once(kMediaResultNotification, [&] { treeAtFirstResult = treeOf(podcasts); });
  std::vector<Value> five(5, onDevice("1.mp3"));
  EXPECT_TRUE(remove({whole("News", five), whole("Arts", {onDevice("4.mp3")})}));
  EXPECT_EQ(treeAtFirstResult, (Texts{"Arts/", "Arts/4.mp3", "Arts/Arts.xml"}));
  EXPECT_EQ(treeOf(podcasts), Texts{});
  EXPECT_EQ(story(surroundings),
            (Lines{"progress 1/6 fail 0 status 2 16% News", "progress 6/6 fail 0 status 4 100% News",
                   "result 0x10000001 volume 0 $/internal/Podcast/News",
                   "progress 6/6 fail 0 status 4 100% Arts", "progress 6/6 fail 0 status 4 100% Arts",
                   "result 0x10000001 volume 0 $/internal/Podcast/Arts"}));
  EXPECT_EQ(items.outcomes().size() - told, 7u);  // the copy of Arts among them
}

TEST_F(PodcastDelete, CountsEveryEpisodeOfAChannelThatCannotBeRemoved) {
  putThreeEpisodes();
  files.failAlways(FileCall::Remove, "News", EACCES);
  EXPECT_FALSE(remove({whole("News", {onDevice("1.mp3"), onDevice("2.mp3")})}));
  EXPECT_EQ(story(surroundings), (Lines{"progress 2/2 fail 2 status 4 100% News",
                                        "result 0x20000003 volume 0 $/internal/Podcast/News"}));
  EXPECT_EQ(newOutcomes()[1], "1 failed $/internal/Podcast/News/2.mp3 0x20000003");
  EXPECT_EQ(listed("News").size(), 3u);
}

TEST_F(PodcastDelete, DeletesTheFileOfAnEpisodeThatTheIndexDoesNotKnow) {
  putThreeEpisodes();
  Dictionary unknown = onDevice("2.mp3");
  unknown.set("Url", "http://host/unknown");
  EXPECT_TRUE(remove({channel("News", {unknown})}));
  EXPECT_FALSE(exists(news + "/2.mp3"));
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3", "3.mp3"}));
}

TEST_F(PodcastDelete, CountsAnEpisodeThatCannotBeDeletedAndKeepsItListed) {
  putThreeEpisodes();
  files.failAlways(FileCall::Remove, "1.mp3", EACCES);
  EXPECT_TRUE(remove({channel("News", {onDevice("1.mp3"), onDevice("2.mp3"), onDevice("9.mp3")})}));
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "3.mp3"}));
  EXPECT_EQ(lastFailCount(), 2u);
  EXPECT_EQ(newOutcomes(), (Texts{"0 failed $/internal/Podcast/News/1.mp3 0x20000003",
                                  "1 done $/internal/Podcast/News/2.mp3 0x00000000",
                                  "2 failed $/internal/Podcast/News/9.mp3 0x20000003"}));
}

TEST_F(PodcastDelete, RefusesOtherMediaWithoutAWord) {
  _serviceinfo record = request({channel("News", {onDevice("1.mp3")})});
  record.mediaType = kMediaMusic;
  EXPECT_FALSE(service->doDeletePodcastContents(record));
  EXPECT_EQ(linesOf(surroundings, kDeleteMethod), Lines{});
  EXPECT_EQ(notifications.all().size(), 0u);
}

TEST_F(PodcastDelete, RunsFromTheQueueInThePodcastFolderOfTheFirstVolume) {
  putThreeEpisodes();
  ASSERT_TRUE(service->deleteContents(8, Array{channel("News", {onDevice("1.mp3")})}, kMediaPodcast, 1));
  ASSERT_TRUE(notifications.waitFor(kMediaResultNotification));
  std::lock_guard untilTheRunIsOver(service->synchronizedSection());
  EXPECT_EQ(numbers(results(), key::kVolumeIndex), (std::vector<uint32_t>{1}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/2.mp3", "News/3.mp3", "News/News.xml"}));
  EXPECT_EQ(notifications.count(kUmsResultNotification), 0u);
}

TEST_F(PodcastDelete, CountsWhatIsNoChannelAndNoEpisode) {
  putThreeEpisodes();
  Dictionary pathless{{"Url", "http://host/1.mp3"}};
  expectLine(surroundings, 1, kDeleteMethod, "Podcast data is nil. Next Podcast search",
             [&] { remove({Null()}); });
  expectLine(surroundings, 3, kDeleteMethod, "Podcast Episode is NULL", [&] {
    remove({Dictionary{{"Title", "News"}}});
  });
  expectLine(surroundings, 1, kDeleteMethod, "Episode Data is nil.",
             [&] { remove({channel("News", {Null()})}); });
  expectLine(surroundings, 1, kDeleteMethod, "Episode Medias File Path is nil.",
             [&] { remove({channel("News", {pathless})}); });
  for (const ItemOutcome& outcome : items.outcomes()) {
    if (outcome.kind == ItemOutcome::Kind::Failed) EXPECT_EQ(outcome.errorNumber, kErrorBadDeleteItem);
  }
  EXPECT_EQ(items.outcomes().size() - told, 6u);
  EXPECT_EQ(listed("News").size(), 3u);
}

TEST_F(PodcastDelete, NeverRemovesMoreThanAChannel) {
  putThreeEpisodes();
  sandbox.file("internal/Music/song.mp3", "precious");
  const Texts before = treeOf(internal);
  for (const Value& title : {Value(), Value(""), Value("."), Value(".."), Value("http://"), Value(" ")}) {
    EXPECT_FALSE(remove({whole("", {onDevice("1.mp3")})}));
    Dictionary podcast = whole("", {onDevice("1.mp3")});
    podcast.set("Title", title);
    notifications.clear();
    EXPECT_FALSE(remove({podcast, channel(title, {onDevice("1.mp3")})}));
    EXPECT_EQ(treeOf(internal), before) << title.description();
    EXPECT_EQ(lastFailCount(), 2u);
    EXPECT_EQ(items.outcomes().back().errorNumber, kErrorBadDeleteItem);
  }
  for (const MaybeString& folder : {MaybeString(), MaybeString("")}) {
    _serviceinfo record = request({whole("News", {onDevice("1.mp3")})});
    record.destPath = folder;
    EXPECT_FALSE(service->doDeletePodcastContents(record));
    EXPECT_EQ(treeOf(internal), before);
  }
}

TEST_F(PodcastDelete, NeverTakesAFolderForAnEpisode) {
  putThreeEpisodes();
  sandbox.file("internal/Music/song.mp3", "precious");
  const Texts before = treeOf(internal);
  for (const std::string& path : {news, news + "/", news + "/.", news + "/..", news + "/../../Music/song.mp3",
                                  std::string("/"), std::string(""), internal, internal + "/Music"}) {
    notifications.clear();
    EXPECT_TRUE(remove({channel("News", {Dictionary{{"Url", "u"}, {key::kFilePath, path}}})}));
    EXPECT_EQ(treeOf(internal), before) << path;
    EXPECT_EQ(lastFailCount(), 1u);
    EXPECT_EQ(items.outcomes().back().errorNumber, kErrorBadDeleteItem);
  }
}

TEST_F(PodcastDelete, TakesTheHostsWordForAChannelWithoutAnIndex) {
  putThreeEpisodes();
  std::filesystem::remove(news + "/News.xml");
  EXPECT_TRUE(remove({channel("News", {onDevice("1.mp3"), onDevice("9.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/2.mp3", "News/3.mp3", "News/News.xml"}));
  EXPECT_EQ(fieldOf(indexOf("News"), "FilePath"), Texts{"9.mp3"});
}

TEST_F(PodcastDelete, KeepsTheFilesOfAChannelWhoseIndexIsDamagedOrGone) {
  for (bool damaged : {true, false}) {
    putThreeEpisodes();
    std::filesystem::remove(news + "/News.xml");
    if (damaged) sandbox.file("internal/Podcast/News/News.xml", "damaged");
    EXPECT_TRUE(remove({channel("News", {onDevice("1.mp3")})}));
    EXPECT_TRUE(exists(news + "/2.mp3"));
    EXPECT_TRUE(exists(news + "/3.mp3"));
    EXPECT_EQ(exists(news + "/News.xml.damaged"), damaged);
    EXPECT_FALSE(podcastOf(results().back()).contains("Delete"));
    std::filesystem::remove_all(news);
  }
}

TEST_F(PodcastDelete, KeepsTheFilesOfAChannelWhoseIndexWasDamagedBeforeItWasListedAndFilledAgain) {
  for (bool filled : {false, true}) {
    putThreeEpisodes();
    sandbox.file("internal/Podcast/News/News.xml", "damaged");
    service->umsPodcastXmlData(news + "/News.xml");
    if (filled) copy({channel("News", {episode("4.mp3")})});
    EXPECT_TRUE(remove({channel("News", {onDevice(filled ? "4.mp3" : "1.mp3")})}));
    EXPECT_TRUE(exists(news + "/2.mp3"));
    EXPECT_TRUE(exists(news + "/3.mp3"));
    EXPECT_TRUE(exists(news + "/News.xml.damaged"));
    std::filesystem::remove_all(news);
  }
}

TEST_F(PodcastDelete, StaysOnAVolumeWhoseMountPointNamesMayNotHave) {
  const std::string odd = sandbox.folder("m: x/Podcast");
  sandbox.file("m: x/Podcast/News/1.mp3", "one");
  sandbox.file("m_ x/Podcast/News/1.mp3", "another device's");
  Dictionary gone = episode("1.mp3");
  gone.set(key::kFilePath, odd + "/News/1.mp3");
  _serviceinfo record = request({channel("News", {gone})});
  record.destPath = odd;
  EXPECT_TRUE(service->doDeletePodcastContents(record));
  EXPECT_FALSE(exists(odd + "/News/1.mp3"));
  EXPECT_EQ(bytesOf(sandbox.at("m_ x/Podcast/News/1.mp3")), "another device's");
}

TEST_F(PodcastDelete, RemovesTheFolderOfAChannelWithoutAnIndexWhenNothingIsLeftInIt) {
  sandbox.file("internal/Podcast/News/1.mp3", "one");
  sandbox.file("internal/Podcast/News/.hidden", "");
  EXPECT_TRUE(remove({channel("News", {onDevice("1.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), Texts{});
  EXPECT_TRUE(podcastOf(results().back()).get("Delete").boolValue());
}

TEST_F(PodcastDelete, CountsTheChannelAsGoneWhateverTheDeleteOfItsFolderSays) {
  copy({channel("News", {episode("1.mp3")})});
  notifications.clear();
  files.failAlways(FileCall::Remove, "/News", EACCES);
  EXPECT_TRUE(remove({channel("News", {onDevice("1.mp3")})}));
  EXPECT_EQ(numbers(results(), key::kResultStatus), (std::vector<uint32_t>{kErrorDeleteFailed}));
  EXPECT_TRUE(podcastOf(results().back()).get("Delete").boolValue());
  EXPECT_EQ(listed("News"), Texts{"1.mp3"});  // the index is not written any more
}

TEST_F(PodcastDelete, SaysWhenTheIndexCannotBeWritten) {
  putThreeEpisodes();
  files.failAlways(FileCall::Replace, "News.xml", EIO);
  expectLine(surroundings, 3, kDeleteMethod, "Podcast XML Data send is failed.",
             [&] { EXPECT_FALSE(remove({channel("News", {onDevice("1.mp3")})})); });
  EXPECT_EQ(listed("News").size(), 3u);
}

TEST_F(PodcastDelete, WritesTheIndexOfWhatIsLeftWhenCancelledBetweenEpisodes) {
  putThreeEpisodes();
  once(kMediaResultNotification, [&] { service->cancelFileAction(7); });
  EXPECT_TRUE(
      remove({channel("News", {onDevice("1.mp3"), onDevice("2.mp3")}), whole("Arts", {onDevice("4.mp3")})}));
  EXPECT_EQ(listed("News"), (Texts{"2.mp3", "3.mp3"}));
  EXPECT_EQ(linesOf(surroundings, kDeleteMethod),
            (Lines{"Cancel Podcast Processing.", "Cancel Podcast Processing."}));
  EXPECT_FALSE(service->isCancelServiceId(7));
  EXPECT_EQ(newOutcomes().back(), "2 not reached $/internal/Podcast/News/4.mp3 0x10000008");
}

TEST_F(PodcastDelete, StopsWhenTheServiceIsReleased) {
  putThreeEpisodes();
  once(kMediaResultNotification, [&] { service->disconnectDevice("location-1"); });
  EXPECT_FALSE(
      remove({channel("News", {onDevice("1.mp3"), onDevice("2.mp3")}), whole("News", {onDevice("3.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/2.mp3", "News/3.mp3", "News/News.xml"}));
  EXPECT_EQ(listed("News").size(), 3u);
  EXPECT_EQ(linesOf(surroundings, kDeleteMethod),
            (Lines{"Device Disconnected - location-1", "Podcast XML Data send is failed.",
                   "Device Disconnected - location-1"}));
}

TEST_F(PodcastDelete, DoesNotRemoveTheFolderOnceTheServiceIsReleased) {
  copy({channel("News", {episode("1.mp3")})});
  told = items.outcomes().size();
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Remove && path.ends_with("1.mp3")) service->disconnectDevice("location-1");
    return 0;
  });
  EXPECT_FALSE(remove({channel("News", {onDevice("1.mp3")})}));
  EXPECT_EQ(treeOf(podcasts), (Texts{"News/", "News/News.xml"}));
  EXPECT_EQ(newOutcomes(), Texts{"0 done $/internal/Podcast/News/1.mp3 0x00000000"});
}

}  // namespace
}  // namespace umsservice::testing
