#include "TestDevice.h"
#include "umsservice/PodcastXMLConverter.h"

namespace umsservice::testing {
namespace {

/// The converter as hosts have it: documents are bytes.
class PodcastXMLDoor : public ::testing::Test {
 protected:
  TestSurroundings surroundings;
  const umsservice::PodcastXMLConverter converter{surroundings.environment};
  const Dictionary first{{"Url", "http://x/1"}, {"Length", 1234}};
  const Dictionary second{{"Url", "http://x/2"}};
  const std::string news = *converter.makePodcastXMLFromPodcastDictionary(
      Dictionary{{"Title", "News"}, {"children", Array{first}}}, true);

  std::vector<std::string> urls(const MaybeString& document) const {
    std::vector<std::string> urls;
    MaybeDictionary podcast = converter.makePodcastDictionaryFromXML(document.value_or(""));
    if (!podcast) return {"(no index)"};
    for (const Value& episode : podcast->get("children").array()->snapshot())
      urls.push_back(episode.dictionary()->string("Url").value_or("(none)"));
    return urls;
  }
};

using Urls = std::vector<std::string>;

TEST_F(PodcastXMLDoor, WritesAndReadsAChannelWithItsEpisodesOrWithout) {
  EXPECT_EQ(urls(news), Urls{"http://x/1"});
  EXPECT_EQ(converter.makePodcastDictionaryFromXML(news)->string("Title"), "News");
  MaybeString bare = converter.makePodcastXMLFromPodcastDictionary(
      Dictionary{{"Title", "News"}, {"children", Array{first}}}, false);
  EXPECT_EQ(urls(bare), Urls{});
  EXPECT_EQ(urls(converter.makePodcastXMLFromPodcastDictionary(std::nullopt, true)), Urls{});
}

TEST_F(PodcastXMLDoor, AppendsAnEpisodeAndSaysWhenItIsThereAlready) {
  EXPECT_EQ(urls(converter.addPodcastEpisode(second, news)), (Urls{"http://x/1", "http://x/2"}));
  EXPECT_EQ(surroundings.log->lines(), Urls{});
  EXPECT_FALSE(converter.addPodcastEpisode(first, news));
  EXPECT_EQ(surroundings.log->lines(), Urls{"same episode: http://x/1"});
}

TEST_F(PodcastXMLDoor, CountsAnEpisodesPositionAmongAllElementsOfTheRoot) {
  EXPECT_EQ(converter.positionOfPodcastEpisode(first, news), 13u);
  EXPECT_EQ(converter.positionOfPodcastEpisode(second, *converter.addPodcastEpisode(second, news)), 14u);
  EXPECT_FALSE(converter.positionOfPodcastEpisode(second, news));
  EXPECT_FALSE(converter.positionOfPodcastEpisode(Dictionary(), news));
}

TEST_F(PodcastXMLDoor, GivesNothingForBytesThatAreNoDocument) {
  for (const char* bytes : {"", "<channel>", "no index"}) {
    EXPECT_FALSE(converter.makePodcastDictionaryFromXML(bytes));
    EXPECT_FALSE(converter.addPodcastEpisode(second, bytes));
    EXPECT_FALSE(converter.positionOfPodcastEpisode(first, bytes));
  }
  EXPECT_FALSE(converter.makePodcastXMLFromPodcastDictionary(
      Dictionary{{"Title", std::string(size_t{33} << 20, 'x')}}, true));
}

}  // namespace
}  // namespace umsservice::testing
