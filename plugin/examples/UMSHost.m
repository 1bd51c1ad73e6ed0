/// A small host: it loads UMSService.bundle, serves a device made of two folders, and prints every
/// notification.
///
///   UMSHost [--bundle PATH] DEVICE FILE...
///
/// The folders "internal" and "card" below DEVICE are the device's volumes. The files are copied to the
/// internal memory, synchronised to the card, listed, and deleted from the internal memory. Without --bundle
/// the bundle is looked for where installed ones lie.
#import <Foundation/Foundation.h>

#import <UMSServiceBundle/HostClasses.h>
#import <UMSServiceBundle/UMSService.h>

/// The bundle finds this class by its name: the folders in which this host's devices keep their media.
@interface ProfileInfo : NSObject
@end

@implementation ProfileInfo
+ (id)sharedInstance {
  static ProfileInfo* shared;
  if (!shared) shared = [[ProfileInfo alloc] init];
  return shared;
}
- (NSString*)contentsMusicDefaultFolderInternal:(NSString*)locationID {
  return @"/Music";
}
- (NSString*)contentsMusicDefaultFolderExternal:(NSString*)locationID {
  return @"/Music";
}
@end

/// Prints notifications on whichever thread they come, and lets the main thread wait for the end of a
/// request.
@interface Listener : NSObject {
 @private
  NSCondition* _changed;
  NSMutableSet* _finished;
}
- (void)waitForRequest:(unsigned int)serviceID;
@end

@implementation Listener

- (id)init {
  if (!(self = [super init])) return nil;
  _changed = [[NSCondition alloc] init];
  _finished = [[NSMutableSet alloc] init];
  for (NSString *name in
       [NSArray arrayWithObjects:@"QDORVEL_NOTI_TRANSFER_PROGRESS", @"QDORVEL_NOTI_UMS_RESULT",
                                 @"QDORVEL_NOTI_MEDIA_TRASFER_RESULT", nil]) {
    [[NSNotificationCenter defaultCenter] addObserver:self selector:@selector(hear:) name:name object:nil];
  }
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [_changed release];
  [_finished release];
  [super dealloc];
}

- (void)hear:(NSNotification*)notification {
  NSDictionary* info = [notification userInfo];
  NSMutableString* line = [NSMutableString stringWithString:[notification name]];
  for (NSString* key in [[info allKeys] sortedArrayUsingSelector:@selector(compare:)]) {
    [line appendFormat:@" %@=%@", key, [info objectForKey:key]];
  }
  [_changed lock];
  printf("%s\n", [line UTF8String]);
  // 4: the last file was counted. 3: cancelled.
  if ([[info objectForKey:@"TransferStatus"] intValue] >= 3) {
    [_finished addObject:[info objectForKey:@"ServiceID"]];
    [_changed broadcast];
  }
  [_changed unlock];
}

- (void)waitForRequest:(unsigned int)serviceID {
  NSNumber* number = [NSNumber numberWithUnsignedInt:serviceID];
  [_changed lock];
  while (![_finished containsObject:number]) [_changed wait];
  [_changed unlock];
}

@end

/// Bundles are only found under full paths.
static NSString* fullPath(NSString* path) {
  if ([path isAbsolutePath]) return path;
  return [[[NSFileManager defaultManager] currentDirectoryPath] stringByAppendingPathComponent:path];
}

static NSBundle* installedBundle(void) {
  for (NSString* library in NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSAllDomainsMask, YES)) {
    NSString* path = [library stringByAppendingPathComponent:@"Bundles/UMSService.bundle"];
    if ([[NSFileManager defaultManager] fileExistsAtPath:path]) return [NSBundle bundleWithPath:path];
  }
  return nil;
}

static NSDictionary* volume(int diskType, NSString* path) {
  [[NSFileManager defaultManager] createDirectoryAtPath:path
                            withIntermediateDirectories:YES
                                             attributes:nil
                                                  error:NULL];
  return [NSDictionary
      dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:diskType], @"diskType", path, @"volumePath", nil];
}

static NSArray* contentsOf(NSArray* paths) {
  NSMutableArray* contents = [NSMutableArray array];
  for (NSString* path in paths) {
    [contents
        addObject:[NSDictionary dictionaryWithObjectsAndKeys:path, @"FilePath", [path lastPathComponent],
                                                             @"FileName", nil]];
  }
  return contents;
}

static void printListing(UMSService* service, unsigned int diskIndex) {
  for (NSDictionary* file in [service fileNameList:0 mediaType:1 diskIndex:diskIndex]) {
    printf("on volume %u: %s\n", diskIndex, [[file objectForKey:@"FilePath"] UTF8String]);
  }
}

/// YES when every step was accepted.
static BOOL serve(UMSService* service, Listener* listener, NSArray* files) {
  enum { kMusic = 1 };
  NSArray* contents = contentsOf(files);
  if (![service copyContentsMacToDevice:1 contents:contents mediaType:kMusic storageIndex:0]) return NO;
  [listener waitForRequest:1];
  if (![service syncContents:2 contents:contents mediaType:kMusic isStartInternal:NO]) return NO;
  [listener waitForRequest:2];
  printListing(service, 0);
  printListing(service, 1);
  NSArray* there = [service fileNameList:0 mediaType:kMusic diskIndex:0];
  if (![service deleteContents:3 contents:there mediaType:kMusic diskIndex:0]) return NO;
  [listener waitForRequest:3];
  printListing(service, 0);
  return YES;
}

int main(void) {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  NSMutableArray* arguments = [[[[NSProcessInfo processInfo] arguments] mutableCopy] autorelease];
  [arguments removeObjectAtIndex:0];
  NSBundle* bundle = nil;
  if ([arguments count] > 1 && [[arguments objectAtIndex:0] isEqualToString:@"--bundle"]) {
    bundle = [NSBundle bundleWithPath:fullPath([arguments objectAtIndex:1])];
    [arguments removeObjectsInRange:NSMakeRange(0, 2)];
  } else {
    bundle = installedBundle();
  }
  if ([arguments count] < 2) {
    fprintf(stderr, "usage: UMSHost [--bundle PATH] DEVICE FILE...\n");
    return 2;
  }
  if (![bundle load]) {
    fprintf(stderr, "UMSHost: no UMSService.bundle that can be loaded\n");
    return 1;
  }
  printf("loaded %s\n", [[bundle bundlePath] UTF8String]);
  NSString* device = [arguments objectAtIndex:0];
  NSArray* files = [arguments subarrayWithRange:NSMakeRange(1, [arguments count] - 1)];

  Listener* listener = [[Listener alloc] init];
  UMSService* service = [[[bundle principalClass] alloc] initWithLocationID:@"example-device"];
  [service setDeviceInformation:[NSDictionary dictionaryWithObject:@"Example Player" forKey:@"MN"]];
  [service addDiskInformation:volume(1, [device stringByAppendingPathComponent:@"internal"])];
  [service addDiskInformation:volume(2, [device stringByAppendingPathComponent:@"card"])];
  BOOL served = serve(service, listener, files);
  [service exitServiceThread];
  [service release];
  [listener release];
  [pool release];
  return served ? 0 : 1;
}
