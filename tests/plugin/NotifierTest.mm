/// The transfer notifier, used by a host by itself.
#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class Notifier : public HostTest {
 protected:
  OVUmsDeviceNotifier* make(unsigned int files, unsigned long long bytes) {
    return [[[bundleClass(@"OVUmsDeviceNotifier") alloc] initWithInformations:@"source"
                                                               destLocationID:@"destination"
                                                                    serviceID:5
                                                                    mediaType:2
                                                                   deviceName:@"Pocket One"
                                                                 storageIndex:1
                                                         maxTransferFileCount:files
                                                              maxTransferSize:bytes] autorelease];
  }
  NSDictionary* last(NSString* name) { return [[[ear named:name] lastObject] userInfo]; }
};

TEST_F(Notifier, BeginsWithTheFirstFileAndAGoodResult) {
  OVUmsDeviceNotifier* plain = [[[bundleClass(@"OVUmsDeviceNotifier") alloc] init] autorelease];
  EXPECT_EQ([plain currentTransferFileCount], 1u);
  EXPECT_EQ([plain transferResult], 0x10000001u);
  EXPECT_EQ([plain currentTransferStatus], 0);
  EXPECT_EQ([plain maxTransferSize], 0u);
  EXPECT_EQ([plain srcLocationID], nil);
  OVUmsDeviceNotifier* notifier = make(3, 1000);
  EXPECT_EQ(text([notifier destLocationID]), "destination");
  EXPECT_EQ([notifier maxTransferFileCount], 3u);
}

TEST_F(Notifier, CountsFilesAndFinishes) {
  OVUmsDeviceNotifier* notifier = make(2, 0);
  [notifier incCurrentTransferFileCount];
  EXPECT_EQ([notifier currentTransferFileCount], 2u);
  EXPECT_EQ([[ear named:kItemResult] count], 1u);
  [notifier incCurrentTransferFileCount];
  EXPECT_EQ([notifier currentTransferStatus], 4);
  EXPECT_EQ(number(last(kProgress), @"TransferStatus"), 4);
  EXPECT_EQ(number(last(kProgress), @"CurrentProgress"), 100);
}

TEST_F(Notifier, CountsFailuresOneByOneAndAtOnce) {
  OVUmsDeviceNotifier* notifier = make(3, 0);
  [notifier incFailTransferFileCount];
  [notifier addFailTransferFileCount:2];
  EXPECT_EQ([notifier failTransferFileCount], 3u);
  EXPECT_EQ([notifier currentTransferStatus], 4);
  OVUmsDeviceNotifier* other = make(3, 0);
  [other addCurrentTransferFileCount:7];
  EXPECT_EQ([other currentTransferFileCount], 3u);
}

TEST_F(Notifier, PostsAfterAMillionBytesAndAtTheEndOfAFile) {
  OVUmsDeviceNotifier* notifier = make(1, 10000000000ull);
  [notifier setMaxSendBytes:10000000000ull];
  [notifier addCurrentSendBytes:1000000];
  EXPECT_EQ([[ear named:kProgress] count], 0u);
  [notifier addCurrentSendBytesEx:5000000000ull];
  EXPECT_EQ(number(last(kProgress), @"CurrentProgress"), 50);
  [notifier addCurrentSendBytesEx:10000000000ull];
  EXPECT_EQ(number(last(kProgress), @"CurrentProgress"), 100);
  EXPECT_EQ([notifier prevSendBytes], 0u);
  EXPECT_EQ([notifier prevTransferFileSize], 10000000000ull);
}

TEST_F(Notifier, PostsItsEnds) {
  OVUmsDeviceNotifier* notifier = make(4, 0);
  [notifier setCurrentTransferFileCount:3];
  [notifier deleteFileTransfer];
  EXPECT_EQ(number(last(kProgress), @"CurrentProgress"), 75);
  [notifier cancelFileTransfer];
  EXPECT_EQ(number(last(kProgress), @"TransferStatus"), 3);
  EXPECT_EQ(number(last(kProgress), @"CurrentProgress"), 100);
  [notifier sendTransferEvent:100 currentPersent:42];
  EXPECT_EQ(number(last(kProgress), @"CurrentProgress"), 42);
}

TEST_F(Notifier, LeadsAResultWithTheTagsAndItsOwnKeysAfterThem) {
  OVUmsDeviceNotifier* notifier = make(1, 0);
  NSMutableDictionary* tags = [NSMutableDictionary
      dictionaryWithObjectsAndKeys:@"A Title", @"Title", @"no", @"FilePath", [NSDate date], @"Recorded", nil];
  NSMutableDictionary* channel = [NSMutableDictionary
      dictionaryWithObjectsAndKeys:@"News", @"Title", [NSArray arrayWithObject:[NSDictionary dictionary]],
                                   @"children", nil];
  [notifier setMediaInfo:tags];
  [notifier setFilePath:@"/device/a.jpg"];
  [notifier setPlaylistName:@"Evening"];
  [notifier setChannelName:@"News"];
  [notifier setPodcastXmlData:channel];
  [notifier setTransferResult:0];
  [tags removeAllObjects];
  [channel setObject:@"changed" forKey:@"Title"];
  [notifier sendResultNotification];
  NSDictionary* result = last(kItemResult);
  EXPECT_EQ([result count], 12u);
  EXPECT_EQ(text([result objectForKey:@"Title"]), "A Title");
  EXPECT_TRUE([[result objectForKey:@"Recorded"] isKindOfClass:[NSDate class]]);
  EXPECT_EQ(text([result objectForKey:@"FilePath"]), "/device/a.jpg");
  EXPECT_EQ(text([result objectForKey:@"LocationId"]), "destination");
  EXPECT_EQ(text([result objectForKey:@"PlaylistName"]), "Evening");
  EXPECT_EQ(text([result objectForKey:@"ChannelName"]), "News");
  EXPECT_EQ(number(result, @"ResultStatus"), 0x10000001);
  EXPECT_EQ(number(result, @"VolumeIndex"), 1);
  NSDictionary* posted = [result objectForKey:@"PodcastXmlInfo"];
  EXPECT_EQ(text([posted objectForKey:@"Title"]), "News");
  EXPECT_EQ([[posted objectForKey:@"children"] count], 1u);
}

TEST_F(Notifier, CopiesItsProperties) {
  OVUmsDeviceNotifier* notifier = make(1, 0);
  NSMutableString* path = [NSMutableString stringWithString:@"/a"];
  [notifier setFilePath:path];
  [path appendString:@"changed"];
  EXPECT_EQ(text([notifier filePath]), "/a");
  [notifier setFilePath:nil];
  EXPECT_EQ([notifier filePath], nil);
  NSMutableDictionary* tags = [NSMutableDictionary dictionaryWithObject:@"A" forKey:@"Title"];
  [notifier setMediaInfo:tags];
  [tags setObject:@"B" forKey:@"Title"];
  EXPECT_EQ(text([[notifier mediaInfo] objectForKey:@"Title"]), "A");
  [notifier setMediaInfo:nil];
  EXPECT_EQ([notifier mediaInfo], nil);
}

TEST_F(Notifier, KeepsEveryNumberInItsWidth) {
  OVUmsDeviceNotifier* notifier = make(1, 0);
  for (NSString* name : {@"serviceID", @"storageIndex", @"mediaType", @"currentTransferFileCount",
                         @"maxTransferFileCount", @"failTransferFileCount", @"transferResult"}) {
    [notifier setValue:[NSNumber numberWithUnsignedInt:0xFFFFFFFF] forKey:name];
    EXPECT_EQ([[notifier valueForKey:name] unsignedIntValue], 0xFFFFFFFFu) << text(name);
  }
  for (NSString* name : {@"currentTransferSize", @"maxTransferSize", @"maxSendBytes", @"prevTransferFileSize",
                         @"prevSendBytes"}) {
    [notifier setValue:[NSNumber numberWithUnsignedLongLong:~0ull] forKey:name];
    EXPECT_EQ([[notifier valueForKey:name] unsignedLongLongValue], ~0ull) << text(name);
  }
  [notifier setCurrentTransferStatus:-1];
  EXPECT_EQ([notifier currentTransferStatus], -1);
}

TEST_F(Notifier, MayBeCalledAndReleasedByAHandler) {
  auto* notifier = static_cast<OVUmsDeviceNotifier*>([bundleClass(@"OVUmsDeviceNotifier") alloc]);
  notifier = [notifier init];
  [notifier setMaxTransferFileCount:5];
  unsigned int seen = 0;
  Hearing hearing = onEach([&](NSNotification*) {
    seen = [notifier maxTransferFileCount];
    [notifier release];
  });
  [notifier incCurrentTransferFileCount];
  EXPECT_EQ(seen, 5u);
  EXPECT_EQ([[ear named:nil] count], 1u);
}

}  // namespace
}  // namespace umsplugin::testing
