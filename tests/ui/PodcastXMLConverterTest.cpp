#include "LogExpectations.h"
#include "QDUIPodcastXMLConverter.h"

namespace umsservice::testing {
namespace {

class PodcastXMLConverter : public ::testing::Test {
 protected:
  TestSurroundings surroundings;
  LogRecorder& log = *surroundings.log;
  const Log writer{surroundings.environment};
  const QDUIPodcastXMLConverter converter{writer};
  const Dictionary first{{"Title", "One"}, {"Url", "http://x/1"}, {"FilePath", "1.mp3"}, {"Length", 1234}};
  const Dictionary second{{"Title", "Two"}, {"Url", "http://x/2"}, {"FilePath", "2.mp3"}};
  const Dictionary news{{"Title", "News"}, {"Link", "http://x"}, {"children", Array{first, second}}};

  XMLDocument documentOf(const Dictionary& podcast, bool includeEpisode = true) const {
    return converter.makePodcastXMLFromPodcastDictionary(podcast, includeEpisode);
  }
  std::string bytesOf(const Dictionary& podcast, bool includeEpisode = true) const {
    return documentOf(podcast, includeEpisode).bytes().value();
  }
  static std::vector<std::string> names(const XMLElement& parent) {
    std::vector<std::string> names;
    for (auto child = parent.firstChild(); child; child = child->next()) names.push_back(child->name());
    return names;
  }
  static std::vector<std::string> urls(const Dictionary& podcast) {
    std::vector<std::string> urls;
    for (const Value& episode : podcast.get("children").array()->snapshot())
      urls.push_back(episode.dictionary()->string("Url").value_or("(none)"));
    return urls;
  }
};

using Names = std::vector<std::string>;

TEST_F(PodcastXMLConverter, WritesEveryFieldInItsOrder) {
  XMLDocument document = documentOf(news);
  Names channel = {"ChannelURL", "Title",    "SubTitle", "Description",   "Author",
                   "Summary",    "Link",     "Guid",     "LastBuildDate", "LastUpdateDate",
                   "WebMaster",  "ImageURL", "Category"};
  Names all = channel;
  all.insert(all.end(), 2, "Post");
  EXPECT_EQ(document.root().name(), "channel");
  EXPECT_EQ(QDUIPodcastXMLConverter::channelFieldNames(), channel);
  EXPECT_EQ(names(document.root()), all);
  Names post = {"Title",      "SubTitle",    "Description",     "Author",      "Summary", "Link",
                "Guid",       "PublishDate", "Rating",          "Duration",    "Url",     "Length",
                "Type",       "FilePath",    "DetailMediaType", "DRMProperty", "Bitrate", "SamplingRate",
                "AudioCodec", "VideoCodec",  "DownloadDate"};
  EXPECT_EQ(QDUIPodcastXMLConverter::postFieldNames(), post);
  EXPECT_EQ(names(*document.root().firstChild("Post")), post);
}

TEST_F(PodcastXMLConverter, WritesTheWholeFileLikeThis) {
  EXPECT_EQ(bytesOf(Dictionary{{"Title", "A & B"}}),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<channel>\n"
            "  <ChannelURL></ChannelURL>\n"
            "  <Title>A &amp; B</Title>\n"
            "  <SubTitle></SubTitle>\n"
            "  <Description></Description>\n"
            "  <Author></Author>\n"
            "  <Summary></Summary>\n"
            "  <Link></Link>\n"
            "  <Guid></Guid>\n"
            "  <LastBuildDate></LastBuildDate>\n"
            "  <LastUpdateDate></LastUpdateDate>\n"
            "  <WebMaster></WebMaster>\n"
            "  <ImageURL></ImageURL>\n"
            "  <Category></Category>\n"
            "</channel>\n");
}

TEST_F(PodcastXMLConverter, WritesAllFieldsOfNoChannelEmpty) {
  XMLDocument document = converter.makePodcastXMLFromPodcastDictionary(std::nullopt, true);
  EXPECT_EQ(names(document.root()), QDUIPodcastXMLConverter::channelFieldNames());
}

TEST_F(PodcastXMLConverter, LeavesEpisodesOutWhenTheyAreNotWanted) {
  EXPECT_EQ(names(documentOf(news, false).root()), QDUIPodcastXMLConverter::channelFieldNames());
}

TEST_F(PodcastXMLConverter, PassesOverChildrenThatAreNoEpisodes) {
  Dictionary podcast = news.mutableCopy();
  podcast.set("children", Array{Null(), first, "text", 3, Value()});
  auto read = converter.makePodcastDictionaryFromXML(bytesOf(podcast));
  EXPECT_EQ(urls(*read), Names{"http://x/1"});
  podcast.set("children", "no list");
  EXPECT_EQ(names(documentOf(podcast).root()), QDUIPodcastXMLConverter::channelFieldNames());
}

TEST_F(PodcastXMLConverter, ReadsNumbersBackAsTextAndMissingValuesAsNull) {
  auto read = converter.makePodcastDictionaryFromXML(bytesOf(news));
  ASSERT_TRUE(read);
  auto episodes = read->get("children").array()->snapshot();
  ASSERT_EQ(episodes.size(), 2u);
  EXPECT_EQ(episodes[0].dictionary()->get("Length").kind(), Value::Kind::String);
  EXPECT_EQ(episodes[0].dictionary()->string("Length"), "1234");
  EXPECT_EQ(episodes[1].dictionary()->get("Length").kind(), Value::Kind::Null);
  EXPECT_EQ(episodes[1].dictionary()->count(), 21u);
  EXPECT_EQ(read->string("Title"), "News");
  EXPECT_EQ(read->get("Author").kind(), Value::Kind::Null);
}

TEST_F(PodcastXMLConverter, WritesANullObjectLikeAMissingValue) {
  Dictionary withNulls = news.mutableCopy();
  withNulls.set("Author", Null());
  Dictionary episode = second.mutableCopy();
  episode.set("Length", Null());
  withNulls.set("children", Array{first, episode});
  EXPECT_EQ(bytesOf(withNulls), bytesOf(news));
}

TEST_F(PodcastXMLConverter, WrittenReadAndWrittenAgainIsTheSameByteForByte) {
  Dictionary odd = news.mutableCopy();
  odd.set("Description", " <b>&amp;</b>\r\n\ttail \x01");
  odd.set("Summary", "   ");
  std::string bytes = bytesOf(odd);
  EXPECT_EQ(bytesOf(*converter.makePodcastDictionaryFromXML(bytes)), bytes);
}

TEST_F(PodcastXMLConverter, TakesOverEveryElementUnderItsNameTheLaterOneOfTwo) {
  auto read = converter.makePodcastDictionaryFromXML(
      "<channel><Extra>1</Extra><Title>a</Title><Post><Url>u</Url><Mood>fine</Mood></Post>"
      "<Title>b</Title><x:y>2</x:y></channel>");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->keys(), (Names{"Extra", "Title", "children", "x:y"}));
  EXPECT_EQ(read->string("Title"), "b");
  EXPECT_EQ(read->get("children").array()->at(0).dictionary()->string("Mood"), "fine");
}

TEST_F(PodcastXMLConverter, AnElementNamedChildrenDoesNotCostTheEpisodes) {
  auto read = converter.makePodcastDictionaryFromXML(
      "<channel><Post><Url>u</Url></Post><children>gone</children></channel>");
  EXPECT_EQ(urls(*read), Names{"u"});
}

TEST_F(PodcastXMLConverter, SaysWhyBytesAreNoIndex) {
  constexpr auto kMethod = "-[QDUIPodcastXMLConverter makePodcastDictionaryFromXML:]";
  expectLine(surroundings, 3, kMethod, "failed to load xml:line 1: Start tag expected, '<' not found",
             [&] { EXPECT_FALSE(converter.makePodcastDictionaryFromXML("no index")); });
  expectLine(surroundings, 3, kMethod, "Invalid podcast xml:rss",
             [&] { EXPECT_FALSE(converter.makePodcastDictionaryFromXML("<rss><channel/></rss>")); });
  EXPECT_FALSE(QDUIPodcastXMLConverter::isIndex("<rss/>"));
  EXPECT_FALSE(QDUIPodcastXMLConverter::isIndex("no index"));
  EXPECT_TRUE(QDUIPodcastXMLConverter::isIndex("<channel/>"));
}

TEST_F(PodcastXMLConverter, LogsUnderItsOwnMethodName) {
  converter.makePodcastDictionaryFromXML("<rss/>");
  EXPECT_EQ(log.messages(),
            Names{"-[QDUIPodcastXMLConverter makePodcastDictionaryFromXML:] Invalid podcast xml:rss"});
}

TEST_F(PodcastXMLConverter, AppendsANewEpisodeAsTheLastChild) {
  XMLDocument document = documentOf(news);
  converter.addPodcastEpisode(Dictionary{{"Url", "http://x/3"}}, document);
  EXPECT_EQ(urls(*converter.makePodcastDictionaryFromXML(document)),
            (Names{"http://x/1", "http://x/2", "http://x/3"}));
}

TEST_F(PodcastXMLConverter, LeavesTheDocumentAsItIsForAnEpisodeThatIsThere) {
  XMLDocument document = documentOf(news);
  surroundings.level->level = 0;
  converter.addPodcastEpisode(Dictionary{{"Url", "http://x/1"}, {"Title", "Other"}}, document);
  EXPECT_EQ(document.bytes(), bytesOf(news));
  EXPECT_EQ(log.lines(), Names{"same episode: http://x/1"});
}

TEST_F(PodcastXMLConverter, TellsEpisodesApartByTheExactUrl) {
  XMLDocument document = documentOf(news);
  converter.addPodcastEpisode(Dictionary{{"Url", "HTTP://x/1"}}, document);
  converter.addPodcastEpisode(Dictionary{{"Title", "no Url"}}, document);
  converter.addPodcastEpisode(Dictionary{{"Url", Null()}}, document);
  EXPECT_EQ(urls(*converter.makePodcastDictionaryFromXML(document)),
            (Names{"http://x/1", "http://x/2", "HTTP://x/1", "(none)", "(none)"}));
}

TEST_F(PodcastXMLConverter, TellsEpisodesApartByTheFirstOfSeveralUrls) {
  XMLDocument document = documentOf(news);
  document.root().firstChild("Post")->append("Url", "http://x/other");
  converter.removePodcastEpisode(Dictionary{{"Url", "http://x/other"}}, document);
  EXPECT_EQ(urls(*converter.makePodcastDictionaryFromXML(document)).size(), 2u);
  converter.addPodcastEpisode(Dictionary{{"Url", "http://x/other"}}, document);
  EXPECT_EQ(urls(*converter.makePodcastDictionaryFromXML(document)).size(), 3u);
  converter.removePodcastEpisode(Dictionary{{"Url", "http://x/1"}}, document);
  EXPECT_EQ(urls(*converter.makePodcastDictionaryFromXML(document)), (Names{"http://x/2", "http://x/other"}));
}

TEST_F(PodcastXMLConverter, RemovesTheRightEpisodeBehindTheFieldsOfTheChannel) {
  XMLDocument document = documentOf(news);
  converter.removePodcastEpisode(Dictionary{{"Url", "http://x/1"}}, document);
  Dictionary rest = news.mutableCopy();
  rest.set("children", Array{second});
  EXPECT_EQ(document.bytes(), bytesOf(rest));
}

TEST_F(PodcastXMLConverter, RemovesOnlyTheFirstOfTwoAndNothingForAnUnknownUrl) {
  Dictionary twice = news.mutableCopy();
  twice.set("children", Array{first, second, first});
  XMLDocument document = documentOf(twice);
  for (const char* url : {"http://x/9", "http://x/1"})
    converter.removePodcastEpisode(Dictionary{{"Url", url}}, document);
  converter.removePodcastEpisode(Dictionary(), document);
  EXPECT_EQ(urls(*converter.makePodcastDictionaryFromXML(document)), (Names{"http://x/2", "http://x/1"}));
}

TEST_F(PodcastXMLConverter, TakesEpisodesWithAnEmptyUrlForOneAndThoseWithoutAUrlForNone) {
  XMLDocument document = documentOf(news);
  auto titles = [&] {
    Names found;
    auto podcast = converter.makePodcastDictionaryFromXML(document);
    for (const Value& episode : podcast->get("children").array()->snapshot())
      found.push_back(episode.dictionary()->string("Title").value_or("(none)"));
    return found;
  };
  document.root().append("Post").append("Title", "no element");
  surroundings.level->level = 0;
  converter.addPodcastEpisode(Dictionary{{"Url", ""}, {"Title", "empty"}}, document);
  converter.addPodcastEpisode(Dictionary{{"Title", "missing"}}, document);
  converter.addPodcastEpisode(Dictionary{{"Url", Null()}, {"Title", "null"}}, document);
  EXPECT_EQ(log.lines(), Names{});
  const std::string bytes = *document.bytes();
  converter.addPodcastEpisode(Dictionary{{"Url", ""}, {"Title", "again"}}, document);
  converter.removePodcastEpisode(Dictionary{{"Title", "missing"}}, document);
  converter.removePodcastEpisode(Dictionary{{"Url", Null()}}, document);
  EXPECT_EQ(log.lines(), Names{"same episode: "});
  EXPECT_EQ(document.bytes(), bytes);
  converter.removePodcastEpisode(Dictionary{{"Url", ""}}, document);
  EXPECT_EQ(titles(), (Names{"One", "Two", "no element", "missing", "null"}));
  converter.removePodcastEpisode(Dictionary{{"Url", ""}}, document);
  EXPECT_EQ(titles(), (Names{"One", "Two", "no element", "null"}));
}

}  // namespace
}  // namespace umsservice::testing
