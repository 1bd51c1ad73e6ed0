#include "HostTest.h"
#include "podcast/BoundedXml.h"
#include "podcast/Enclosures.h"
#include "podcast/Feed.h"
#include "podcast/JsonValue.h"
#include "podcast/ShownFields.h"

namespace umsservice::testing {
namespace {

using namespace umsctl;
using Lines = std::vector<std::string>;

std::string feedOf(const std::string& channel) {
  return "<rss version=\"2.0\" xmlns:itunes=\"http://www.itunes.com/dtds/podcast-1.0.dtd\"><channel>" +
         channel + "</channel></rss>";
}
std::string item(const std::string& fields) {
  return "<item><enclosure url=\"http://h/1.mp3\"/>" + fields + "</item>";
}
Dictionary channelOf(const std::string& bytes) {
  Feed feed = readFeed(bytes);
  EXPECT_EQ(feed.error, "");
  return feed.podcast.value_or(Dictionary());
}
Dictionary episodeOf(const Dictionary& channel, size_t index = 0) {
  return channel.get("children").array().value_or(Array()).at(index).dictionary().value_or(Dictionary());
}
Lines fieldsOf(const Dictionary& dictionary) {
  Lines lines;
  for (const std::string& name : dictionary.keys()) {
    if (name != "children") lines.push_back(name + ": " + dictionary.string(name).value_or("(none)"));
  }
  return lines;
}

TEST(PodcastFeed, GivesEveryFieldOfTheChannelThatItHas) {
  Dictionary channel = channelOf(bytesOf(TEST_DATA "/podcast/harbour-notes.rss"));
  EXPECT_EQ(
      fieldsOf(channel),
      (Lines{"Author: Demo Ensemble", "Category: Leisure", "ChannelURL: https://harbour.example/notes.rss",
             "Description: What the tide brings in & takes away.", "Guid: 0f3d2a10-harbour",
             "ImageURL: https://harbour.example/cover.jpg", "LastBuildDate: Fri, 12 Mar 2021 08:00:00 +0000",
             "LastUpdateDate: Thu, 11 Mar 2021 06:00:00 +0000", "Link: https://harbour.example/notes",
             "SubTitle: Three minutes by the water", "Summary: Short talks, <b>recorded</b> on the quay.",
             "Title: Harbour Notes", "WebMaster: web@harbour.example (Ada Quay)"}));
}

TEST(PodcastFeed, GivesEveryFieldOfAnEpisodeAndLeavesOutItemsWithoutAFile) {
  Dictionary channel = channelOf(bytesOf(TEST_DATA "/podcast/harbour-notes.rss"));
  ASSERT_EQ(channel.get("children").array()->count(), 2u);
  EXPECT_EQ(fieldsOf(episodeOf(channel)),
            (Lines{"Author: Ada Quay", "Bitrate: 128", "Description: Who takes the first boat, and why.",
                   "DetailMediaType: audio", "Duration: 3:07", "Guid: harbour-1", "Length: 1",
                   "Link: https://harbour.example/notes/1", "PublishDate: Thu, 04 Mar 2021 06:00:00 +0100",
                   "Rating: no", "SamplingRate: 44.1", "SubTitle: First boat out",
                   "Summary: An hour before sunrise.", "Title: The Morning Ferry", "Type: audio/mpeg",
                   "Url: https://cdn.harbour.example/casts/morning-tone.mp3?source=feed"}));
}

TEST(PodcastFeed, PrefersThePlaceThatIsMeantForAField) {
  Dictionary channel = channelOf(
      feedOf("<managingEditor>editor</managingEditor><itunes:author>author</itunes:author>"
             "<itunes:category text=\"second\"/><image><url>small</url><title>not this</title></image>"
             "<title>first</title><title>later</title>" +
             item("<itunes:title>tagged</itunes:title><title>plain</title>"
                  "<enclosure url=\"http://h/other.mp3\" type=\"x\"/>")));
  EXPECT_EQ(fieldsOf(channel),
            (Lines{"Author: author", "Category: second", "ImageURL: small", "Title: first"}));
  EXPECT_EQ(fieldsOf(episodeOf(channel)), (Lines{"Title: plain", "Url: http://h/1.mp3"}));
}

TEST(PodcastFeed, KnowsTheUsualPrefixesWhateverTheirAddress) {
  EXPECT_EQ(channelOf("<rss xmlns:i=\"HTTP://WWW.iTunes.com/DTDs/Podcast-1.0.dtd\"><channel>"
                      "<i:subtitle>a</i:subtitle></channel></rss>")
                .string("SubTitle"),
            "a");
  EXPECT_EQ(
      channelOf("<rss><channel><itunes:subtitle>b</itunes:subtitle></channel></rss>").string("SubTitle"),
      "b");
}

TEST(PodcastFeed, ReadsOtherEncodings) {
  EXPECT_EQ(
      channelOf("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + feedOf("<title>Abendt\xf6ne</title>"))
          .string("Title"),
      "Abendtöne");
  EXPECT_EQ(
      channelOf("<?xml version=\"1.0\" encoding=\"windows-1252\"?>" + feedOf("<title>\x93quay\x94</title>"))
          .string("Title"),
      "“quay”");
  std::string utf16 = "\xff\xfe";
  for (char c : feedOf("<title>wide</title>")) utf16 += std::string{c, '\0'};
  EXPECT_EQ(channelOf(utf16).string("Title"), "wide");
}

TEST(PodcastFeed, TakesTextsAsTheyAreButForBlanksAroundThem) {
  Dictionary channel = channelOf(feedOf(
      "<title>\n  A <b>bold</b>\ttitle &#x263a; </title><description><![CDATA[<p>&amp;</p>]]></description>"
      "<webMaster>  </webMaster>"));
  EXPECT_EQ(fieldsOf(channel), (Lines{"Description: <p>&amp;</p>", "Title: A bold\ttitle ☺"}));
}

TEST(PodcastFeed, SaysWhatIsNoFeed) {
  EXPECT_EQ(readFeed("").error.substr(0, 17), "it is no feed: li");
  EXPECT_EQ(readFeed("<html><body/></html>").error, "it is no RSS feed: its root element is html");
  EXPECT_EQ(readFeed("<feed xmlns=\"http://www.w3.org/2005/Atom\"/>").error,
            "it is no RSS feed: its root element is feed");
  EXPECT_EQ(readFeed("<rss/>").error, "it is no feed: it has no channel");
  EXPECT_EQ(readFeed("<rss><channel><title>cut off").podcast, std::nullopt);
  EXPECT_EQ(readFeed("plain text").podcast, std::nullopt);
  EXPECT_EQ(readFeed(feedOf("<title>&nbsp;</title>")).podcast, std::nullopt);
}

TEST(PodcastFeed, RefusesADocumentTypeAndWithItEveryEntity) {
  const std::string secret = Sandbox().file("secret.txt", "secret");
  for (const std::string& type :
       {std::string("<!DOCTYPE rss>"), std::string("<!DOCTYPE rss SYSTEM \"http://h/rss.dtd\">"),
        "<!DOCTYPE rss [<!ENTITY e SYSTEM \"file://" + secret + "\">]>",
        std::string("<!DOCTYPE rss [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;\">]>")}) {
    Feed feed = readFeed(type + feedOf("<title>&e;&b;</title>"));
    EXPECT_FALSE(feed.podcast) << type;
    EXPECT_EQ(feed.error, "it is no feed: it declares a document type, which no feed needs") << type;
  }
}

/// Quadratic work on any of these would take longer than a test may run.
TEST(PodcastFeed, IsReadInBoundedTimeHoweverHostile) {
  std::string attributes, spaces, deep;
  for (int i = 0; i < 300'000; ++i) attributes += " a" + std::to_string(i) + "=''";
  for (int i = 0; i < 1000; ++i) spaces += "<x xmlns:n" + std::to_string(i) + "='u'/>";
  for (int i = 0; i < 65; ++i) deep += "<x>";
  EXPECT_EQ(readFeed("<rss" + attributes + "/>").error, "it is no feed: a tag in it is too long");
  EXPECT_EQ(readFeed("<rss>" + spaces + "</rss>").error, "it is no feed: it has too many namespaces");
  EXPECT_EQ(readFeed(deep).error, "it is no feed: its elements are nested too deeply");
  EXPECT_EQ(readFeed(std::string(kLongestXml + 1, ' ')).error, "it is no feed: it is longer than 32 MiB");
  std::string many;
  for (int i = 0; i < 1'100'000; ++i) many += "<x/>";
  EXPECT_EQ(readFeed("<rss>" + many + "</rss>").error, "it is no feed: it has too many elements");
}

TEST(PodcastFeed, EpisodesAreCalledByTheLastPartOfTheirAddress) {
  EXPECT_EQ(downloadNames("https://h/casts/1.mp3?id=2#t"), Lines{"1.mp3"});
  EXPECT_EQ(downloadNames("https://h/a%20b.mp3"), (Lines{"a b.mp3", "a%20b.mp3"}));
  EXPECT_EQ(downloadNames("1.mp3"), Lines{"1.mp3"});
  EXPECT_EQ(downloadNames("https://h/100%.mp3"), Lines{"100%.mp3"});
}

TEST(PodcastFeed, AnAddressNeverLeadsOutOfTheFolderOfTheDownloads) {
  for (const char* url : {"", "https://h", "https://h/", "https://h/..", "https://h/."})
    EXPECT_EQ(downloadNames(url), Lines{}) << url;
  EXPECT_EQ(downloadNames("https://h/%2e%2e"), Lines{"%2e%2e"});
  EXPECT_EQ(downloadNames("https://h/..%2f..%2fetc%2fpasswd"), Lines{"..%2f..%2fetc%2fpasswd"});
  EXPECT_EQ(downloadNames("https://h/a%00b.mp3"), Lines{"a%00b.mp3"});
}

TEST(PodcastJson, GivesTheValuesAsTheyAreWritten) {
  JsonValue json = readJson(R"({"Title": "T \u00e9", "children": [{"Length": -5, "Rating": null, "x": 1.5,
                                "flag": true, "big": 18446744073709551615}]})");
  ASSERT_EQ(json.error, "");
  Dictionary channel = *json.value.dictionary();
  EXPECT_EQ(channel.string("Title"), "T é");
  Dictionary episode = episodeOf(channel);
  EXPECT_EQ(episode.get("Length").intValue(), -5);
  EXPECT_EQ(episode.get("Rating").kind(), Value::Kind::Null);
  EXPECT_EQ(episode.get("x").doubleValue(), 1.5);
  EXPECT_TRUE(episode.get("flag").boolValue());
  EXPECT_EQ(episode.get("big").unsignedLongLongValue(), 18446744073709551615u);
}

TEST(PodcastJson, SaysWhatIsNone) {
  EXPECT_EQ(readJson("{\"a\": }").error, "it is no JSON: what stands at byte 7 is wrong");
  EXPECT_NE(readJson("").error, "");
  EXPECT_NE(readJson("{\"a\": \"\xff\"}").error, "");
  EXPECT_EQ(readJson(std::string(65, '[')).error, "it is nested too deeply");
  EXPECT_EQ(readJson(std::string(10'000'000, '[')).error, "it is nested too deeply");
}

TEST(PodcastListing, ShowsDatesAndDurationsHoweverFeedsWriteThem) {
  EXPECT_EQ(shownDate("Thu, 04 Mar 2021 06:00:00 +0100"), "2021-03-04");
  EXPECT_EQ(shownDate("4 March 21"), "2021-03-04");
  EXPECT_EQ(shownDate("2021-03-04T06:00:00Z"), "2021-03-04");
  for (const char* text :
       {"", "yesterday", "Mar", "99 Mar 2021", "2021-13-01", "x Mar 2021", "\x1b[2J Mar 1"})
    EXPECT_EQ(shownDate(text), "-") << text;
  EXPECT_EQ(shownDuration("3723"), "1:02:03");
  EXPECT_EQ(shownDuration("31:05"), "31:05");
  EXPECT_EQ(shownDuration("01:02:03"), "1:02:03");
  for (const char* text : {"", "-1", "1:2:3:4", "abc", ":", "99999999999999999999"})
    EXPECT_EQ(shownDuration(text), "-") << text;
}

}  // namespace
}  // namespace umsservice::testing
