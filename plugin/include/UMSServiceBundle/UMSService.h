/// The service of one device that is attached as USB mass storage: the principal class of UMSService.bundle.
///
/// A host loads the bundle, makes one service for each device, hands it the device's volumes with
/// `addDiskInformation:`, queues requests and hears of them through notifications. Each service has one
/// worker thread. Every method may be called from any thread, and from inside a notification handler, the
/// last `release` included. Releasing a service stops what is running within 4096 copied bytes and waits for
/// its worker, unless the worker itself releases it. Texts are UTF-8 on the device's side. A file name whose
/// bytes are no UTF-8 arrives with each odd byte as a pair of characters of U+FDD8 to U+FDEF, which no other
/// text holds, and finds its file again when the host hands it back.
/// A service is what its long operations synchronize on: `@synchronized(service)` keeps them from running.
/// The last release inside such a section lets a worker that stands before it end by itself.
#pragma once

#import <Foundation/Foundation.h>

#import "UMSServiceBundle/OVFileService.h"
#import "UMSServiceBundle/ServiceInfo.h"
#import "UMSServiceBundle/UMSServiceProtocol.h"

struct UMSServiceParts;

@interface UMSService : NSObject <OVFileService, UMSService> {
 @private
  struct UMSServiceParts* _parts;
}

/// Nil when the system has no thread to give.
- (id)init;
- (id)initWithLocationID:(NSString*)locationID;

/// 2 while the host marks a transfer: `disconnectDevice:` and the release of the service wait for its end,
/// one second at a time. The service itself never sets it.
- (int)fileTransferStatus;
- (void)setFileTransferStatus:(int)status;

@end

/// What the service's own steps ask of it, beside the two protocols.
@interface UMSService (Lookups)

// Volumes and default folders.

- (NSDictionary*)diskInfoFromIndex:(unsigned int)index;
- (NSDictionary*)diskInfoFromDiskInfoList:(NSArray*)diskInfoList index:(unsigned int)index;
- (NSString*)diskVolumeNameFromIndex:(unsigned int)index;
- (NSString*)volumePath:(unsigned int)index;
- (NSString*)volumePathWithOption:(BOOL)isInternal index:(unsigned int*)index;
- (unsigned long long)volumeFreeSpace:(NSString*)path;
- (NSString*)defaultMediaContentsPath:(NSString*)volumePath diskType:(int)diskType mediaType:(int)mediaType;
- (NSString*)defaultMediaContentsPath:(NSArray*)diskInfoList
                                index:(unsigned int)index
                            mediaType:(int)mediaType;
- (NSString*)defaultUmsMediaPath:(unsigned int)diskIndex mediaType:(unsigned int)mediaType;
- (NSString*)getMediaDefaultPath:(int)mediaType;

// Names that the file systems of players accept, and what ".nomedia" markers hide.

- (NSString*)convertAvailableFileName:(NSString*)name;
- (NSMutableString*)convertAvailableString:(NSString*)path;
- (BOOL)checkNoMedia:(NSString*)path nomediaList:(NSArray*)nomediaList;
- (NSArray*)removeFileListByNoMedia:(NSArray*)paths nomediaList:(NSArray*)nomediaList;

// Progress of direct transfers whose context is an `OVUmsDeviceNotifier`. NO stops the copy.

- (BOOL)transferProgressInfo:(id)context
             maxTransferSize:(unsigned int)maxTransferSize
         currentTransferSize:(unsigned int)currentTransferSize;
- (BOOL)transferProgressInfoEx:(id)context
               maxTransferSize:(unsigned long long)maxTransferSize
           currentTransferSize:(unsigned long long)currentTransferSize;

@end
