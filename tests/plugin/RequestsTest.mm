/// Requests on real files: what is queued, what is refused, what becomes of the files.
#include <atomic>

#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class Requests : public HostTest {
 protected:
  NSArray* contentsOf(NSDictionary* only) { return [NSArray arrayWithObject:only]; }

  UMSService* const service = makeDevice();
  const std::string song = sandbox.file("mac/song.mp3", "song bytes");
};

TEST_F(Requests, CopyToTheDevice) {
  EXPECT_TRUE([service copyContentsMacToDevice:1
                                      contents:contentsOf(content(song, "song.mp3"))
                                     mediaType:1
                                  storageIndex:1]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(bytesOf(card + "/Music/song.mp3"), "song bytes");
}

TEST_F(Requests, CopyToTheComputer) {
  EXPECT_TRUE([service copyContentsDeviceToMac:2
                                      contents:contentsOf(content(song, "back.mp3"))
                               destinationPath:string(sandbox.at("back"))
                                     mediaType:1
                                  playlistName:@"Evening"]);
  ASSERT_TRUE([ear waitFor:kItemResult count:1]);
  EXPECT_TRUE(eventually([&] { return bytesOf(sandbox.at("back/back.mp3")) == "song bytes"; }));
  NSDictionary* result = [[[ear named:kItemResult] lastObject] userInfo];
  EXPECT_EQ(text([result objectForKey:@"PlaylistName"]), "Evening");
}

TEST_F(Requests, SyncToTheVolumePathAndItsFolderJoinedAsTheyStand) {
  EXPECT_TRUE([service syncContents:3
                           contents:contentsOf(content(song, "song.mp3"))
                          mediaType:1
                    isStartInternal:NO]);
  ASSERT_TRUE([ear waitFor:kItemResult count:1]);
  EXPECT_EQ(bytesOf(card + "Music/song.mp3"), "song bytes") << "no profile gives a folder that begins with /";
}

TEST_F(Requests, DeleteFromTheDevice) {
  const std::string there = sandbox.file("card/Music/old.mp3", "old");
  EXPECT_TRUE([service deleteContents:4
                             contents:contentsOf(content(there, "old.mp3"))
                            mediaType:1
                            diskIndex:1]);
  ASSERT_TRUE([ear waitFor:kItemResult count:1]);
  EXPECT_FALSE(exists(there));
}

TEST_F(Requests, AreRefusedWithoutContentsVolumeOrFolder) {
  NSArray* contents = contentsOf(content(song, "song.mp3"));
  EXPECT_FALSE([service syncContents:1 contents:nil mediaType:1 isStartInternal:YES]);
  EXPECT_FALSE([service copyContentsMacToDevice:1 contents:[NSArray array] mediaType:1 storageIndex:0]);
  EXPECT_FALSE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:9]);
  EXPECT_FALSE([service copyContentsMacToDevice:1 contents:contents mediaType:0 storageIndex:0]);
  EXPECT_FALSE([service copyContentsDeviceToDevice:1
                                          contents:contents
                                     srcLocationId:@"location-1"
                                    destLocationId:@"location-2"
                                         mediaType:1
                                  destStorageIndex:0])
      << "nobody was made the confirm delegate";
  EXPECT_TRUE([service reEnumerateAtFolder:@"/anything"]);
  EXPECT_EQ([[ear named:nil] count], 0u);
}

TEST_F(Requests, ReadTheElementsOfAnOddListOneByOne) {
  id elements[] = {nil, @"a text", [NSNull null], [NSDate date], content(song, "song.mp3")};
  NSArray* odd = [[[OddArray alloc] initWithElements:elements count:std::size(elements)] autorelease];
  EXPECT_TRUE([service copyContentsMacToDevice:5 contents:odd mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(bytesOf(internal + "/Music/song.mp3"), "song bytes");
  NSDictionary* last = [[[ear named:kProgress] lastObject] userInfo];
  EXPECT_EQ(number(last, @"Max"), 5);
  EXPECT_EQ(number(last, @"Fail"), 4);
}

TEST_F(Requests, SyncAndDeleteWhatIsGoodInAnOddList) {
  id elements[] = {nil, content(song, "song.mp3"), [NSNull null]};
  NSArray* odd = [[[OddArray alloc] initWithElements:elements count:std::size(elements)] autorelease];
  EXPECT_TRUE([service syncContents:6 contents:odd mediaType:1 isStartInternal:YES]);
  ASSERT_TRUE([ear waitFor:kItemResult count:1]);
  EXPECT_EQ(bytesOf(internal + "Music/song.mp3"), "song bytes");
  EXPECT_TRUE([service deleteContents:7 contents:odd mediaType:1 diskIndex:0]);
  ASSERT_TRUE([ear waitFor:kItemResult count:2]);
  EXPECT_FALSE(exists(song));
}

TEST_F(Requests, CountItemsWithKeysOfTheWrongKindAsFailed) {
  NSDictionary* odd = [NSDictionary dictionaryWithObjectsAndKeys:[NSURL fileURLWithPath:string(song)],
                                                                 @"FilePath", @"song.mp3", @"FileName", nil];
  EXPECT_TRUE([service copyContentsMacToDevice:6 contents:contentsOf(odd) mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(number([[[ear named:kProgress] lastObject] userInfo], @"Fail"), 1);
}

TEST_F(Requests, KeepTheirContentsUntilTheyHaveRun) {
  {
    NSAutoreleasePool* inner = [[NSAutoreleasePool alloc] init];
    {
      NSMutableArray* contents = [[NSMutableArray alloc] init];
      [contents addObject:content(song, "song.mp3")];
      EXPECT_TRUE([service copyContentsMacToDevice:7 contents:contents mediaType:1 storageIndex:0]);
      [contents release];
    }
    [inner release];
  }
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(bytesOf(internal + "/Music/song.mp3"), "song bytes");
}

TEST_F(Requests, GiveTheirContentsBackWhenTheyHaveRun) {
  NSMutableArray* contents = [[NSMutableArray alloc] initWithObjects:content(song, "song.mp3"), nil];
  const NSUInteger before = [contents retainCount];
  EXPECT_TRUE([service copyContentsMacToDevice:8 contents:contents mediaType:1 storageIndex:0]);
  EXPECT_TRUE(
      eventually([&] { return [[ear named:kUmsResult] count] == 1 && [contents retainCount] == before; }));
  [contents release];
}

TEST_F(Requests, AreCancelledWhileTheyWait) {
  std::atomic<bool> queued = false;
  Hearing hearing = onEach([&](NSNotification* notification) {
    if (![[notification name] isEqualToString:kItemResult]) return;
    eventually([&] { return queued.load(); });
    [service cancelFileAction:2];
  });
  NSArray* first = contentsOf(content(song, "song.mp3"));
  NSArray* second = contentsOf(content(song, "second.mp3"));
  EXPECT_TRUE([service copyContentsMacToDevice:1 contents:first mediaType:1 storageIndex:0]);
  EXPECT_TRUE([service copyContentsMacToDevice:2 contents:second mediaType:2 storageIndex:0]);
  queued = true;
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  NSArray* progress = [ear named:kProgress];
  NSDictionary* cancelled = nil;
  for (NSUInteger i = 0; i < [progress count]; ++i) {
    NSDictionary* each = [[progress objectAtIndex:i] userInfo];
    if (number(each, @"ServiceID") == 2) cancelled = each;
  }
  EXPECT_EQ([cancelled count], 6u);
  EXPECT_EQ(number(cancelled, @"TransferStatus"), 3);
  EXPECT_EQ(number(cancelled, @"MediaNotiType"), 2);
  EXPECT_EQ(number(cancelled, @"Current"), 0);
  EXPECT_EQ(number(cancelled, @"Max"), 0);
  EXPECT_EQ(text([cancelled objectForKey:@"LocationId"]), "location-1");
  EXPECT_FALSE([service isCancelServiceId:2]);
  EXPECT_FALSE(exists(internal + "/Music/second.mp3"));
}

TEST_F(Requests, OfOneFileAreServedAndReported) {
  const std::string made = internal + "/made.txt";
  struct Row {
    unsigned int command;
    std::string path, destination;
    BOOL success;
    unsigned int status;
  };
  const Row rows[] = {
      {201, made, "", YES, 0},
      {201, internal + "/no/made.txt", "", NO, 0x20000001},
      {202, internal + "/new/folder", "", YES, 0},
      {202, made, "", NO, 0x20000002},
      {203, made, "", NO, 0x11000004},
      {204, made, "", NO, 0},
      {206, made, internal + "/moved.txt", YES, 0},
      {206, made, internal + "/moved.txt", NO, 0x20000004},
      {207, made, "", NO, 0},
      {208, internal, "", YES, 0},
      {209, internal, "", YES, 0},
      {215, internal, "", NO, 0},
      {300, internal, "", NO, 0},
  };
  for (const Row& row : rows) {
    [ear forget];
    _serviceinfo record = {};
    record.serviceID = 5;
    record.command = row.command;
    record.filePath = string(row.path);
    record.destPath = row.destination.empty() ? nil : string(row.destination);
    EXPECT_EQ([service doUmsFileService:&record], row.success) << row.command;
    ASSERT_EQ([[ear named:nil] count], 1u) << row.command;
    NSDictionary* result = [[[ear named:kUmsResult] lastObject] userInfo];
    EXPECT_EQ(number(result, @"Status"), row.status) << row.command;
    EXPECT_EQ(number(result, @"ServiceID"), 5);
    EXPECT_EQ(text([result objectForKey:@"SourcePath"]), row.path);
    EXPECT_EQ(number(result, @"DiskSize") != 0, row.command == 208 || row.command == 209) << row.command;
  }
  EXPECT_TRUE(exists(internal + "/moved.txt"));
  EXPECT_TRUE(exists(internal + "/new/folder"));
}

TEST_F(Requests, OfDeletesCopiesToTheComputerAndSyncsHaveNoResult) {
  for (unsigned int command : {205u, 210u, 211u, 216u}) {
    _serviceinfo record = {};
    record.command = command;
    record.mediaType = 1;
    record.destPath = string(sandbox.at("back"));
    record.contents = contentsOf(content(sandbox.file("mac/one.mp3", "x"), "one.mp3"));
    record.isStartInternal = 1;
    EXPECT_EQ([service doUmsFileService:&record], command != 211) << command;
  }
  EXPECT_EQ([[ear named:kUmsResult] count], 0u);
  EXPECT_EQ([[ear named:kItemResult] count], 3u);
}

TEST_F(Requests, WorkTheCancelList) {
  EXPECT_FALSE([service isCancelServiceId:9]);
  [service cancelFileAction:9];
  [service emptyQueue];
  EXPECT_FALSE([service emptyQueue:9]);
  EXPECT_TRUE([service isCancelServiceId:9]);
  EXPECT_TRUE([service removeCancelServiceId:9]);
  EXPECT_FALSE([service removeCancelServiceId:9]);
}

}  // namespace
}  // namespace umsplugin::testing
