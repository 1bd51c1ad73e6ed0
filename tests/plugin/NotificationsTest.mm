/// The three notifications: every key, its class, its value; and where they are posted.
#include <atomic>

#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class Notifications : public HostTest {
 protected:
  static std::vector<std::string> keysOf(NSDictionary* info) {
    return texts([[info allKeys] sortedArrayUsingSelector:@selector(compare:)]);
  }
  /// All values are numbers, but for those of the given keys, which are texts.
  static void expectClasses(NSDictionary* info, NSArray* textKeys) {
    NSEnumerator* keys = [info keyEnumerator];
    while (NSString* key = [keys nextObject]) {
      Class expected = [textKeys containsObject:key] ? [NSString class] : [NSNumber class];
      EXPECT_TRUE([[info objectForKey:key] isKindOfClass:expected]) << text(key);
    }
  }
  /// Every number is what the platform makes of that amount in 32 bits, signed or not.
  static void expectWidths(NSDictionary* info, bool isSigned, NSString* except = nil) {
    NSEnumerator* keys = [info keyEnumerator];
    while (NSString* key = [keys nextObject]) {
      id value = [info objectForKey:key];
      if (![value isKindOfClass:[NSNumber class]] || [key isEqualToString:except]) continue;
      NSNumber* expected = isSigned ? [NSNumber numberWithInt:[value intValue]]
                                    : [NSNumber numberWithUnsignedInt:[value unsignedIntValue]];
      EXPECT_TRUE([value isEqualToNumber:expected]) << text(key);
      EXPECT_STREQ([value objCType], [expected objCType]) << text(key);
    }
  }

  UMSService* const service = makeDevice();
};

TEST_F(Notifications, OfARequestCarryNumbersOf32SignedBits) {
  _serviceinfo record = {};
  record.serviceID = 0xFFFFFFFF;
  record.filePath = @"/from";
  record.destPath = @"/to";
  [service sendResultEvent:&record
                 eventType:1
                    status:0x23000001
               errornumber:516
                 diskSpace:0xFFFFFFFF80000000
              storageIndex:2];
  NSNotification* posted = [[ear named:kUmsResult] lastObject];
  EXPECT_EQ([posted object], nil);
  NSDictionary* info = [posted userInfo];
  EXPECT_EQ(keysOf(info), (std::vector<std::string>{"DestPath", "DiskSize", "ErrorNumber", "EventType",
                                                    "ServiceID", "SourcePath", "Status", "VolumeIndex"}));
  expectClasses(info, [NSArray arrayWithObjects:@"SourcePath", @"DestPath", nil]);
  expectWidths(info, true, @"DiskSize");
  EXPECT_EQ(number(info, @"ServiceID"), -1);
  EXPECT_EQ(number(info, @"EventType"), 1);
  EXPECT_EQ(number(info, @"Status"), 0x23000001);
  EXPECT_EQ(number(info, @"ErrorNumber"), 516);
  EXPECT_EQ([[info objectForKey:@"DiskSize"] unsignedLongLongValue], 0xFFFFFFFF80000000);
  EXPECT_EQ(*[[info objectForKey:@"DiskSize"] objCType], 'Q');
  EXPECT_EQ(number(info, @"VolumeIndex"), 2);
  EXPECT_EQ(text([info objectForKey:@"SourcePath"]), "/from");
  EXPECT_EQ(text([info objectForKey:@"DestPath"]), "/to");
}

TEST_F(Notifications, OfARequestWithoutPathsHaveNone) {
  _serviceinfo record = {};
  [service sendResultEvent:&record eventType:1 status:0 errornumber:0 diskSpace:0 storageIndex:0];
  EXPECT_EQ([[[[ear named:kUmsResult] lastObject] userInfo] count], 6u);
  [service sendResultEvent:NULL eventType:1 status:0 errornumber:0 diskSpace:0 storageIndex:0];
  EXPECT_EQ([[ear named:kUmsResult] count], 1u) << "no record, no result";
}

TEST_F(Notifications, OfACancelCarryNumbersOf32UnsignedBits) {
  [service sendCancelProgressEvent:0xFFFFFFFE
                        locationId:nil
                         mediaType:2
                       currentFile:3
                           maxFile:4
                    transferStatus:3];
  NSDictionary* info = [[[ear named:kProgress] lastObject] userInfo];
  EXPECT_EQ(keysOf(info), (std::vector<std::string>{"Current", "LocationId", "Max", "MediaNotiType",
                                                    "ServiceID", "TransferStatus"}));
  expectClasses(info, [NSArray arrayWithObject:@"LocationId"]);
  expectWidths(info, false);
  EXPECT_EQ(number(info, @"ServiceID"), 0xFFFFFFFE);
  EXPECT_EQ(number(info, @"MediaNotiType"), 2);
  EXPECT_EQ(number(info, @"TransferStatus"), 3);
  EXPECT_EQ(number(info, @"Current"), 3);
  EXPECT_EQ(number(info, @"Max"), 4);
  EXPECT_EQ(text([info objectForKey:@"LocationId"]), "location-1");
}

TEST_F(Notifications, OfACopyComeInOrderWithTheirKeys) {
  const std::string song = sandbox.file("mac/söng.mp3", "song bytes");
  NSArray* contents = [NSArray arrayWithObject:content(song, "söng.mp3")];
  ASSERT_TRUE([service copyContentsMacToDevice:0xFFFFFFFF contents:contents mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  NSArray* all = [ear named:nil];
  ASSERT_EQ([all count], 4u);
  EXPECT_EQ(text([[all objectAtIndex:0] name]), text(kProgress));
  EXPECT_EQ(text([[all objectAtIndex:1] name]), text(kItemResult));
  EXPECT_EQ(text([[all objectAtIndex:2] name]), text(kProgress));
  EXPECT_EQ(text([[all objectAtIndex:3] name]), text(kUmsResult));

  NSDictionary* progress = [[all objectAtIndex:0] userInfo];
  EXPECT_EQ(keysOf(progress),
            (std::vector<std::string>{"Current", "CurrentProgress", "Fail", "FileName", "LocationId", "MN",
                                      "Max", "MaxProgress", "MediaNotiType", "ServiceID", "TransferStatus"}));
  expectClasses(progress, [NSArray arrayWithObjects:@"FileName", @"LocationId", @"MN", nil]);
  EXPECT_EQ(number(progress, @"ServiceID"), 0xFFFFFFFF);
  expectWidths(progress, false);
  EXPECT_EQ(number(progress, @"MediaNotiType"), 1);
  EXPECT_EQ(number(progress, @"MaxProgress"), 100);
  EXPECT_EQ(number(progress, @"Current"), 1);
  EXPECT_EQ(number(progress, @"Max"), 1);
  EXPECT_EQ(number(progress, @"Fail"), 0);
  EXPECT_EQ(number(progress, @"TransferStatus"), 2);
  EXPECT_EQ(number(progress, @"CurrentProgress"), 100);
  EXPECT_EQ(text([progress objectForKey:@"FileName"]), "söng.mp3");
  EXPECT_EQ(text([progress objectForKey:@"MN"]), "Pocket One");

  NSDictionary* result = [[all objectAtIndex:1] userInfo];
  EXPECT_EQ(keysOf(result), (std::vector<std::string>{"FilePath", "LocationId", "MN", "MediaNotiType",
                                                      "ResultStatus", "ServiceID", "VolumeIndex"}));
  expectClasses(result, [NSArray arrayWithObjects:@"FilePath", @"LocationId", @"MN", nil]);
  expectWidths(result, false);
  EXPECT_EQ(number(result, @"ServiceID"), 0xFFFFFFFF);
  EXPECT_EQ(number(result, @"MediaNotiType"), 1);
  EXPECT_EQ(number(result, @"VolumeIndex"), 0);
  EXPECT_EQ(number(result, @"ResultStatus"), 0x10000001);
  EXPECT_EQ(text([result objectForKey:@"FilePath"]), internal + "/Music/söng.mp3");

  EXPECT_EQ(number([[all objectAtIndex:2] userInfo], @"TransferStatus"), 4);
  EXPECT_EQ(text([[[all objectAtIndex:3] userInfo] objectForKey:@"DestPath"]), internal + "/Music");
}

TEST_F(Notifications, ComeOnOneThreadOfTheServiceThatTheRuntimeKnows) {
  std::vector<NSThread*> threads;
  std::atomic<size_t> seen = 0;
  Hearing hearing = onEach([&](NSNotification*) {
    NSThread* current = [NSThread currentThread];
    [[current threadDictionary] setObject:@"seen" forKey:@"test"];
    threads.push_back([current retain]);
    seen = threads.size();
  });
  const std::string song = sandbox.file("mac/song.mp3", "song bytes");
  NSArray* contents = [NSArray arrayWithObject:content(song, "song.mp3")];
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  ASSERT_TRUE(eventually([&] { return [[ear named:nil] count] == seen; }));
  for (NSThread* thread : threads) {
    EXPECT_EQ(thread, threads.front());
    EXPECT_NE(thread, [NSThread mainThread]);
    EXPECT_FALSE([thread isMainThread]);
    EXPECT_EQ(text([[thread threadDictionary] objectForKey:@"test"]), "seen");
    [thread release];
  }
}

}  // namespace
}  // namespace umsplugin::testing
