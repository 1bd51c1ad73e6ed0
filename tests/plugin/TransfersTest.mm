/// Direct transfers: on the calling thread, with the host's own callback object and context.
#include "HostTest.h"
#include "Try.h"

/// Hears of a transfer and stops it when a test says so.
@interface TransferEar : NSObject <UMSTransferCallback> {
 @public
  id lastContext;
  std::vector<unsigned long long>* heard;
  unsigned long long total;
  size_t goOnFor;
  BOOL usedFullSizes;
}
@end

@implementation TransferEar
- (id)init {
  if ((self = [super init])) {
    heard = new std::vector<unsigned long long>;
    goOnFor = SIZE_MAX;
  }
  return self;
}
- (void)dealloc {
  delete heard;
  [super dealloc];
}
- (BOOL)hear:(unsigned long long)current of:(unsigned long long)max context:(id)context {
  lastContext = context;
  total = max;
  heard->push_back(current);
  return heard->size() <= goOnFor;
}
- (BOOL)transferProgressInfo:(id)context
             maxTransferSize:(unsigned int)maxTransferSize
         currentTransferSize:(unsigned int)currentTransferSize {
  return [self hear:currentTransferSize of:maxTransferSize context:context];
}
- (BOOL)transferProgressInfoEx:(id)context
               maxTransferSize:(unsigned long long)maxTransferSize
           currentTransferSize:(unsigned long long)currentTransferSize {
  usedFullSizes = YES;
  return [self hear:currentTransferSize of:maxTransferSize context:context];
}
@end

/// A callback object that raises.
@interface RaisingCallback : NSObject
@end
@implementation RaisingCallback
- (BOOL)transferProgressInfo:(id)context
             maxTransferSize:(unsigned int)maxTransferSize
         currentTransferSize:(unsigned int)currentTransferSize {
  [NSException raise:@"TestException" format:@"%@ %u %u", context, maxTransferSize, currentTransferSize];
  return YES;
}
- (BOOL)transferProgressInfoEx:(id)context
               maxTransferSize:(unsigned long long)maxTransferSize
           currentTransferSize:(unsigned long long)currentTransferSize {
  [NSException raise:@"FullSizesException"
              format:@"%@ %llu %llu", context, maxTransferSize, currentTransferSize];
  return YES;
}
@end

namespace umsplugin::testing {
namespace {

class Transfers : public HostTest {
 protected:
  Transfers() { sandbox.patternFile("mac/a.mp3", 10000); }
  ~Transfers() override { [callback release]; }

  NSDictionary* source(NSNumber* size = nil) {
    NSMutableDictionary* described = content(sandbox.at("mac/a.mp3"), "a.mp3");
    if (size) [described setObject:size forKey:@"FileSize"];
    return described;
  }
  BOOL write(NSDictionary* described, const std::string& path, BOOL overwrite) {
    return [service writeFileToDevice:described
                      destinationPath:string(path)
                            diskIndex:0
                            mediaType:1
                          isOverWrite:overwrite
                       callbackObject:callback
                              context:context
                                error:&error];
  }

  UMSService* const service = makeDevice();
  TransferEar* const callback = [[TransferEar alloc] init];
  NSObject* const context = [[[NSObject alloc] init] autorelease];
  unsigned int error = 77;
  const std::string destination = internal + "/new/a.mp3";
};

TEST_F(Transfers, TellTheirOwnCallbackWithItsOwnContext) {
  EXPECT_TRUE(write(source(), destination, NO));
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(bytesOf(destination), bytesOf(sandbox.at("mac/a.mp3")));
  EXPECT_EQ(*callback->heard, (std::vector<unsigned long long>{4096, 8192, 10000}));
  EXPECT_EQ(callback->total, 10000u);
  EXPECT_EQ(callback->lastContext, context);
  EXPECT_FALSE(callback->usedFullSizes);
}

TEST_F(Transfers, StopWhenTheCallbackSaysSo) {
  callback->goOnFor = 0;
  EXPECT_FALSE(write(source(), destination, NO));
  EXPECT_EQ(error, 0x10000008u);
  EXPECT_EQ(bytesOf(destination).size(), 4096u);
}

TEST_F(Transfers, GiveTheStatedNumbers) {
  EXPECT_FALSE(write(nil, destination, NO));
  EXPECT_EQ(error, 0x10000002u);
  EXPECT_FALSE(write(source([NSNumber numberWithUnsignedLongLong:~0ull]), destination, NO));
  EXPECT_EQ(error, 0x1310000au);
  sandbox.file("internal/new/a.mp3", "there");
  EXPECT_FALSE(write(source(), destination, NO));
  EXPECT_EQ(error, 0x10000005u);
  EXPECT_EQ(bytesOf(destination), "there");
  EXPECT_TRUE(write(source(), destination, YES));
  EXPECT_EQ(bytesOf(destination).size(), 10000u);
  EXPECT_FALSE(write(content(sandbox.at("mac/none.mp3"), "a.mp3"), internal + "/b.mp3", NO));
  EXPECT_EQ(error, 0x20000008u);
}

TEST_F(Transfers, ReadFromTheDeviceWithoutACallback) {
  EXPECT_TRUE([service readFileFromDevice:source()
                          destinationPath:string(sandbox.at("back/a.mp3"))
                                diskIndex:0
                                mediaType:1
                              isOverWrite:NO
                           callbackObject:nil
                                  context:nil
                                    error:NULL]);
  EXPECT_EQ(bytesOf(sandbox.at("back/a.mp3")).size(), 10000u);
}

TEST_F(Transfers, IntoTheDefaultFolderTellFullSizes) {
  EXPECT_TRUE([service syncWriteFileToDevice:source()
                               subFolderName:nil
                                   diskIndex:1
                                   mediaType:1
                                 isOverWrite:NO
                              callbackObject:callback
                                     context:context
                                       error:&error]);
  EXPECT_EQ(error, 77u) << "the number stays as the caller set it";
  EXPECT_EQ(bytesOf(card + "/Music/a.mp3").size(), 10000u);
  EXPECT_TRUE(callback->usedFullSizes);
  EXPECT_EQ(callback->heard->back(), 10000u);
  EXPECT_FALSE([service syncWriteFileToDevice:source()
                                subFolderName:@"none"
                                    diskIndex:1
                                    mediaType:1
                                  isOverWrite:NO
                               callbackObject:nil
                                      context:nil
                                        error:&error]);
  EXPECT_EQ(error, 77u) << "an absent sub-folder has no number of its own";
}

TEST_F(Transfers, FeedANotifierThroughTheService) {
  OVUmsDeviceNotifier* notifier =
      [[[bundleClass(@"OVUmsDeviceNotifier") alloc] initWithInformations:@"location-1"
                                                          destLocationID:@"location-1"
                                                               serviceID:12
                                                               mediaType:1
                                                              deviceName:nil
                                                            storageIndex:0
                                                    maxTransferFileCount:1
                                                         maxTransferSize:10000] autorelease];
  EXPECT_TRUE([service syncWriteFileToDevice:source()
                               subFolderName:nil
                                   diskIndex:0
                                   mediaType:1
                                 isOverWrite:NO
                              callbackObject:service
                                     context:notifier
                                       error:&error]);
  EXPECT_EQ([notifier currentTransferSize], 10000u);
  ASSERT_EQ([[ear named:kProgress] count], 1u);
  EXPECT_EQ(number([[[ear named:kProgress] lastObject] userInfo], @"ServiceID"), 12);
  [notifier cancelFileTransfer];
  EXPECT_FALSE([service transferProgressInfo:notifier maxTransferSize:10 currentTransferSize:5]);
  EXPECT_FALSE([service transferProgressInfoEx:nil maxTransferSize:10 currentTransferSize:5]);
  EXPECT_FALSE([service transferProgressInfoEx:@"no notifier" maxTransferSize:10 currentTransferSize:5]);
}

TEST_F(Transfers, GoOnWhenTheCallbackHasNoSuchMethod) {
  EXPECT_TRUE([service writeFileToDevice:source()
                         destinationPath:string(destination)
                               diskIndex:0
                               mediaType:1
                             isOverWrite:NO
                          callbackObject:@"cannot be told"
                                 context:nil
                                   error:&error]);
  EXPECT_EQ(bytesOf(destination).size(), 10000u);
}

TEST_F(Transfers, LetAnExceptionOfTheCallbackThrough) {
  id raising = [[[RaisingCallback alloc] init] autorelease];
  NSString* name = exceptionIn([&] {
    [service writeFileToDevice:source()
               destinationPath:string(destination)
                     diskIndex:0
                     mediaType:1
                   isOverWrite:NO
                callbackObject:raising
                       context:nil
                         error:&error];
  });
  EXPECT_EQ(text(name), "TestException");
  name = exceptionIn([&] {
    [service syncWriteFileToDevice:source()
                     subFolderName:nil
                         diskIndex:1
                         mediaType:1
                       isOverWrite:NO
                    callbackObject:raising
                           context:nil
                             error:&error];
  });
  EXPECT_EQ(text(name), "FullSizesException");
  EXPECT_TRUE(write(source(), destination, YES)) << "the service goes on as before";
}

TEST_F(Transfers, RetainTheCallbackForTheirLengthOnly) {
  const NSUInteger before = [callback retainCount];
  EXPECT_TRUE(write(source(), destination, NO));
  EXPECT_EQ([callback retainCount], before);
}

}  // namespace
}  // namespace umsplugin::testing
