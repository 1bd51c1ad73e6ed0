/// Podcasts: channels with episodes to the device and back, their indexes, and what changes in the host's
/// hands.
#include "HostTest.h"
#include "Try.h"

/// A confirm delegate that knows one other device.
@interface OtherDevice : NSObject {
 @public
  id service;
}
@end
@implementation OtherDevice
- (id)getFileServiceObject:(NSString*)locationID {
  return [locationID isEqualToString:@"location-2"] ? service : nil;
}
@end

/// A file service of the host's own that takes episodes and makes folders.
@interface PodcastHostService : NSObject {
 @public
  NSMutableArray* calls;
  NSArray* volumes;
}
@end
@implementation PodcastHostService
- (NSArray*)diskInformation {
  return volumes;
}
- (BOOL)createFolder:(NSString*)path {
  [calls addObject:[@"createFolder " stringByAppendingString:[path lastPathComponent]]];
  return [[NSFileManager defaultManager] createDirectoryAtPath:path
                                   withIntermediateDirectories:YES
                                                    attributes:nil
                                                         error:NULL];
}
- (BOOL)syncWriteFileToDevice:(NSDictionary*)fileInformation
                subFolderName:(NSString*)subFolderName
                    diskIndex:(unsigned int)diskIndex
                    mediaType:(unsigned int)mediaType
                  isOverWrite:(BOOL)isOverWrite
               callbackObject:(id)callbackObject
                      context:(id)context
                        error:(unsigned int*)error {
  [calls addObject:[NSString stringWithFormat:@"write %@ to %@ %u %u %d",
                                              [[fileInformation objectForKey:@"FilePath"] lastPathComponent],
                                              subFolderName, diskIndex, mediaType, isOverWrite]];
  *error = 0;
  return [callbackObject transferProgressInfoEx:context maxTransferSize:3 currentTransferSize:3];
}
@end

namespace umsplugin::testing {
namespace {

constexpr unsigned int kPodcast = 4;

class Podcasts : public HostTest {
 protected:
  NSMutableDictionary* episode(const std::string& name, const std::string& folder = "mac/") {
    const std::string path = sandbox.file(folder + name, name + " bytes");
    return [NSMutableDictionary
        dictionaryWithObjectsAndKeys:string("http://example.org/" + name), @"Url", string(path), @"FilePath",
                                     string(name), @"Title",
                                     [NSNumber numberWithUnsignedLongLong:bytesOf(path).size()], @"Length",
                                     nil];
  }
  static NSMutableDictionary* channel(NSString* title, NSArray* episodes) {
    return [NSMutableDictionary dictionaryWithObjectsAndKeys:title, @"Title", episodes, @"children", nil];
  }
  BOOL copy(NSDictionary* podcast) {
    return [service copyContentsMacToDevice:1
                                   contents:[NSArray arrayWithObject:podcast]
                                  mediaType:kPodcast
                               storageIndex:0] &&
           [ear waitFor:kUmsResult count:1];
  }
  bool finished() {
    return eventually([&] {
      NSDictionary* last = [[[ear named:kProgress] lastObject] userInfo];
      return [[last objectForKey:@"TransferStatus"] intValue] == 4;
    });
  }
  NSDictionary* lastResult() { return [[[ear named:kItemResult] lastObject] userInfo]; }
  size_t listed(UMSService* from) {
    return [[from fileInformationList:0 mediaType:kPodcast diskIndex:0] count];
  }

  UMSService* const service = makeDevice();
  const std::string news = internal + "/Podcast/News";
};

TEST_F(Podcasts, AreCopiedWithTheirIndex) {
  NSMutableDictionary* first = episode("one.mp3");
  NSString* const before = [first objectForKey:@"FilePath"];
  ASSERT_TRUE(copy(channel(@"News", [NSArray arrayWithObjects:first, episode("two.mp3"), nil])));
  EXPECT_EQ(bytesOf(news + "/two.mp3"), "two.mp3 bytes");
  EXPECT_EQ([first objectForKey:@"FilePath"], before) << "a copy leaves the host's episodes as they are";

  NSDictionary* result = lastResult();
  EXPECT_EQ(text([result objectForKey:@"ChannelName"]), "News");
  NSDictionary* info = [result objectForKey:@"PodcastXmlInfo"];
  EXPECT_TRUE([info isKindOfClass:[NSDictionary class]]);
  EXPECT_EQ(text([info objectForKey:@"Title"]), "News");
  NSArray* episodes = [info objectForKey:@"children"];
  ASSERT_EQ([episodes count], 2u);
  for (NSDictionary* each : {info, static_cast<NSDictionary*>([episodes objectAtIndex:1])}) {
    EXPECT_EQ([seenInLoop(each) count], [each count]);
    EXPECT_EQ([[each allValues] count], [each count]);
    EXPECT_EQ([[[each objectEnumerator] allObjects] count], [each count]);
    EXPECT_EQ([[NSDictionary dictionaryWithDictionary:each] count], [each count]);
  }
  EXPECT_NE([NSJSONSerialization dataWithJSONObject:[NSArray arrayWithObject:[episodes objectAtIndex:0]]
                                            options:0
                                              error:NULL],
            nil);
  EXPECT_EQ(text([[episodes objectAtIndex:1] objectForKey:@"FilePath"]), news + "/two.mp3");
  EXPECT_EQ(text([[episodes objectAtIndex:1] objectForKey:@"Length"]), "13");

  NSArray* podcasts = [service fileInformationList:0 mediaType:kPodcast diskIndex:0];
  ASSERT_EQ([podcasts count], 1u);
  EXPECT_EQ(text([[[[podcasts objectAtIndex:0] objectForKey:@"children"] objectAtIndex:0]
                objectForKey:@"FilePath"]),
            news + "/one.mp3");
}

TEST_F(Podcasts, MayComeInListsThatHoldAnything) {
  id episodes[] = {nil, @"a text", episode("one.mp3"), [NSNull null]};
  NSArray* oddEpisodes = [[[OddArray alloc] initWithElements:episodes count:std::size(episodes)] autorelease];
  id channels[] = {nil, [NSDate date], channel(@"News", oddEpisodes), [NSNumber numberWithInt:4]};
  NSArray* oddChannels = [[[OddArray alloc] initWithElements:channels count:std::size(channels)] autorelease];
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:oddChannels mediaType:kPodcast storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(bytesOf(news + "/one.mp3"), "one.mp3 bytes");
  EXPECT_EQ([[ear named:kItemResult] count], 1u);
  EXPECT_EQ([service totalPodcastCount:oddChannels], 4u);
}

TEST_F(Podcasts, AreSynchronisedInTheHostsOwnDictionaries) {
  NSMutableDictionary* changed = episode("one.mp3");
  NSDictionary* fixed = [NSDictionary dictionaryWithDictionary:episode("two.mp3")];
  NSArray* contents =
      [NSArray arrayWithObject:channel(@"News", [NSArray arrayWithObjects:changed, fixed, nil])];
  ASSERT_TRUE([service syncContents:2 contents:contents mediaType:kPodcast isStartInternal:YES]);
  ASSERT_TRUE(finished());
  EXPECT_EQ(text([changed objectForKey:@"FilePath"]), "one.mp3");
  EXPECT_EQ(text([fixed objectForKey:@"FilePath"]), sandbox.at("mac/two.mp3")) << "it cannot be changed";
  const std::string folder = internal + "Podcast/News";
  EXPECT_TRUE(eventually([&] { return exists(folder + "/News.xml"); }));
  NSDictionary* index = [service checkXmlData:string(folder) channelName:@"News"];
  NSArray* episodes = [index objectForKey:@"children"];
  ASSERT_EQ([episodes count], 2u);
  EXPECT_EQ(text([[episodes objectAtIndex:1] objectForKey:@"FilePath"]), "two.mp3");
}

TEST_F(Podcasts, AreDeletedEpisodeByEpisodeAndAsAWhole) {
  ASSERT_TRUE(copy(channel(@"News", [NSArray arrayWithObjects:episode("one.mp3"), episode("two.mp3"), nil])));
  NSArray* there = [[[service fileInformationList:0 mediaType:kPodcast
                                        diskIndex:0] objectAtIndex:0] objectForKey:@"children"];
  NSArray* first = [NSArray arrayWithObject:[there objectAtIndex:0]];
  ASSERT_TRUE([service deleteContents:3
                             contents:[NSArray arrayWithObject:channel(@"News", first)]
                            mediaType:kPodcast
                            diskIndex:0]);
  EXPECT_TRUE(eventually([&] { return [[lastResult() objectForKey:@"ServiceID"] intValue] == 3; }));
  EXPECT_FALSE(exists(news + "/one.mp3"));
  EXPECT_TRUE(exists(news + "/two.mp3"));

  NSMutableDictionary* whole = channel(@"News", [NSArray arrayWithObject:[there objectAtIndex:1]]);
  [whole setObject:[NSNumber numberWithBool:YES] forKey:@"Delete"];
  ASSERT_TRUE([service deleteContents:4
                             contents:[NSArray arrayWithObject:whole]
                            mediaType:kPodcast
                            diskIndex:0]);
  EXPECT_TRUE(eventually([&] { return [[lastResult() objectForKey:@"ServiceID"] intValue] == 4; }));
  EXPECT_FALSE(exists(news));
}

TEST_F(Podcasts, GoToAnotherServiceOfTheBundle) {
  ASSERT_TRUE(copy(channel(@"News", [NSArray arrayWithObject:episode("one.mp3")])));
  UMSService* other = makeService(@"location-2");
  [other addDiskInformation:disk(1, sandbox.folder("other"))];
  OtherDevice* delegate = [[[OtherDevice alloc] init] autorelease];
  delegate->service = other;
  [service setConfirmDelegate:delegate];
  NSMutableDictionary* podcast = [[service fileInformationList:0 mediaType:kPodcast
                                                     diskIndex:0] objectAtIndex:0];
  ASSERT_TRUE([service copyContentsDeviceToDevice:5
                                         contents:[NSArray arrayWithObject:podcast]
                                    srcLocationId:@"location-1"
                                   destLocationId:@"location-2"
                                        mediaType:kPodcast
                                 destStorageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:2]);
  EXPECT_EQ(bytesOf(sandbox.at("other/Podcast/News/one.mp3")), "one.mp3 bytes");
  EXPECT_EQ(listed(other), 1u);
  EXPECT_EQ(text([[[podcast objectForKey:@"children"] objectAtIndex:0] objectForKey:@"FilePath"]), "one.mp3")
      << "the host's own episode says where it lies in the channel";
}

TEST_F(Podcasts, GoToAServiceOfTheHost) {
  ASSERT_TRUE(copy(channel(@"News", [NSArray arrayWithObject:episode("one.mp3")])));
  PodcastHostService* other = [[[PodcastHostService alloc] init] autorelease];
  other->calls = [NSMutableArray array];
  NSMutableDictionary* volume =
      [NSMutableDictionary dictionaryWithDictionary:disk(1, sandbox.folder("other"))];
  [volume setObject:[NSNumber numberWithInt:0] forKey:@"diskIndex"];
  other->volumes = [NSArray arrayWithObject:volume];
  OtherDevice* delegate = [[[OtherDevice alloc] init] autorelease];
  delegate->service = other;
  [service setConfirmDelegate:delegate];
  ASSERT_TRUE([service copyContentsDeviceToDevice:5
                                         contents:[service fileInformationList:0
                                                                     mediaType:kPodcast
                                                                     diskIndex:0]
                                    srcLocationId:@"location-1"
                                   destLocationId:@"location-2"
                                        mediaType:kPodcast
                                 destStorageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:2]);
  EXPECT_EQ(texts(other->calls),
            (std::vector<std::string>{"createFolder News", "write one.mp3 to News 0 4 0"}));
}

TEST_F(Podcasts, HaveIndexesThatAHostCanReadAndWrite) {
  QDUIPodcastXMLConverter* converter = [[[bundleClass(@"QDUIPodcastXMLConverter") alloc] init] autorelease];
  NSDictionary* podcast =
      channel(@"News", [NSArray arrayWithObject:episode("one.mp3", "internal/Podcast/News/")]);
  [[[podcast objectForKey:@"children"] objectAtIndex:0] setObject:@"one.mp3" forKey:@"FilePath"];
  NSXMLDocument* document = [converter makePodcastXMLFromPodcastDictionary:podcast includeEpisode:YES];
  EXPECT_TRUE([service sendXmlData:1 xmlDocument:document filePath:string(news) podcastName:@"News"]);
  EXPECT_FALSE([service sendXmlData:1 xmlDocument:nil filePath:string(news) podcastName:@"News"]);
  EXPECT_FALSE([service sendXmlData:1 xmlDocument:document filePath:nil podcastName:@"News"]);
  EXPECT_NE(bytesOf(news + "/News.xml").find("<Title>News</Title>"), std::string::npos);

  NSArray* indexes = nil;
  EXPECT_TRUE([service podcastXmlLists:1 fileName:string(internal) contents:&indexes]);
  EXPECT_EQ(texts(indexes), std::vector<std::string>{"Podcast/News/News.xml"});
  NSDictionary* read = [service umsPodcastXmlData:string(news + "/News.xml")];
  EXPECT_EQ(text([[[read objectForKey:@"children"] objectAtIndex:0] objectForKey:@"FilePath"]),
            news + "/one.mp3");
  NSData* bytes = [service readFileData:string(news + "/News.xml")];
  NSDictionary* prefixed = [service makeXMLInfoFromFileData:@"/folder" data:bytes];
  EXPECT_EQ(text([[[prefixed objectForKey:@"children"] objectAtIndex:0] objectForKey:@"FilePath"]),
            "/folder/one.mp3");
  [service makeEpisodeFullPath:podcast podcastChannelName:@"/folder"];
  EXPECT_EQ(text([[[podcast objectForKey:@"children"] objectAtIndex:0] objectForKey:@"FilePath"]),
            "/folder/one.mp3")
      << "in the host's own dictionary";
  EXPECT_EQ([service checkXmlData:string(news) channelName:@"None"], nil);
  EXPECT_FALSE([service podcastXmlLists:1 fileName:nil contents:&indexes]);
}

TEST_F(Podcasts, HaveCountsAndSizes) {
  NSDictionary* minus = [NSDictionary dictionaryWithObject:@"-1" forKey:@"Length"];
  NSArray* channels =
      [NSArray arrayWithObject:channel(@"News", [NSArray arrayWithObjects:minus, minus, nil])];
  unsigned int count = 0;
  EXPECT_EQ([service totalPodcastCount:channels], 2u);
  EXPECT_EQ([service totalPodcastFileSize:channels sendCount:&count], 2 * 0xFFFFFFFFull);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ([service totalUmsPodcastEpisodeDataSize:[NSArray arrayWithObject:minus]], ~0ull);
  EXPECT_TRUE([service checkUmsPodcastEpisodeSize:string(internal) episodeData:[NSArray array]]);
  EXPECT_FALSE([service checkUmsPodcastEpisodeSize:string(internal)
                                       episodeData:[NSArray arrayWithObject:minus]]);
}

TEST_F(Podcasts, RunEachOperationByItself) {
  _serviceinfo info = {};
  info.serviceID = 6;
  info.command = 213;
  info.mediaType = kPodcast;
  info.destPath = string(internal + "/Podcast");
  info.contents = [NSArray arrayWithObject:channel(@"News", [NSArray arrayWithObject:episode("one.mp3")])];
  info.isStartInternal = 1;
  EXPECT_TRUE([service doCopyPodcastContents:&info]);
  EXPECT_TRUE(exists(news + "/one.mp3"));
  EXPECT_FALSE([service doDeviceToDevicePodcast:&info]) << "nobody was made the confirm delegate";
  EXPECT_TRUE([service doSyncPodcastContents:&info]);
  EXPECT_TRUE(exists(internal + "Podcast/News/one.mp3"));
  NSMutableDictionary* whole = channel(@"News", [NSArray arrayWithObject:[NSDictionary dictionary]]);
  [whole setObject:[NSNumber numberWithBool:YES] forKey:@"Delete"];
  info.contents = [NSArray arrayWithObject:whole];
  [service doDeletePodcastContents:&info];
  EXPECT_FALSE(exists(news));
  EXPECT_FALSE([service doCopyPodcastContents:NULL]);
}

TEST_F(Podcasts, AreTriedOnTheVolumesBehind) {
  QDUIPodcastXMLConverter* converter = [[[bundleClass(@"QDUIPodcastXMLConverter") alloc] init] autorelease];
  OVUmsDeviceNotifier* notifier = [[[bundleClass(@"OVUmsDeviceNotifier") alloc] init] autorelease];
  [notifier setServiceID:7];
  [notifier setMaxTransferFileCount:1];
  NSDictionary* podcast = channel(@"News", [NSArray arrayWithObject:episode("one.mp3")]);
  // By the host rules, on the path of the volume that was full, in the folder of the one behind it.
  EXPECT_EQ([service syncUmsPodcastFile:7
                                  index:0
                              mediaType:kPodcast
                            podcastInfo:podcast
                           xmlConverter:converter
                                context:notifier],
            0);
  EXPECT_EQ(bytesOf(internal + "Podcast/News/one.mp3"), "one.mp3 bytes");
  EXPECT_TRUE(exists(internal + "Podcast/News/News.xml"));
  EXPECT_EQ([notifier storageIndex], 1u);
  EXPECT_EQ([notifier currentTransferStatus], 4);
  EXPECT_EQ([service syncUmsPodcastFile:7
                                  index:0
                              mediaType:kPodcast
                            podcastInfo:nil
                           xmlConverter:converter
                                context:notifier],
            0x10000002);
  EXPECT_EQ([service syncUmsPodcastFile:7
                                  index:9
                              mediaType:kPodcast
                            podcastInfo:podcast
                           xmlConverter:converter
                                context:nil],
            0x10000002);
}

}  // namespace
}  // namespace umsplugin::testing
