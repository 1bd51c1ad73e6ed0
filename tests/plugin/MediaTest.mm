/// The steps of the media operations as the private category has them.
#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class Media : public HostTest {
 protected:
  Media() { sandbox.patternFile("mac/a.mp3", 10000); }
  ~Media() override { [notifier release]; }

  _serviceinfo record(unsigned int command, NSString* destPath) {
    _serviceinfo made = {};
    made.serviceID = 21;
    made.command = command;
    made.destPath = destPath;
    made.contents = [NSArray arrayWithObject:content(source, "a.mp3")];
    made.mediaType = 1;
    return made;
  }

  UMSService* const service = makeDevice();
  OVUmsDeviceNotifier* const notifier = [[bundleClass(@"OVUmsDeviceNotifier") alloc] init];
  const std::string source = sandbox.at("mac/a.mp3");
  const std::string destination = internal + "/Music/a.mp3";
  int error = 77;
};

TEST_F(Media, HasTypes) {
  EXPECT_EQ([service checkMediaType:@"Song.MP3"], 1);
  EXPECT_EQ([service checkMediaType:@"index.xml"], 4);
  EXPECT_EQ([service checkMediaType:nil], 0);
  NSArray* extensions = [NSArray arrayWithObjects:@"mp3", @"ogg", nil];
  EXPECT_TRUE([service checkContentWithExtentions:@"OGG" extLists:extensions]);
  EXPECT_FALSE([service checkContentWithExtentions:nil extLists:extensions]);
  EXPECT_TRUE([service checkContentWithExtentions:@"any" extLists:[NSArray arrayWithObject:@"*"]]);
  EXPECT_TRUE([service checkMediaContent:@"/V" filePath:@"/v/music/a.mp3" diskType:1 mediaType:1]);
  EXPECT_FALSE([service checkMediaContent:nil filePath:@"/v" diskType:1 mediaType:1]);
}

TEST_F(Media, IsCopiedMovedAndDeletedFileByFile) {
  EXPECT_TRUE([service umsCopyFile:1
                           srcPath:string(source)
                          destPath:string(destination)
                           context:notifier
                             error:&error]);
  EXPECT_EQ(error, 0);
  EXPECT_EQ([notifier currentTransferSize], 10000u);
  EXPECT_FALSE([service umsCopyFile:1
                            srcPath:string(source)
                           destPath:string(destination)
                            context:notifier
                              error:&error]);
  EXPECT_EQ(error, 0x21000002);
  error = 77;
  EXPECT_FALSE([service umsCopyFile:1 srcPath:string(source) destPath:@"/x" context:nil error:&error]);
  EXPECT_EQ(error, 77);
  EXPECT_TRUE([service umsMoveFile:1
                           srcPath:string(destination)
                          destPath:string(internal + "/moved.mp3")
                           context:notifier
                             error:NULL]);
  EXPECT_FALSE(exists(destination));
  EXPECT_TRUE([service umsDeleteFile:1 srcPath:string(internal + "/moved.mp3") error:&error]);
  EXPECT_EQ(error, 0);
  EXPECT_FALSE([service umsDeleteFile:1 srcPath:string(internal + "/moved.mp3") error:&error]);
  EXPECT_EQ(error, 0x20000003);
}

TEST_F(Media, HasSizesOf64Bits) {
  EXPECT_EQ([service mediaFileSize:string(source)], 10000u);
  NSMutableDictionary* large = content("/none", "none");
  [large setObject:[NSNumber numberWithUnsignedInt:0xFFFFFFFF] forKey:@"FileSize"];
  NSArray* contents = [NSArray arrayWithObjects:large, large, content(source, "a.mp3"), nil];
  EXPECT_EQ([service totalMediaContentsSize:contents], 2 * 0xFFFFFFFFull + 10000);
}

TEST_F(Media, TakesItsSubtitlesAlong) {
  const std::string film = sandbox.file("mac/trip.mp4", "film");
  sandbox.file("mac/trip.smi", "subtitles");
  EXPECT_TRUE([service sendSmiFile:1 srcVideoPath:string(film) destPath:string(card) mediaType:3]);
  EXPECT_EQ(bytesOf(card + "/trip.smi"), "subtitles");
  EXPECT_FALSE([service sendSmiFile:1 srcVideoPath:string(film) destPath:string(card) mediaType:1]);
  EXPECT_TRUE([service deleteSmiFile:1 filePath:string(card + "/trip.mp4") mediaType:3]);
  EXPECT_FALSE(exists(card + "/trip.smi"));
}

TEST_F(Media, RunsARecordOfTheHostOnTheCallingThread) {
  _serviceinfo toDevice = record(213, string(internal + "/Music"));
  EXPECT_TRUE([service doUmsFileService:&toDevice]);
  EXPECT_EQ(bytesOf(destination).size(), 10000u);
  EXPECT_EQ(number([[[ear named:kUmsResult] lastObject] userInfo], @"Status"), 0);
  EXPECT_FALSE([service doUmsFileService:NULL]);
}

TEST_F(Media, RunsEachOperationByItself) {
  _serviceinfo info = record(210, string(sandbox.at("back")));
  EXPECT_TRUE([service doCopyMediaContents:&info]);
  EXPECT_EQ(bytesOf(sandbox.at("back/a.mp3")).size(), 10000u);
  EXPECT_TRUE([service doCopyMediaContentsForAnyMediaType:&info]);
  EXPECT_TRUE(exists(destination));
  info.isStartInternal = 1;
  EXPECT_TRUE([service doSyncMediaContents:&info]);
  EXPECT_TRUE(exists(internal + "Music/a.mp3"));
  info.contents = [NSArray arrayWithObject:content(destination, "a.mp3")];
  EXPECT_TRUE([service doDeleteMediaContents:&info]);
  EXPECT_FALSE(exists(destination));
  EXPECT_FALSE([service doDeviceToDevcieContents:&info]) << "nobody was made the confirm delegate";
  EXPECT_FALSE([service doCopyMediaContents:NULL]);
}

TEST_F(Media, IsTriedOnTheOtherVolumes) {
  // The host rules stay on the path of the volume that failed, with the folder of the one that is tried.
  EXPECT_EQ([service syncUmsFile:1
                          atPath:string(source)
                           index:1
                       mediaType:1
                       mediaData:content(source, "a.mp3")
                         context:notifier],
            0);
  EXPECT_TRUE(exists(card + "Music/a.mp3"));
  EXPECT_EQ([service syncUmsFile:1 atPath:nil index:0 mediaType:1 mediaData:nil context:notifier],
            0x10000002);
}

TEST_F(Media, IsServedByASecondThreadThatTheHostLends) {
  [NSThread detachNewThreadSelector:@selector(umsFileServiceQueueThread:) toTarget:service withObject:nil];
  NSArray* contents = [NSArray arrayWithObject:content(source, "a.mp3")];
  EXPECT_TRUE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  // The thread retains its target until the service is told to exit.
  EXPECT_TRUE([service exitServiceThread]);
  EXPECT_TRUE(eventually([&] { return [service retainCount] == 1; }));
}

}  // namespace
}  // namespace umsplugin::testing
