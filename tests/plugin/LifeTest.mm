/// How services come and go: threads, pools, exceptions, releases at odd moments.
#ifdef __linux__
#include <dirent.h>
#include <malloc.h>
#endif

#include <atomic>
#include <fstream>
#include <thread>

#include "HostTest.h"
#include "StderrCapture.h"

#if defined(__SANITIZE_ADDRESS__)
// This compiler has them in its run-time and in none of its headers.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
extern "C" void __sanitizer_purge_allocator();
#endif

/// Counts its own end.
@interface Mayfly : NSObject
@end

static std::atomic<int> mayfliesGone;

@implementation Mayfly
- (void)dealloc {
  ++mayfliesGone;
  [super dealloc];
}
@end

/// A callback that lets go of the service at the first bytes.
@interface Releaser : NSObject {
 @public
  UMSService* service;
}
@end

@implementation Releaser
- (BOOL)transferProgressInfo:(id)context
             maxTransferSize:(unsigned int)maxTransferSize
         currentTransferSize:(unsigned int)currentTransferSize {
  [service release];
  service = nil;
  return YES;
}
@end

namespace umsplugin::testing {
namespace {

// How threads and memory are counted is the system's own affair; where it is not known here, the tests that
// need it are not built.
#ifdef __linux__

size_t threadCount() {
  size_t count = 0;
  DIR* folder = opendir("/proc/self/task");
  while (readdir(folder)) ++count;
  closedir(folder);
  return count - 2;
}

/// Bytes of memory that the program has asked for and not given back.
size_t heldBytes() {
#if defined(__SANITIZE_ADDRESS__)
  __sanitizer_purge_allocator();  // what is freed is kept a while, and counted as long
  return __sanitizer_get_current_allocated_bytes();
#else
  return mallinfo2().uordblks;
#endif
}

#endif

class Life : public HostTest {
 protected:
  NSArray* songs(int count) {
    NSMutableArray* contents = [NSMutableArray array];
    for (int i = 0; i < count; ++i) {
      const std::string name = "song" + std::to_string(i) + ".mp3";
      [contents addObject:content(sandbox.patternFile("mac/" + name, 10000), name)];
    }
    return contents;
  }
};

#ifdef __linux__

TEST_F(Life, OfTenThousandServicesLeavesNothingBehind) {
  auto cycle = [&](NSArray* contents) {
    NSAutoreleasePool* inner = [[NSAutoreleasePool alloc] init];
    UMSService* service = [[[loadedBundle() principalClass] alloc] initWithLocationID:@"location-1"];
    [service addDiskInformation:disk(1, internal)];
    [[service diskInformation] objectAtIndex:0];
    [service cancelFileAction:4];
    if (contents) [service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0];
    [service release];
    [ear forget];
    [inner release];
  };
  NSArray* contents = songs(1);
  for (int i = 0; i < 500; ++i) cycle(i % 10 ? nil : contents);
  const size_t threads = threadCount();
  const size_t before = heldBytes();
  for (int i = 0; i < 10000; ++i) cycle(i % 100 ? nil : contents);
  EXPECT_TRUE(eventually([&] { return threadCount() <= threads; }));
  const size_t after = heldBytes();
  // The smallest object that could be left of each service would be 16 bytes.
  EXPECT_LT(after, before + 80000) << "from " << before;
}

/// What the use of a service leaves behind; the platform's own caches are filled by the first uses.
class Leftovers : public Life {
 protected:
  void expectNoneOf(const std::function<void()>& use) {
    repeat(300, use);
    const size_t before = heldBytes();
    repeat(1000, use);
    EXPECT_LT(heldBytes(), before + 8000) << "from " << before;
  }

  UMSService* const service = makeDevice();
  NSDictionary* const song = [songs(1) lastObject];

 private:
  void repeat(int count, const std::function<void()>& use) {
    for (int i = 0; i < count; ++i) {
      NSAutoreleasePool* inner = [[NSAutoreleasePool alloc] init];
      use();
      [ear forget];
      [inner release];
    }
  }
};

TEST_F(Leftovers, OfNotifiersAreNone) {
  NSDictionary* channel = [NSDictionary
      dictionaryWithObjectsAndKeys:@"News", @"Title", [NSArray arrayWithObject:song], @"children", nil];
  expectNoneOf([&] {
    OVUmsDeviceNotifier* notifier = [[bundleClass(@"OVUmsDeviceNotifier") alloc] init];
    [notifier setMediaInfo:song];
    [notifier setPodcastXmlData:channel];
    [notifier sendResultEvent];
    [notifier release];
  });
}

// The documents themselves are the platform's.
TEST_F(Leftovers, OfAConverterAreNone) {
  QDUIPodcastXMLConverter* converter = [[[bundleClass(@"QDUIPodcastXMLConverter") alloc] init] autorelease];
  NSString* const index = @"<channel><Title>News</Title><Post><Url>u</Url></Post></channel>";
  expectNoneOf(
      [&] { [converter makePodcastDictionaryFromXML:[index dataUsingEncoding:NSUTF8StringEncoding]]; });
}

TEST_F(Leftovers, OfDirectTransfersAreNone) {
  expectNoneOf([&] {
    [service writeFileToDevice:song
               destinationPath:string(internal + "/a.mp3")
                     diskIndex:0
                     mediaType:1
                   isOverWrite:YES
                callbackObject:[[[Mayfly alloc] init] autorelease]
                       context:song
                         error:NULL];
  });
}

TEST_F(Leftovers, OfRunsAreNone) {
  expectNoneOf([&] {
    _serviceinfo record = {};
    record.serviceID = 1;
    record.command = 213;
    record.mediaType = 1;
    record.destPath = string(internal + "/Music");
    record.contents = [NSArray arrayWithObject:song];
    ASSERT_TRUE([service doUmsFileService:&record]);
    record.command = 205;
    record.contents = [NSArray arrayWithObject:content(internal + "/Music/song0.mp3", "song0.mp3")];
    ASSERT_TRUE([service doUmsFileService:&record]);
  });
}

TEST_F(Leftovers, OfListingsAreNone) {
  sandbox.file("internal/Music/a.mp3", "a");
  expectNoneOf([&] {
    [service fileNameList:0 mediaType:1 diskIndex:0];
    [service subpathsAtDisk:0 diskIndex:0 skipNoMedia:YES];
    [[service diskInformation] objectAtIndex:0];
  });
}

TEST_F(Life, EndsInAHandlerOnTheWorker) {
  UMSService* service = takeOver(makeDevice());
  std::atomic<bool> released = false;
  const size_t threads = threadCount();
  Hearing hearing = onEach([&](NSNotification* notification) {
    if (![[notification name] isEqualToString:kItemResult] || released.exchange(true)) return;
    [service release];
  });
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:songs(5) mediaType:1 storageIndex:0]);
  ASSERT_TRUE(eventually([&] { return released && threadCount() < threads; })) << "the worker ends by itself";
  EXPECT_EQ([[ear named:kItemResult] count], 1u);
  EXPECT_TRUE(exists(internal + "/Music/song0.mp3"));
  EXPECT_FALSE(exists(internal + "/Music/song1.mp3"));
}

#endif

TEST_F(Life, EndsInAHandlerOfACallOfTheHost) {
  UMSService* service = takeOver(makeDevice());
  bool released = false;
  Hearing hearing = onEach([&](NSNotification*) {
    if (!std::exchange(released, true)) [service release];
  });
  _serviceinfo record = {};
  record.command = 213;
  record.mediaType = 1;
  record.destPath = string(internal + "/Music");
  record.contents = songs(3);
  [service doUmsFileService:&record];
  EXPECT_TRUE(released);
  EXPECT_TRUE(exists(internal + "/Music/song0.mp3"));
  EXPECT_FALSE(exists(internal + "/Music/song2.mp3"));
}

TEST_F(Life, EndsInACallbackOfADirectTransfer) {
  Releaser* releaser = [[[Releaser alloc] init] autorelease];
  releaser->service = takeOver(makeDevice());
  unsigned int error = 77;
  EXPECT_FALSE([releaser->service writeFileToDevice:[songs(1) lastObject]
                                    destinationPath:string(internal + "/a.mp3")
                                          diskIndex:0
                                          mediaType:1
                                        isOverWrite:NO
                                     callbackObject:releaser
                                            context:nil
                                              error:&error]);
  EXPECT_EQ(error, 0u) << "a release in mid-copy has no number";
  EXPECT_EQ(bytesOf(internal + "/a.mp3").size(), 4096u);
}

TEST_F(Life, EndsInTheMiddleOfARun) {
  UMSService* service = takeOver(makeDevice());
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:songs(50) mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kItemResult count:1]);
  [service release];
  const NSUInteger atTheEnd = [[ear named:nil] count];
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ([[ear named:nil] count], atTheEnd) << "nothing is posted for a service that has gone";
}

TEST_F(Life, OfAnObjectAutoreleasedInAHandlerEndsWithTheCallback) {
  UMSService* service = makeDevice();
  mayfliesGone = 0;
  Hearing hearing = onEach([](NSNotification*) { [[[Mayfly alloc] init] autorelease]; });
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:songs(1) mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_TRUE(eventually([] { return mayfliesGone == 4; })) << mayfliesGone;
}

TEST_F(Life, NeverWantsForAPool) {
  StderrCapture capture;
  UMSService* service = takeOver(makeDevice());
  [service setConfirmDelegate:@"no delegate at all"];
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:songs(2) mediaType:1 storageIndex:0]);
  ASSERT_TRUE([service copyContentsMacToDevice:2 contents:songs(2) mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:2]);
  [service release];
  EXPECT_EQ(capture.linesWith("without pool"), std::vector<std::string>());
}

// The notification center of the platform may catch it, or let it through to the worker.
TEST_F(Life, GoesOnAfterAnExceptionOfAHandler) {
  UMSService* service = makeDevice();
  std::atomic<bool> raised = false;
  Hearing hearing = onEach([&](NSNotification*) {
    if (!raised.exchange(true)) [NSException raise:@"TestException" format:@"raised by a handler"];
  });
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:songs(1) mediaType:1 storageIndex:0]);
  ASSERT_TRUE(eventually([&] { return raised.load(); }));
  ASSERT_TRUE([service copyContentsMacToDevice:2 contents:songs(1) mediaType:1 storageIndex:1]);
  ASSERT_TRUE(eventually([&] {
    NSDictionary* last = [[[ear named:kUmsResult] lastObject] userInfo];
    return [[last objectForKey:@"ServiceID"] intValue] == 2;
  }));
  EXPECT_TRUE(exists(card + "/Music/song0.mp3"));
}

TEST_F(Life, WaitsWhileTheHostMarksATransfer) {
  UMSService* service = takeOver(makeDevice());
  [service setFileTransferStatus:2];
  std::atomic<bool> ended = false;
  std::thread host([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ended = true;
    [service setFileTransferStatus:0];
  });
  [service disconnectDevice:@"another location"];
  EXPECT_TRUE(ended);
  EXPECT_EQ([service getReleaseState], 0);
  host.join();
  [service release];
}

TEST_F(Life, OfManyServicesAtOnceIsTheirOwn) {
  std::vector<UMSService*> services;
  std::atomic<int> lookups = 0;
  for (int i = 0; i < 8; ++i) {
    UMSService* service = makeService([NSString stringWithFormat:@"location-%d", i]);
    [service addDiskInformation:disk(1, sandbox.folder("device" + std::to_string(i)))];
    services.push_back(service);
  }
  NSArray* contents = songs(10);
  for (UMSService* service : services) {
    ASSERT_TRUE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
  }
  std::thread reader([&] {
    for (int i = 0; i < 200; ++i) {
      NSAutoreleasePool* inner = [[NSAutoreleasePool alloc] init];
      for (UMSService* service : services) lookups += [service diskInfoFromIndex:0] != nil;
      [inner release];
    }
  });
  ASSERT_TRUE([ear waitFor:kUmsResult count:8]);
  reader.join();
  EXPECT_EQ(lookups, 1600);
  EXPECT_EQ([[ear named:kItemResult] count], 80u);
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(bytesOf(sandbox.at("device" + std::to_string(i) + "/Music/song9.mp3")).size(), 10000u);
  }
}

}  // namespace
}  // namespace umsplugin::testing
