/// What the host's objects raise: it ends the request that asked them, and nothing else.
#ifdef __linux__
#include <malloc.h>
#endif

#include <atomic>
#include <thread>

#include "HostTest.h"
#include "Try.h"

static void raise(NSString* what) {
  [NSException raise:@"TestException" format:@"raised by %@", what];
}

/// A list that raises at its last element.
@interface RaisingArray : NSArray {
 @public
  id first;
}
@end
@implementation RaisingArray
- (void)dealloc {
  [first release];
  [super dealloc];
}
- (NSUInteger)count {
  return 2;
}
- (id)objectAtIndex:(NSUInteger)index {
  if (index == 1) raise(@"a list");
  return first;
}
@end

static int attempts;
static std::atomic<bool> isFrail;

/// A dictionary that calls itself mutable and is not.
@interface FrozenDictionary : NSMutableDictionary {
 @public
  NSDictionary* contents;
}
@end
@implementation FrozenDictionary
- (void)dealloc {
  [contents release];
  [super dealloc];
}
- (NSUInteger)count {
  return [contents count];
}
- (id)objectForKey:(id)key {
  return [contents objectForKey:key];
}
- (NSEnumerator*)keyEnumerator {
  return [contents keyEnumerator];
}
- (void)setObject:(id)object forKey:(id)key {
  ++attempts;
  raise(@"a frozen dictionary");
}
- (void)removeObjectForKey:(id)key {
  raise(@"a frozen dictionary");
}
@end

/// One that raises at every look besides, once it has become frail.
@interface FrailDictionary : FrozenDictionary {
}
@end
@implementation FrailDictionary
- (id)objectForKey:(id)key {
  if (isFrail) raise(@"a frail dictionary");
  return [super objectForKey:key];
}
@end

/// Raises from its second lookup on: the first is made by the host's own call.
@interface RaisingDelegate : NSObject {
 @public
  id service;
  int lookups;
  BOOL raisesLookups;
}
@end
@implementation RaisingDelegate
- (BOOL)confirmOverwrite:(NSString*)path isOverwrite:(BOOL*)isOverwrite isNotAsk:(BOOL*)isNotAsk {
  raise(@"a question");
  return NO;
}
- (id)getFileServiceObject:(NSString*)locationID {
  if (raisesLookups && ++lookups > 1) raise(@"a lookup");
  return service;
}
@end

/// A file service that raises in the middle of a write.
@interface RaisingService : NSObject {
 @public
  NSArray* volumes;
}
@end
@implementation RaisingService
- (NSArray*)diskInformation {
  return volumes;
}
- (BOOL)syncWriteFileToDevice:(NSDictionary*)fileInformation
                subFolderName:(NSString*)subFolderName
                    diskIndex:(unsigned int)diskIndex
                    mediaType:(unsigned int)mediaType
                  isOverWrite:(BOOL)isOverWrite
               callbackObject:(id)callbackObject
                      context:(id)context
                        error:(unsigned int*)error {
  raise(@"a write");
  return YES;
}
@end

namespace umsplugin::testing {
namespace {

class Exceptions : public HostTest {
 protected:
  Exceptions() {
    delegate->service = other;
    NSMutableDictionary* volume = [NSMutableDictionary dictionaryWithDictionary:disk(1, card)];
    [volume setObject:[NSNumber numberWithInt:0] forKey:@"diskIndex"];
    other->volumes = [NSArray arrayWithObject:volume];
    [service setConfirmDelegate:delegate];
    raising->first = [song retain];
  }

  BOOL copy(unsigned int serviceID, NSArray* contents, unsigned int storageIndex = 0) {
    return [service copyContentsMacToDevice:serviceID
                                   contents:contents
                                  mediaType:1
                               storageIndex:storageIndex];
  }
  BOOL copyToTheOther(unsigned int serviceID) {
    return [service copyContentsDeviceToDevice:serviceID
                                      contents:[NSArray arrayWithObject:song]
                                 srcLocationId:@"location-1"
                                destLocationId:@"location-2"
                                     mediaType:1
                              destStorageIndex:0];
  }
  /// The host hears of the end of a request that failed, and the worker serves the next one.
  void expectEndAndAGoodWorker(unsigned int serviceID, bool hasResult = true) {
    ASSERT_TRUE(copy(99, [NSArray arrayWithObject:song], 1));
    ASSERT_TRUE(eventually([&] { return [resultOf(99) count] > 0; }));
    EXPECT_EQ(number(resultOf(99), @"Status"), 0);
    EXPECT_EQ([resultOf(serviceID) count] > 0, hasResult);
    if (hasResult) EXPECT_EQ(number(resultOf(serviceID), @"Status"), 0x23000001);
    EXPECT_EQ(endsOf(serviceID), (std::vector<int>{3})) << "told once";
    std::thread([this] {
      @synchronized(service) {
      }
    }).join();
  }
  /// The states of a request's progress that say that it is over.
  std::vector<int> endsOf(unsigned int serviceID) {
    std::vector<int> ends;
    NSArray* all = [ear named:kProgress];
    for (NSUInteger i = 0; i < [all count]; ++i) {
      NSDictionary* info = [[all objectAtIndex:i] userInfo];
      const int status = [[info objectForKey:@"TransferStatus"] intValue];
      if ([[info objectForKey:@"ServiceID"] unsignedIntValue] == serviceID && status != 2)
        ends.push_back(status);
    }
    return ends;
  }
  NSDictionary* lastOf(NSString* name, unsigned int serviceID) {
    NSDictionary* found = nil;
    NSArray* all = [ear named:name];
    for (NSUInteger i = 0; i < [all count]; ++i) {
      NSDictionary* info = [[all objectAtIndex:i] userInfo];
      if ([[info objectForKey:@"ServiceID"] unsignedIntValue] == serviceID) found = info;
    }
    return found;
  }
  NSDictionary* resultOf(unsigned int serviceID) { return lastOf(kUmsResult, serviceID); }

  UMSService* const service = makeDevice();
  NSDictionary* const song = content(sandbox.patternFile("mac/song.mp3", 10000), "song.mp3");
  RaisingArray* const raising = [[[RaisingArray alloc] init] autorelease];
  RaisingService* const other = [[[RaisingService alloc] init] autorelease];
  RaisingDelegate* const delegate = [[[RaisingDelegate alloc] init] autorelease];
};

TEST_F(Exceptions, OfAListEndItsRequest) {
  ASSERT_TRUE(copy(1, raising));
  expectEndAndAGoodWorker(1);
}

TEST_F(Exceptions, OfAListEndRequestsThatHaveNoResult) {
  ASSERT_TRUE([service syncContents:1 contents:raising mediaType:1 isStartInternal:YES]);
  expectEndAndAGoodWorker(1, false);
}

TEST_F(Exceptions, OfAListGoToTheHostThatAsksItself) {
  EXPECT_EQ(text(exceptionIn([&] { [service totalMediaContentsSize:raising]; })), "TestException");
  _serviceinfo record = {};
  record.command = 213;
  record.mediaType = 1;
  record.destPath = string(internal);
  record.contents = raising;
  EXPECT_EQ(text(exceptionIn([&] { [service doUmsFileService:&record]; })), "TestException");
  EXPECT_EQ([[ear named:kUmsResult] count], 0u) << "the host knows already";
}

TEST_F(Exceptions, OfWhatIsLookedAtAgainOnTheWayOutEndItsRequestOnce) {
  isFrail = false;
  FrailDictionary* frail = [[[FrailDictionary alloc] init] autorelease];
  frail->contents = [[NSDictionary alloc] initWithDictionary:song];
  {
    Hearing hearing = onEach([](NSNotification* posted) {
      if ([[posted name] isEqualToString:kItemResult]) isFrail = true;
    });
    ASSERT_TRUE(copy(1, [NSArray arrayWithObjects:song, frail, nil]));
    ASSERT_TRUE(eventually([&] { return [resultOf(1) count] > 0; }));
  }
  EXPECT_EQ(number(lastOf(kProgress, 1), @"Max"), 2) << "told by the run, which knows its files";
  expectEndAndAGoodWorker(1);
}

TEST_F(Exceptions, OfAnOverwriteQuestionEndItsRequest) {
  sandbox.file("internal/Music/song.mp3", "old");
  ASSERT_TRUE(copy(1, [NSArray arrayWithObject:song]));
  expectEndAndAGoodWorker(1);
  EXPECT_EQ(bytesOf(internal + "/Music/song.mp3"), "old");
}

TEST_F(Exceptions, OfALookupOfADeviceEndItsRequest) {
  delegate->raisesLookups = YES;
  ASSERT_TRUE(copyToTheOther(1));
  expectEndAndAGoodWorker(1);
}

TEST_F(Exceptions, OfAWriteToAnotherDeviceEndItsRequest) {
  ASSERT_TRUE(copyToTheOther(1));
  expectEndAndAGoodWorker(1);
}

TEST_F(Exceptions, OfADictionaryThatOnlySeemsMutableChangeACopy) {
  attempts = 0;
  FrozenDictionary* frozen = [[[FrozenDictionary alloc] init] autorelease];
  frozen->contents = [[NSDictionary alloc] initWithDictionary:song];
  NSDictionary* podcast = [NSDictionary
      dictionaryWithObjectsAndKeys:@"News", @"Title", [NSArray arrayWithObject:frozen], @"children", nil];
  EXPECT_EQ(text(exceptionIn([&] { [service makeEpisodeFullPath:podcast podcastChannelName:@"/x"]; })),
            "(no text)");
  EXPECT_EQ(attempts, 1);
  EXPECT_EQ([frozen objectForKey:@"FilePath"], [song objectForKey:@"FilePath"]);
}

#ifdef __linux__
TEST_F(Exceptions, OnTheWorkerLeaveNothingBehind) {
  auto run = [&](unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) {
      NSAutoreleasePool* inner = [[NSAutoreleasePool alloc] init];
      [service syncContents:1 contents:raising mediaType:1 isStartInternal:YES];
      [inner release];
    }
    NSArray* contents = [NSArray arrayWithObject:song];
    [ear forget];
    ASSERT_TRUE(copy(99, contents, 1));
    ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
    [ear forget];
  };
  run(500);
  const size_t before = mallinfo2().uordblks;
  run(2000);
  // One exception would be a kilobyte.
  EXPECT_LT(mallinfo2().uordblks, before + 2000 * 20) << "from " << before;
}
#endif

}  // namespace
}  // namespace umsplugin::testing
