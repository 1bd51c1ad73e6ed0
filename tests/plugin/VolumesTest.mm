/// The volume list as a host sees it: the live list, its elements, and the lookups.
#include <thread>

#include "HostTest.h"
#include "Try.h"

namespace umsplugin::testing {
namespace {

class Volumes : public HostTest {
 protected:
  UMSService* const service = makeService(@"location-1");
};

TEST_F(Volumes, AreOneListThatShowsLaterChanges) {
  NSMutableArray* list = [service diskInformation];
  EXPECT_TRUE([list isKindOfClass:[NSMutableArray class]]);
  EXPECT_EQ([list count], 0u);
  [service addDiskInformation:disk(2, card)];
  [service addDiskInformation:disk(1, internal)];
  EXPECT_EQ([service diskInformation], list);
  ASSERT_EQ([list count], 2u);
  EXPECT_EQ(text([[list objectAtIndex:0] objectForKey:@"volumePath"]), internal);
  EXPECT_EQ(number([list objectAtIndex:0], @"diskIndex"), 0);
  EXPECT_EQ(text([[list lastObject] objectForKey:@"volumePath"]), card);
  EXPECT_EQ(number([list lastObject], @"diskIndex"), 1);
}

TEST_F(Volumes, AreMutableDictionariesThatStayTheSameObjects) {
  [service addDiskInformation:disk(1, internal)];
  NSMutableDictionary* volume = [[service diskInformation] objectAtIndex:0];
  EXPECT_TRUE([volume isKindOfClass:[NSMutableDictionary class]]);
  EXPECT_EQ([[service diskInformation] objectAtIndex:0], volume);
  EXPECT_EQ([service diskInfoFromIndex:0], volume);
  EXPECT_EQ([service diskInfoFromDiskInfoList:[service diskInformation] index:0], volume);
  [volume setObject:@"/elsewhere" forKey:@"volumePath"];
  EXPECT_EQ(text([service diskVolumeNameFromIndex:0]), "/elsewhere");
  [volume removeObjectForKey:@"volumePath"];
  EXPECT_EQ([service diskVolumeNameFromIndex:0], nil);
}

TEST_F(Volumes, TakeWhatTheHostDoesToTheListItself) {
  NSMutableArray* list = [service diskInformation];
  NSMutableDictionary* byHand = [NSMutableDictionary dictionaryWithDictionary:disk(1, internal)];
  [byHand setObject:[NSNumber numberWithUnsignedInt:7] forKey:@"diskIndex"];
  [list addObject:byHand];
  EXPECT_EQ(text([service volumePath:7]), internal);
  EXPECT_EQ([list objectAtIndex:0], byHand);
  [list insertObject:disk(2, card) atIndex:0];
  EXPECT_EQ([list objectAtIndex:1], byHand);
  [list replaceObjectAtIndex:0 withObject:byHand];
  [list removeLastObject];
  EXPECT_EQ([list count], 1u);
  [list removeObjectAtIndex:0];
  EXPECT_EQ([service volumePath:7], nil);
  EXPECT_EQ(text(exceptionIn([&] { [list objectAtIndex:0]; })), text(NSRangeException));
  EXPECT_EQ(text(exceptionIn([&] { [list removeObjectAtIndex:3]; })), text(NSRangeException));
  EXPECT_EQ(text(exceptionIn([&] { [list insertObject:byHand atIndex:1]; })), text(NSRangeException));
}

TEST_F(Volumes, AreWalkedLikeOtherCollections) {
  [service addDiskInformation:disk(1, internal)];
  [service addDiskInformation:disk(2, card)];
  NSMutableArray* list = [service diskInformation];
  ASSERT_EQ([seenInLoop(list) count], 2u);
  NSDictionary* volume = [seenInLoop(list) objectAtIndex:1];
  EXPECT_EQ(volume, [list objectAtIndex:1]);
  EXPECT_EQ([seenInLoop(volume) count], 3u);
  EXPECT_EQ([[volume allValues] count], 3u);
  EXPECT_EQ([[[volume objectEnumerator] allObjects] count], 3u);
  EXPECT_NE([NSJSONSerialization dataWithJSONObject:list options:0 error:NULL], nil);
  NSSortDescriptor* byIndex = [[[NSSortDescriptor alloc] initWithKey:@"diskIndex" ascending:NO] autorelease];
  [list sortUsingDescriptors:[NSArray arrayWithObject:byIndex]];
  EXPECT_EQ(text([[list objectAtIndex:0] objectForKey:@"volumePath"]), card);
  [list filterUsingPredicate:[NSPredicate predicateWithFormat:@"diskType == 1"]];
  ASSERT_EQ([list count], 1u);
  EXPECT_EQ(text([service volumePath:0]), internal);
  [list removeAllObjects];
  EXPECT_EQ([service diskInfoFromIndex:0], nil);
  EXPECT_EQ(text(exceptionIn([&] { [list removeLastObject]; })), text(NSRangeException));
}

TEST_F(Volumes, AreNotLostWhileTheHostChangesTheListItself) {
  constexpr int kEach = 300;
  NSMutableArray* list = [service diskInformation];
  NSDictionary* byHand = disk(1, internal);
  std::thread host([&] {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    for (int i = 0; i < kEach; ++i) {
      [list addObject:byHand];
      [list insertObject:byHand atIndex:0];
      [list replaceObjectAtIndex:0 withObject:byHand];
    }
    [pool release];
  });
  for (int i = 0; i < kEach; ++i) [service addDiskInformation:disk(2, card)];
  host.join();
  size_t added = 0;
  for (NSUInteger i = 0; i < [list count]; ++i) added += number([list objectAtIndex:i], @"diskType") == 2;
  EXPECT_EQ([list count], 3u * kEach);
  EXPECT_GE(added, 1u);
}

TEST_F(Volumes, CopyLikeOtherCollections) {
  [service addDiskInformation:disk(1, internal)];
  NSArray* copy = [[[service diskInformation] copy] autorelease];
  NSDictionary* volume = [[[copy objectAtIndex:0] copy] autorelease];
  EXPECT_TRUE([volume isEqualToDictionary:[copy objectAtIndex:0]]);
  [service removeDiskInformation:[copy objectAtIndex:0]];
  EXPECT_EQ([[service diskInformation] count], 0u);
  EXPECT_EQ([copy count], 1u);
  EXPECT_EQ(text([volume objectForKey:@"volumePath"]), internal);
  EXPECT_EQ([volume count], 3u);
}

TEST_F(Volumes, LeaveOnlyByTheDictionaryThatTheListHolds) {
  [service addDiskInformation:disk(1, internal)];
  [service addDiskInformation:disk(2, card)];
  [service removeDiskInformation:disk(1, internal)];
  EXPECT_EQ([[service diskInformation] count], 2u);
  NSMutableDictionary* same = [NSMutableDictionary dictionaryWithDictionary:disk(1, internal)];
  [same setObject:[NSNumber numberWithInt:0] forKey:@"diskIndex"];
  [service removeDiskInformation:same];
  ASSERT_EQ([[service diskInformation] count], 1u);
  EXPECT_EQ(number([[service diskInformation] objectAtIndex:0], @"diskIndex"), 1);
}

TEST_F(Volumes, KeepWhatTheHostPutIntoTheirDictionaries) {
  NSDate* date = [NSDate dateWithTimeIntervalSince1970:1000];
  NSMutableDictionary* given = [NSMutableDictionary dictionaryWithDictionary:disk(1, internal)];
  [given setObject:date forKey:@"mounted"];
  [given setObject:[NSNumber numberWithBool:YES] forKey:@"writable"];
  [given setObject:[NSArray arrayWithObject:@"a"] forKey:@"names"];
  [given setObject:@"seven" forKey:[NSNumber numberWithInt:7]];
  [service addDiskInformation:given];
  NSDictionary* held = [service diskInfoFromIndex:0];
  EXPECT_EQ([held objectForKey:@"mounted"], date);
  EXPECT_EQ([held objectForKey:@"names"], [given objectForKey:@"names"]);
  EXPECT_TRUE([[held objectForKey:@"writable"] isEqual:[NSNumber numberWithBool:YES]]);
  EXPECT_EQ(text([held objectForKey:[NSNumber numberWithInt:7]]), "seven") << "keys that are no texts too";
  EXPECT_EQ([given count], 6u) << "the host's own dictionary is not touched";
}

TEST_F(Volumes, AnswerTheLookupsByIndexAndOption) {
  EXPECT_EQ([service diskInfoFromIndex:0], nil);
  [service addDiskInformation:disk(1, internal)];
  [service addDiskInformation:disk(2, card)];
  unsigned int index = 9;
  EXPECT_EQ(text([service volumePathWithOption:NO index:&index]), card);
  EXPECT_EQ(index, 1u);
  EXPECT_EQ(text([service volumePathWithOption:YES index:&index]), internal);
  EXPECT_EQ(index, 0u);
  EXPECT_EQ(text([service volumePathWithOption:YES index:NULL]), internal);
  EXPECT_EQ([service volumePath:5], nil);
  NSArray* others = [NSArray
      arrayWithObject:[NSDictionary dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:4], @"diskIndex",
                                                                 @"/m", @"DefaultMusicPath", nil]];
  EXPECT_EQ([service diskInfoFromDiskInfoList:others index:4], [others objectAtIndex:0]);
  EXPECT_EQ([service diskInfoFromDiskInfoList:nil index:4], nil);
  NSArray* own = [NSArray arrayWithArray:[service diskInformation]];
  EXPECT_EQ([service diskInfoFromDiskInfoList:own index:1], [own objectAtIndex:1]);
  EXPECT_EQ(text([service defaultMediaContentsPath:others index:4 mediaType:1]), "/m");
}

TEST_F(Volumes, HaveSpaceInBytes) {
  [service addDiskInformation:disk(1, internal)];
  EXPECT_GT([service totalSpace:1 diskIndex:0], [service freeSpace:1 diskIndex:0]);
  EXPECT_EQ([service freeSpace:1 diskIndex:3], 0u);
  EXPECT_GT([service volumeFreeSpace:string(internal)], 0u);
  EXPECT_EQ([service volumeFreeSpace:nil], 0u);
}

TEST_F(Volumes, HaveFixedFoldersWithoutAProfile) {
  [service addDiskInformation:disk(1, internal)];
  EXPECT_EQ(text([service defaultMediaContentsPath:@"/V" diskType:1 mediaType:1]), "/V/Music");
  EXPECT_EQ(text([service defaultMediaContentsPath:@"/V" diskType:2 mediaType:3]), "/V/DCIM/Camera");
  EXPECT_EQ([service defaultMediaContentsPath:@"/V" diskType:1 mediaType:6], nil);
  EXPECT_EQ(text([service defaultUmsMediaPath:0 mediaType:4]), "Podcast");
  EXPECT_EQ([service defaultUmsMediaPath:1 mediaType:4], nil);
  EXPECT_EQ(text([service getMediaDefaultPath:2]), "/DCIM/Camera/");
}

}  // namespace
}  // namespace umsplugin::testing
