/// Copies from one device to another: both served by the bundle, or one by the host itself.
#include <atomic>
#include <thread>

#include "HostTest.h"

/// Hands out file services by location, and answers overwrite questions as a test sets them.
@interface Delegate : NSObject {
 @public
  NSMutableDictionary* services;
  NSMutableArray* asked;
  BOOL answer, isOverwrite, isNotAsk;
}
@end

@implementation Delegate
- (id)init {
  if ((self = [super init])) {
    services = [[NSMutableDictionary alloc] init];
    asked = [[NSMutableArray alloc] init];
  }
  return self;
}
- (void)dealloc {
  [services release];
  [asked release];
  [super dealloc];
}
- (BOOL)confirmOverwrite:(NSString*)path isOverwrite:(BOOL*)overwrites isNotAsk:(BOOL*)asksNoMore {
  [asked addObject:path];
  *overwrites = isOverwrite;
  *asksNoMore = isNotAsk;
  return answer;
}
- (id)getFileServiceObject:(NSString*)locationID {
  return [services objectForKey:locationID];
}
@end

/// A file service of the host's own: it keeps what it was told and answers as a test sets it.
@interface HostService : NSObject {
 @public
  NSArray* volumes;
  NSMutableArray* written;
  std::vector<bool>* overwrites;
  unsigned int nextError;
  BOOL progressAnswer;
  id keptCallback;
  id keptContext;
  NSMutableSet* callbacks;
  NSMutableSet* contexts;
}
@end

@implementation HostService
- (id)init {
  if ((self = [super init])) {
    written = [[NSMutableArray alloc] init];
    overwrites = new std::vector<bool>;
    callbacks = [[NSMutableSet alloc] init];
    contexts = [[NSMutableSet alloc] init];
  }
  return self;
}
- (void)dealloc {
  delete overwrites;
  [callbacks release];
  [contexts release];
  [volumes release];
  [written release];
  [keptCallback release];
  [keptContext release];
  [super dealloc];
}
- (NSArray*)diskInformation {
  return volumes;
}
- (NSString*)modelName {
  return @"Host Player";
}
- (BOOL)syncWriteFileToDevice:(NSDictionary*)fileInformation
                subFolderName:(NSString*)subFolderName
                    diskIndex:(unsigned int)diskIndex
                    mediaType:(unsigned int)mediaType
                  isOverWrite:(BOOL)isOverWrite
               callbackObject:(id)callbackObject
                      context:(id)context
                        error:(unsigned int*)error {
  [written addObject:[NSArray arrayWithObjects:fileInformation, subFolderName ? subFolderName : @"(none)",
                                               [NSNumber numberWithUnsignedInt:diskIndex],
                                               [NSNumber numberWithUnsignedInt:mediaType], nil]];
  overwrites->push_back(isOverWrite);
  progressAnswer = [callbackObject transferProgressInfoEx:context maxTransferSize:6 currentTransferSize:6];
  @synchronized(self) {
    [keptCallback release];
    [keptContext release];
    keptCallback = [callbackObject retain];
    keptContext = [context retain];
    [callbacks addObject:[NSValue valueWithPointer:callbackObject]];
    [contexts addObject:[NSValue valueWithPointer:context]];
  }
  *error = isOverWrite ? 0 : nextError;
  return *error == 0;
}
@end

namespace umsplugin::testing {
namespace {

class DeviceToDevice : public HostTest {
 protected:
  DeviceToDevice() { [service setConfirmDelegate:delegate]; }
  ~DeviceToDevice() override {
    if (!isGone) [service setConfirmDelegate:[NSNull null]];
    [delegate release];
  }

  BOOL copyTo(NSString* location, NSArray* contents, unsigned int storageIndex = 0) {
    return [service copyContentsDeviceToDevice:31
                                      contents:contents
                                 srcLocationId:@"location-1"
                                destLocationId:location
                                     mediaType:1
                              destStorageIndex:storageIndex];
  }
  NSDictionary* song(const std::string& name) {
    return content(sandbox.patternFile("internal/Music/" + name, 10000), name);
  }

  UMSService* const service = makeDevice();
  Delegate* const delegate = [[Delegate alloc] init];
  bool isGone = false;  ///< the service was released by the test
};

class ToABundleService : public DeviceToDevice {
 protected:
  ToABundleService() {
    [other setDeviceInformation:[NSDictionary dictionaryWithObject:@"Pocket Two" forKey:@"MN"]];
    [other addDiskInformation:disk(1, sandbox.folder("other"))];
    [delegate->services setObject:other forKey:@"location-2"];
  }
  UMSService* const other = makeService(@"location-2");
};

class ToAHostService : public DeviceToDevice {
 protected:
  ToAHostService() {
    NSMutableDictionary* volume =
        [NSMutableDictionary dictionaryWithDictionary:disk(1, sandbox.folder("host"))];
    [volume setObject:[NSNumber numberWithInt:0] forKey:@"diskIndex"];
    other->volumes = [[NSArray alloc] initWithObjects:volume, nil];
    [delegate->services setObject:other forKey:@"location-3"];
  }
  ~ToAHostService() override { [other release]; }
  HostService* const other = [[HostService alloc] init];
};

TEST_F(ToABundleService, FilesArriveAndAreReported) {
  NSArray* contents = [NSArray arrayWithObjects:song("a.mp3"), song("b.mp3"), nil];
  ASSERT_TRUE(copyTo(@"location-2", contents));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(bytesOf(sandbox.at("other/Music/a.mp3")), bytesOf(internal + "/Music/a.mp3"));
  EXPECT_EQ(bytesOf(sandbox.at("other/Music/b.mp3")).size(), 10000u);
  NSDictionary* result = [[[ear named:kItemResult] objectAtIndex:0] userInfo];
  EXPECT_EQ(text([result objectForKey:@"LocationId"]), "location-2");
  EXPECT_EQ(text([result objectForKey:@"MN"]), "Pocket Two");
  NSDictionary* progress = [[[ear named:kProgress] objectAtIndex:0] userInfo];
  EXPECT_EQ(text([progress objectForKey:@"LocationId"]), "location-1");
  EXPECT_EQ(number(progress, @"CurrentProgress"), 50);
  EXPECT_EQ(number([[[ear named:kUmsResult] lastObject] userInfo], @"Status"), 0);
}

TEST_F(ToABundleService, TheGoodFilesOfAnOddListArrive) {
  id elements[] = {nil, song("a.mp3"), @"a text", [NSNull null]};
  NSArray* odd = [[[OddArray alloc] initWithElements:elements count:std::size(elements)] autorelease];
  ASSERT_TRUE(copyTo(@"location-2", odd));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(bytesOf(sandbox.at("other/Music/a.mp3")).size(), 10000u);
  EXPECT_EQ([[ear named:kItemResult] count], 1u);
  EXPECT_EQ(number([[[ear named:kProgress] lastObject] userInfo], @"Fail"), 3);
}

TEST_F(ToABundleService, ACancelStopsTheCopy) {
  Hearing hearing = onEach([&](NSNotification* notification) {
    if ([[notification name] isEqualToString:kItemResult]) [service cancelFileAction:31];
  });
  ASSERT_TRUE(copyTo(@"location-2", [NSArray arrayWithObjects:song("a.mp3"), song("b.mp3"), nil]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_FALSE(exists(sandbox.at("other/Music/b.mp3")));
}

TEST_F(ToABundleService, AVolumeOrADeviceThatIsNotThereIsRefused) {
  NSArray* contents = [NSArray arrayWithObject:song("a.mp3")];
  EXPECT_FALSE(copyTo(@"location-2", contents, 5));
  EXPECT_FALSE(copyTo(@"location-9", contents));
  EXPECT_EQ([[ear named:nil] count], 0u);
}

TEST_F(ToABundleService, TheDeviceMayGoWhileItIsWrittenTo) {
  UMSService* gone = takeOver(other);
  std::atomic<bool> letGo = false;
  Hearing hearing = onEach([&](NSNotification* notification) {
    if (![[notification name] isEqualToString:kItemResult] || letGo.exchange(true)) return;
    [delegate->services removeAllObjects];
    [gone release];
  });
  ASSERT_TRUE(copyTo(@"location-2", [NSArray arrayWithObjects:song("a.mp3"), song("b.mp3"), nil]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_TRUE(exists(sandbox.at("other/Music/b.mp3"))) << "the service is retained for the run";
}

TEST_F(ToABundleService, ACancelStopsAFileInTheMiddle) {
  NSDictionary* large = content(sandbox.patternFile("internal/Music/large.mp3", 3000000), "large.mp3");
  Hearing hearing = onEach([&](NSNotification* notification) {
    if ([[notification name] isEqualToString:kProgress]) [service cancelFileAction:31];
  });
  ASSERT_TRUE(copyTo(@"location-2", [NSArray arrayWithObject:large]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_LT(bytesOf(sandbox.at("other/Music/large.mp3")).size(), 3000000u);
  EXPECT_FALSE([service isCancelServiceId:31]);
}

TEST_F(ToAHostService, EachFileIsHandedOverWithItsOwnDictionary) {
  NSDictionary* given = song("a.mp3");
  ASSERT_TRUE(copyTo(@"location-3", [NSArray arrayWithObject:given]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  ASSERT_EQ([other->written count], 1u);
  NSArray* call = [other->written objectAtIndex:0];
  EXPECT_EQ([call objectAtIndex:0], given);
  EXPECT_EQ(text([call objectAtIndex:1]), "(none)");
  EXPECT_EQ([[call objectAtIndex:2] unsignedIntValue], 0u);
  EXPECT_EQ([[call objectAtIndex:3] unsignedIntValue], 1u);
  EXPECT_TRUE(other->progressAnswer);
  NSDictionary* progress = [[[ear named:kProgress] objectAtIndex:0] userInfo];
  EXPECT_EQ(text([progress objectForKey:@"MN"]), "Host Player");
}

TEST_F(ToAHostService, TheCallbackIsTheServiceAndTheContextTheRunsNotifier) {
  ASSERT_TRUE(copyTo(@"location-3", [NSArray arrayWithObjects:song("a.mp3"), song("b.mp3"), nil]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ([other->callbacks count], 1u);
  EXPECT_EQ([other->contexts count], 1u) << "one notifier for the run";
  id callback = other->keptCallback;
  EXPECT_TRUE([callback isEqual:service]);
  EXPECT_TRUE([service isEqual:callback]);
  EXPECT_EQ([callback hash], [service hash]);
  EXPECT_TRUE([callback isKindOfClass:[service class]]);
  EXPECT_EQ([callback class], [service class]);
  EXPECT_TRUE([callback conformsToProtocol:@protocol(OVFileService)]);
  EXPECT_TRUE([callback respondsToSelector:@selector(fileExistsAtPath:isDirectory:)]);
  EXPECT_FALSE([callback respondsToSelector:@selector(friendlyName)]);
  EXPECT_EQ(text([callback locationID]), "location-1");
  EXPECT_EQ(text([callback description]), text([service description]));
  EXPECT_EQ([callback fileSizeAtDevice:string(internal + "/Music/a.mp3")], 10000u);
}

TEST_F(ToAHostService, WhatTheServiceKeepsAfterTheRunIsStillGood) {
  ASSERT_TRUE(copyTo(@"location-3", [NSArray arrayWithObject:song("a.mp3")]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  OVUmsDeviceNotifier* kept = other->keptContext;
  EXPECT_TRUE([kept isKindOfClass:bundleClass(@"OVUmsDeviceNotifier")]);
  EXPECT_EQ([kept serviceID], 31u);
  EXPECT_EQ(text([kept destLocationID]), "location-3");
  EXPECT_EQ([kept currentTransferStatus], 4);
  [kept cancelFileTransfer];
  EXPECT_FALSE([other->keptCallback transferProgressInfoEx:kept maxTransferSize:6 currentTransferSize:6]);
}

TEST_F(ToAHostService, WhatTheServiceKeepsOutlivesTheOneThatCopied) {
  ASSERT_TRUE(copyTo(@"location-3", [NSArray arrayWithObject:song("a.mp3")]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  [takeOver(service) release];
  isGone = true;
  EXPECT_EQ([other->keptCallback locationID], nil);
  EXPECT_EQ([other->keptCallback freeSpace:0 diskIndex:0], 0u);
  EXPECT_FALSE([other->keptCallback transferProgressInfoEx:other->keptContext
                                           maxTransferSize:6
                                       currentTransferSize:6]);
  EXPECT_EQ([static_cast<OVUmsDeviceNotifier*>(other->keptContext) serviceID], 31u);
}

TEST_F(ToAHostService, TheContextMayBeUsedOnOtherThreadsWhileRunsEnd) {
  std::atomic<bool> over = false;
  std::atomic<int> looks = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      while (!over) {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        OVUmsDeviceNotifier* context = nil;
        id callback = nil;
        @synchronized(other) {
          context = [[other->keptContext retain] autorelease];
          callback = [[other->keptCallback retain] autorelease];
        }
        if ([context serviceID] == 31) ++looks;
        [context setFilePath:[context filePath]];
        [callback transferProgressInfoEx:context maxTransferSize:6 currentTransferSize:6];
        [pool release];
      }
    });
  }
  NSArray* contents = [NSArray arrayWithObjects:song("a.mp3"), song("b.mp3"), nil];
  for (NSUInteger run = 1; run <= 30; ++run) {
    ASSERT_TRUE(copyTo(@"location-3", contents));
    ASSERT_TRUE([ear waitFor:kUmsResult count:run]);
  }
  EXPECT_TRUE(eventually([&] { return looks > 0; }));
  over = true;
  for (std::thread& thread : threads) thread.join();
}

TEST_F(ToAHostService, ADeviceWithoutVolumesIsRefused) {
  [other->volumes release];
  other->volumes = nil;
  EXPECT_FALSE(copyTo(@"location-3", [NSArray arrayWithObject:song("a.mp3")]));
  EXPECT_EQ([[ear named:nil] count], 0u);
}

TEST_F(ToAHostService, ThatMakesNoFoldersCountsAChannelAsFailed) {
  NSDictionary* episode = [NSDictionary
      dictionaryWithObjectsAndKeys:[song("a.mp3") objectForKey:@"FilePath"], @"FilePath", @"u", @"Url", nil];
  NSDictionary* channel = [NSDictionary
      dictionaryWithObjectsAndKeys:@"News", @"Title", [NSArray arrayWithObject:episode], @"children", nil];
  ASSERT_TRUE([service copyContentsDeviceToDevice:31
                                         contents:[NSArray arrayWithObject:channel]
                                    srcLocationId:@"location-1"
                                   destLocationId:@"location-3"
                                        mediaType:4
                                 destStorageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ([other->written count], 0u);
  EXPECT_EQ(number([[[ear named:kProgress] lastObject] userInfo], @"Fail"), 1);
  EXPECT_EQ(number([[[ear named:kUmsResult] lastObject] userInfo], @"Status"), 0x23000001);
}

TEST_F(ToAHostService, AnExistingFileIsAskedAboutAndWrittenAgain) {
  other->nextError = 0x21000002;
  delegate->answer = delegate->isOverwrite = delegate->isNotAsk = YES;
  ASSERT_TRUE(copyTo(@"location-3", [NSArray arrayWithObjects:song("a.mp3"), song("b.mp3"), nil]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(texts(delegate->asked), std::vector<std::string>{internal + "/Music/a.mp3"});
  EXPECT_EQ(*other->overwrites, (std::vector<bool>{false, true, false, true}));
}

TEST_F(ToAHostService, ADeclinedFileIsSkipped) {
  other->nextError = 0x21000002;
  delegate->answer = NO;
  ASSERT_TRUE(copyTo(@"location-3", [NSArray arrayWithObjects:song("a.mp3"), song("b.mp3"), nil]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ([delegate->asked count], 1u);
  EXPECT_EQ(*other->overwrites, (std::vector<bool>{false, false}));
  EXPECT_EQ(number([[[ear named:kItemResult] lastObject] userInfo], @"ResultStatus"), 0x21000002);
}

class OverwriteQuestion : public DeviceToDevice {};

TEST_F(OverwriteQuestion, IsAskedOnCopiesToTheDeviceToo) {
  const std::string there = sandbox.file("card/Music/a.mp3", "old");
  NSArray* contents = [NSArray arrayWithObject:song("a.mp3")];
  delegate->answer = delegate->isOverwrite = YES;
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:1]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(texts(delegate->asked), std::vector<std::string>{internal + "/Music/a.mp3"});
  EXPECT_EQ(bytesOf(there).size(), 10000u);
}

TEST_F(OverwriteQuestion, GoesToADelegateThatIsNotRetained) {
  EXPECT_EQ([delegate retainCount], 1u);
  [service setConfirmDelegate:nil];
  delegate->answer = NO;
  sandbox.file("card/Music/a.mp3", "old");
  ASSERT_TRUE([service copyContentsMacToDevice:1
                                      contents:[NSArray arrayWithObject:song("a.mp3")]
                                     mediaType:1
                                  storageIndex:1]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ([delegate->asked count], 1u) << "nil leaves the old one in place";
}

}  // namespace
}  // namespace umsplugin::testing
