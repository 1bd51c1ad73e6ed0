/// The converter of podcast indexes: real documents of the platform on one side, dictionaries on the other.
#include "HostTest.h"
#include "StderrCapture.h"

namespace umsplugin::testing {
namespace {

class Converter : public HostTest {
 protected:
  ~Converter() override { [converter release]; }

  static NSMutableDictionary* episode(NSString* url) {
    return [NSMutableDictionary dictionaryWithObjectsAndKeys:url, @"Url", @"An Episode", @"Title",
                                                             [NSNumber numberWithInt:1234], @"Length", nil];
  }
  static NSDictionary* channel(NSArray* episodes) {
    return [NSDictionary dictionaryWithObjectsAndKeys:@"News & <More> ü", @"Title", @"Somebody", @"Author",
                                                      episodes, @"children", nil];
  }
  NSXMLDocument* document(NSArray* episodes) {
    return [converter makePodcastXMLFromPodcastDictionary:channel(episodes) includeEpisode:YES];
  }
  static NSData* bytes(NSXMLDocument* document) { return [document XMLDataWithOptions:NSXMLNodePrettyPrint]; }
  static std::vector<std::string> urls(NSXMLDocument* document) {
    NSMutableArray* found = [NSMutableArray array];
    NSEnumerator* posts = [[[document rootElement] elementsForName:@"Post"] objectEnumerator];
    while (NSXMLElement* post = [posts nextObject])
      [found addObject:[[[post elementsForName:@"Url"] lastObject] stringValue]];
    return texts(found);
  }

  QDUIPodcastXMLConverter* const converter = [[bundleClass(@"QDUIPodcastXMLConverter") alloc] init];
};

TEST_F(Converter, MakesDocumentsOfThePlatform) {
  NSXMLDocument* made = document([NSArray arrayWithObject:episode(@"u1")]);
  EXPECT_TRUE([made isKindOfClass:[NSXMLDocument class]]);
  EXPECT_EQ(text([[made rootElement] name]), "channel");
  EXPECT_EQ([[made rootElement] childCount], 14u);
  EXPECT_EQ(text([[[made rootElement] childAtIndex:0] name]), "ChannelURL");
  EXPECT_EQ(text([[[[made rootElement] elementsForName:@"Title"] lastObject] stringValue]),
            "News & <More> ü");
  NSXMLElement* post = [[[made rootElement] elementsForName:@"Post"] lastObject];
  EXPECT_EQ([post childCount], 21u);
  EXPECT_EQ(text([[[post elementsForName:@"Length"] lastObject] stringValue]), "1234");
  EXPECT_EQ([[[made XMLString] componentsSeparatedByString:@"encoding=\"utf-8\""] count], 2u);
}

TEST_F(Converter, LeavesEpisodesOutWhenTold) {
  NSXMLDocument* made =
      [converter makePodcastXMLFromPodcastDictionary:channel([NSArray arrayWithObject:episode(@"u1")])
                                      includeEpisode:NO];
  EXPECT_EQ([[made rootElement] childCount], 13u);
  EXPECT_EQ([[[converter makePodcastXMLFromPodcastDictionary:nil includeEpisode:YES] rootElement] childCount],
            13u);
}

TEST_F(Converter, DescribesValuesThatAreNoTexts) {
  NSDate* date = [NSDate dateWithTimeIntervalSince1970:0];
  NSMutableDictionary* odd = episode(@"u1");
  [odd setObject:date forKey:@"PublishDate"];
  [odd setObject:[NSNull null] forKey:@"Author"];
  NSXMLElement* post =
      [[[document([NSArray arrayWithObject:odd]) rootElement] elementsForName:@"Post"] lastObject];
  EXPECT_EQ(text([[[post elementsForName:@"PublishDate"] lastObject] stringValue]), text([date description]));
  EXPECT_EQ(text([[[post elementsForName:@"Author"] lastObject] stringValue]), "");
}

TEST_F(Converter, WritesValuesAsThePlatformDoes) {
  const unichar odd[] = {'a', 0xEF81, 'b'};
  const unichar control[] = {'a', 1, 'b'};
  NSDictionary* values = [NSDictionary
      dictionaryWithObjectsAndKeys:[NSNumber numberWithFloat:4.1f], @"Rating",
                                   [NSDecimalNumber decimalNumberWithString:@"12345678901234567890"],
                                   @"Length", [NSNumber numberWithBool:YES], @"DRMProperty",
                                   [NSNumber numberWithDouble:0.1], @"Bitrate",
                                   [NSArray arrayWithObjects:@"a b", @"c", nil], @"Author",
                                   [NSString stringWithCharacters:odd length:3], @"Summary",
                                   [NSString stringWithCharacters:control length:3], @"Link", @"a\r\nb\rc",
                                   @"Description", @"   ", @"SubTitle", nil];
  NSXMLElement* post =
      [[[document([NSArray arrayWithObject:values]) rootElement] elementsForName:@"Post"] lastObject];
  auto written = [&](NSString* name) { return text([[[post elementsForName:name] lastObject] stringValue]); };
  for (NSString* name : {@"Rating", @"Length", @"DRMProperty", @"Bitrate", @"Author", @"Summary"}) {
    NSArray* elements = [post elementsForName:name];
    if ([elements count] == 0) continue;  // not every number has a field
    EXPECT_EQ(written(name), text([[values objectForKey:name] description])) << text(name);
  }
  EXPECT_EQ(written(@"Rating"), "4.1");
  EXPECT_EQ(written(@"Link"), "ab") << "no document holds that character";
  EXPECT_EQ(written(@"Description"), "a\r\nb\rc");
  EXPECT_EQ(written(@"SubTitle"), "   ");
}

TEST_F(Converter, TakesOneEpisodeAfterTheOther) {
  NSXMLDocument* made = document([NSArray array]);
  for (int i = 0; i < 50; ++i) {
    [converter addPodcastEpisode:episode([NSString stringWithFormat:@"u%d", i]) inXML:made];
  }
  ASSERT_EQ(urls(made).size(), 50u);
  EXPECT_EQ(urls(made)[49], "u49");
  EXPECT_EQ([[[converter makePodcastDictionaryFromXML:bytes(made)] objectForKey:@"children"] count], 50u);
}

TEST_F(Converter, ReadsWhatItWrote) {
  NSDictionary* read =
      [converter makePodcastDictionaryFromXML:bytes(document([NSArray
                                                  arrayWithObjects:episode(@"u1"), episode(@"u2"), nil]))];
  EXPECT_TRUE([read isKindOfClass:[NSMutableDictionary class]]);
  EXPECT_EQ(text([read objectForKey:@"Title"]), "News & <More> ü");
  EXPECT_EQ([read objectForKey:@"Link"], [NSNull null]) << "an element without a value is there";
  NSArray* episodes = [read objectForKey:@"children"];
  ASSERT_EQ([episodes count], 2u);
  EXPECT_TRUE([[episodes objectAtIndex:0] isKindOfClass:[NSMutableDictionary class]]);
  EXPECT_EQ(text([[episodes objectAtIndex:1] objectForKey:@"Url"]), "u2");
  EXPECT_EQ(text([[episodes objectAtIndex:1] objectForKey:@"Length"]), "1234");
}

TEST_F(Converter, ReadsNothingThatIsNoIndex) {
  for (NSString* junk : {@"", @"not xml", @"<channel>", @"<rss></rss>",
                         @"<!DOCTYPE channel SYSTEM \"/etc/passwd\"><channel/>"}) {
    EXPECT_EQ([converter makePodcastDictionaryFromXML:[junk dataUsingEncoding:NSUTF8StringEncoding]], nil)
        << text(junk);
  }
  EXPECT_EQ([converter makePodcastDictionaryFromXML:nil], nil);
}

TEST_F(Converter, AddsAnEpisodeToTheDocumentInHand) {
  NSXMLDocument* made = document([NSArray arrayWithObject:episode(@"u1")]);
  NSXMLElement* root = [made rootElement];
  [converter addPodcastEpisode:episode(@"u2") inXML:made];
  EXPECT_EQ([made rootElement], root);
  EXPECT_EQ(urls(made), (std::vector<std::string>{"u1", "u2"}));
  EXPECT_EQ([[[root elementsForName:@"Post"] lastObject] childCount], 21u);
  EXPECT_EQ([[[converter makePodcastDictionaryFromXML:bytes(made)] objectForKey:@"children"] count], 2u);
}

TEST_F(Converter, AddsNoEpisodeTwice) {
  NSXMLDocument* made = document([NSArray arrayWithObjects:episode(@"u1"), episode(@"u2"), nil]);
  NSData* before = bytes(made);
  StderrCapture capture;
  [converter addPodcastEpisode:episode(@"u1") inXML:made];
  EXPECT_TRUE([bytes(made) isEqualToData:before]);
  EXPECT_EQ(capture.linesWith("same episode: u1").size(), 1u) << "whatever the debug level";
}

TEST_F(Converter, RemovesTheEpisodeWithThatUrl) {
  NSXMLDocument* made =
      document([NSArray arrayWithObjects:episode(@"u1"), episode(@"u2"), episode(@"u3"), nil]);
  NSXMLElement* root = [made rootElement];
  [converter removePodcastEpisode:episode(@"U2") inXML:made];
  EXPECT_EQ(urls(made).size(), 3u) << "exact, in letter case too";
  [converter removePodcastEpisode:episode(@"u2") inXML:made];
  EXPECT_EQ([made rootElement], root);
  EXPECT_EQ(urls(made), (std::vector<std::string>{"u1", "u3"}));
  EXPECT_EQ([root childCount], 15u);
}

TEST_F(Converter, FindsItsWayInDocumentsOfOthers) {
  NSString* other =
      @"<?xml version=\"1.0\"?><!-- made by hand --><channel a=\"b\">\n  <!-- here --><Title>News</Title>\n "
      @"text "
      @"<Post><Url>u1</Url></Post><!-- and --><Post><Url>u2</Url><Url>u3</Url></Post></channel>";
  NSXMLDocument* made = [[[NSXMLDocument alloc] initWithXMLString:other options:0 error:NULL] autorelease];
  ASSERT_NE(made, nil);
  [converter removePodcastEpisode:episode(@"u3") inXML:made];
  EXPECT_EQ([[[made rootElement] elementsForName:@"Post"] count], 2u) << "the first Url counts";
  [converter removePodcastEpisode:episode(@"u2") inXML:made];
  EXPECT_EQ(urls(made), std::vector<std::string>{"u1"});
  [converter addPodcastEpisode:episode(@"u9") inXML:made];
  EXPECT_EQ(urls(made), (std::vector<std::string>{"u1", "u9"}));
  EXPECT_EQ(text([[[made rootElement] attributeForName:@"a"] stringValue]), "b");
}

TEST_F(Converter, TakesNilForNothing) {
  NSXMLDocument* made = document([NSArray arrayWithObject:episode(@"u1")]);
  [converter addPodcastEpisode:episode(@"u2") inXML:nil];
  [converter addPodcastEpisode:nil inXML:made];
  [converter removePodcastEpisode:nil inXML:made];
  [converter removePodcastEpisode:episode(@"u1") inXML:nil];
  EXPECT_EQ(urls(made), std::vector<std::string>{"u1"});
}

}  // namespace
}  // namespace umsplugin::testing
