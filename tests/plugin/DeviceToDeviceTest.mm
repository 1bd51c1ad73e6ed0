/// Copies from one device to another: both served by the bundle, or one by the host itself.
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
}
@end

@implementation HostService
- (id)init {
  if ((self = [super init])) {
    written = [[NSMutableArray alloc] init];
    overwrites = new std::vector<bool>;
  }
  return self;
}
- (void)dealloc {
  delete overwrites;
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
  [keptCallback release];
  [keptContext release];
  keptCallback = [callbackObject retain];
  keptContext = [context retain];
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
    [service setConfirmDelegate:[NSNull null]];
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
  onEach([&](NSNotification* notification) {
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
  onEach([&](NSNotification* notification) {
    if ([[notification name] isEqualToString:kItemResult]) [delegate->services removeAllObjects];
  });
  ASSERT_TRUE(copyTo(@"location-2", [NSArray arrayWithObjects:song("a.mp3"), song("b.mp3"), nil]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_TRUE(exists(sandbox.at("other/Music/b.mp3"))) << "the service is retained for the run";
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

TEST_F(ToAHostService, WhatTheServiceKeepsAfterTheCallIsDeaf) {
  ASSERT_TRUE(copyTo(@"location-3", [NSArray arrayWithObject:song("a.mp3")]));
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  const NSUInteger before = [[ear named:nil] count];
  EXPECT_TRUE([other->keptContext isKindOfClass:bundleClass(@"OVUmsDeviceNotifier")]);
  EXPECT_FALSE([other->keptCallback transferProgressInfoEx:other->keptContext
                                           maxTransferSize:6
                                       currentTransferSize:6]);
  OVUmsDeviceNotifier* kept = other->keptContext;
  [kept cancelFileTransfer];
  [kept setFilePath:@"/x"];
  EXPECT_EQ([kept filePath], nil);
  EXPECT_EQ([kept serviceID], 0u);
  EXPECT_FALSE([service transferProgressInfoEx:kept maxTransferSize:6 currentTransferSize:6]);
  EXPECT_EQ([[ear named:nil] count], before);
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
