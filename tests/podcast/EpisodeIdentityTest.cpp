#include "ChannelIndex.h"
#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

/// Episodes are told apart by their "Url": an empty one is one like any other, a missing one is none.
class EpisodeIdentity : public PodcastTest {
 protected:
  Dictionary named(const std::string& name, const Value& url) const {
    Dictionary named = episode(name);
    named.set("Url", url);
    return named;
  }
  Dictionary onDevice(const std::string& name, const Value& url) const {
    return Dictionary{{"Url", url}, {key::kFilePath, podcasts + "/News/" + name}};
  }
  Texts linesOfSameEpisodes() const {
    Texts lines = log.lines();
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("same episode: "); });
    return lines;
  }
  Texts filesListed() { return fieldOf(indexOf("News"), "FilePath"); }
};

TEST_F(EpisodeIdentity, OfAnEmptyUrlIsTheSameInAnIndexAndOfNoneIsNobodys) {
  const Log writer{surroundings.environment};
  const QDUIPodcastXMLConverter converter{writer};
  umsservice::ChannelIndex index(converter, channel("News", {}), true, "/P/News",
                                 umsservice::ChannelIndex::Origin::DeviceFile);
  auto titled = [](const char* title, const Value& url) {
    return Dictionary{{"Title", title}, {"Url", url}};
  };
  auto titles = [&] { return fieldOf(index.dictionary(), "Title"); };
  auto written = [&] {
    return fieldOf(converter.makePodcastDictionaryFromXML(*index.document().bytes()), "Title");
  };
  index.add(titled("missing", Value()));
  index.add(titled("null", Null()));
  EXPECT_EQ(linesOfSameEpisodes(), Texts{});
  index.add(titled("empty", ""));
  EXPECT_EQ(linesOfSameEpisodes(), Texts{"same episode: "}) << "a missing Url is written as an empty element";
  EXPECT_EQ(titles(), (Texts{"missing", "null"}));
  for (const Value& url : {Value(), Value(Null())}) index.remove(titled("missing", url));
  EXPECT_EQ(titles(), (Texts{"missing", "null"}));
  index.remove(titled("any", ""));
  EXPECT_EQ(titles(), Texts{"null"});
  EXPECT_EQ(written(), Texts{"null"});
  index.remove(titled("any", ""));
  index.remove(titled("any", ""));
  index.add(titled("empty", ""));
  EXPECT_EQ(titles(), Texts{"empty"});
  EXPECT_EQ(written(), Texts{"empty"});
}

TEST_F(EpisodeIdentity, OfAnEmptyUrlIsTheSameInACopyAndInADelete) {
  EXPECT_TRUE(copy({channel("News", {named("1.mp3", ""), named("2.mp3", ""), episode("3.mp3")})}));
  EXPECT_EQ(linesOfSameEpisodes(), Texts{"same episode: "});
  EXPECT_EQ(treeOf(podcasts + "/News"), (Texts{"1.mp3", "2.mp3", "3.mp3", "News.xml"}));
  EXPECT_EQ(filesListed(), (Texts{"1.mp3", "3.mp3"}));
  notifications.clear();
  EXPECT_TRUE(service->doDeletePodcastContents(request({channel("News", {onDevice("1.mp3", "")})})));
  EXPECT_EQ(treeOf(podcasts + "/News"), (Texts{"2.mp3", "3.mp3", "News.xml"}));
  EXPECT_EQ(filesListed(), Texts{"3.mp3"});
  EXPECT_EQ(fieldOf(podcastOf(results().back()), "FilePath"), Texts{podcasts + "/News/3.mp3"});
}

TEST_F(EpisodeIdentity, OfAMissingUrlIsNobodysInACopyAndInADelete) {
  EXPECT_TRUE(copy({channel("News", {named("1.mp3", Value()), named("2.mp3", Null())})}));
  EXPECT_EQ(linesOfSameEpisodes(), Texts{});
  EXPECT_EQ(filesListed(), (Texts{"1.mp3", "2.mp3"}));
  for (const Value& url : {Value(), Value(Null())}) {
    EXPECT_TRUE(service->doDeletePodcastContents(
        request({channel("News", {onDevice(url.isNil() ? "1.mp3" : "2.mp3", url)})})));
  }
  EXPECT_EQ(treeOf(podcasts + "/News"), Texts{"News.xml"});
  EXPECT_EQ(filesListed(), (Texts{"1.mp3", "2.mp3"})) << "nothing says which of them has gone";
}

}  // namespace
}  // namespace umsservice::testing
