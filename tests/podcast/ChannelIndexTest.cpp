#include "ChannelIndex.h"
#include "PodcastIndexFiles.h"
#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

/// Each step of an index that is kept step by step against the long way: write, read back, widen.
class ChannelIndex : public ::testing::Test {
 protected:
  TestSurroundings surroundings;
  const Log log{surroundings.environment};
  const QDUIPodcastXMLConverter converter{log};
  const std::string folder = "/P/News";

  static Dictionary episode(const Value& url) {
    return Dictionary{
        {"Title", "Title of " + url.description()}, {"Url", url}, {"FilePath", "file.mp3"}, {"Length", 5}};
  }
  umsservice::ChannelIndex indexOf(const std::vector<Value>& episodes) const {
    Dictionary podcast{{"Title", "News\x01"}, {"Link", Null()}, {"children", Array(episodes)}};
    return {converter, podcast, true, folder, umsservice::ChannelIndex::Origin::DeviceFile};
  }
  void expectSameAsTheLongWay(const umsservice::ChannelIndex& index) const {
    auto read = converter.makePodcastDictionaryFromXML(index.document().bytes().value());
    ASSERT_TRUE(read);
    umsservice::PodcastIndexFiles::makeEpisodeFullPath(*read, folder);
    EXPECT_TRUE(index.dictionary().isEqualToDictionary(*read))
        << index.dictionary().mutableCopy().get("children").description()
        << read->get("children").description();
    EXPECT_EQ(index.episodeCount(), read->get("children").array()->count());
  }
};

TEST_F(ChannelIndex, IsAtEveryStepWhatWouldBeReadBack) {
  auto index = indexOf({episode("u1"), episode("u2"), episode("u1"), episode(Null())});
  expectSameAsTheLongWay(index);
  for (const Value& url : {Value("u3"), Value("u1"), Value(7), Value(),
                           Value("ill\x02"
                                 "egal"),
                           Value(" a\r\n ")}) {
    index.add(episode(url));
    expectSameAsTheLongWay(index);
  }
  for (const char* url : {"u1", "u9", "u1", "u1", "7", "illegal", "u2"}) {
    index.remove(episode(url));
    expectSameAsTheLongWay(index);
  }
  EXPECT_EQ(index.episodeCount(), 4u);  // u3, the one with blanks, and the two without a Url
}

TEST_F(ChannelIndex, LeavesFullPathsAsTheyAreAndTheDocumentWithTheNamesGiven) {
  Dictionary full = episode("u1");
  full.set("FilePath", "/p/news/1.mp3");
  auto index = indexOf({full, episode("u2")});
  auto episodes = *index.dictionary().get("children").array();
  EXPECT_EQ(episodes.at(0).dictionary()->string("FilePath"), "/p/news/1.mp3");
  EXPECT_EQ(episodes.at(1).dictionary()->string("FilePath"), "/P/News/file.mp3");
  auto posts = *converter.makePodcastDictionaryFromXML(index.document())->get("children").array();
  EXPECT_EQ(posts.at(1).dictionary()->string("FilePath"), "file.mp3");
}

TEST_F(ChannelIndex, SaysSoWhenAnEpisodeIsThereAlready) {
  auto index = indexOf({episode("u1")});
  surroundings.level->level = 0;
  index.add(episode("u1"));
  EXPECT_EQ(surroundings.log->lines(), std::vector<std::string>{"same episode: u1"});
}

TEST_F(ChannelIndex, ADictionaryShowsNoLaterStep) {
  auto index = indexOf({episode("u1")});
  Dictionary before = index.dictionary();
  index.add(episode("u2"));
  index.remove(episode("u1"));
  EXPECT_EQ(before.get("children").array()->count(), 1u);
  EXPECT_EQ(before.get("children").array()->at(0).dictionary()->string("Url"), "u1");
}

/// What goes on at the same time as a copy: the host lists the same channel, on its own thread.
TEST_F(PodcastTest, AListingDuringACopyCostsNoEpisode) {
  std::vector<Value> episodes;
  Texts names;
  for (int i = 100; i < 160; ++i) {
    names.push_back(std::to_string(i) + ".mp3");
    episodes.emplace_back(episode(names.back()));
  }
  for (size_t half : {0u, 30u}) {
    auto first = episodes.begin() + static_cast<std::ptrdiff_t>(half);
    ASSERT_TRUE(service->copyContentsMacToDevice(
        7, Array{channel("News", std::vector<Value>(first, first + 30))}, kMediaPodcast, 0));
  }
  while (notifications.count(kUmsResultNotification) < 2) service->fileInformationList(0, kMediaPodcast, 0);
  EXPECT_EQ(listed("News"), names);
}

}  // namespace
}  // namespace umsservice::testing
