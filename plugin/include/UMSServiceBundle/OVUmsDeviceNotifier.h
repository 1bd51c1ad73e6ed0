/// Counts one transfer and tells the host about it: what is said to have happened (bytes sent, a file
/// finished, a file failed, cancelled) becomes progress and result notifications.
///
/// Each run of a service makes its own; a host may make and feed one as well. Safe from any thread: counting
/// and the notification that comes of it are one step. Handlers run inside that step, on the thread that
/// caused it, and may call the notifier again. `@synchronized(notifier)` keeps every step out.
/// The context that a service passes along with a write from device to device is its run's notifier: one
/// object for the whole run, and good for as long as a host keeps it.
#pragma once

#import <Foundation/Foundation.h>

struct OVUmsDeviceNotifierParts;

@interface OVUmsDeviceNotifier : NSObject {
 @private
  struct OVUmsDeviceNotifierParts* _parts;
}

/// Everything zero or nil but the current file (1) and the result (0x10000001).
- (id)init;
/// For one request: devices, request number, media type, model name, volume index, files and bytes.
- (id)initWithInformations:(NSString*)srcLocationID
            destLocationID:(NSString*)destLocationID
                 serviceID:(unsigned int)serviceID
                 mediaType:(unsigned int)mediaType
                deviceName:(NSString*)deviceName
              storageIndex:(unsigned int)storageIndex
      maxTransferFileCount:(unsigned int)maxTransferFileCount
           maxTransferSize:(unsigned long long)maxTransferSize;

// Posting.

- (void)sendTransferEvent:(unsigned int)maxProgress currentPersent:(unsigned int)currentPersent;
- (void)sendResultEvent;
- (void)sendResultNotification;

// Counting files and bytes; the bytes are a running count of the current file.

- (void)incCurrentTransferFileCount;
- (void)incFailTransferFileCount;
- (void)addFailTransferFileCount:(unsigned int)count;
- (void)addCurrentTransferFileCount:(unsigned int)count;
- (void)addCurrentSendBytesEx:(unsigned long long)sentBytes;
- (void)addCurrentSendBytes:(unsigned int)sentBytes;

// Ends of a run.

- (void)cancelFileTransfer;
- (void)deleteFileTransfer;

/// The podcast channel that item results carry from now on; copied.
- (void)setPodcastXmlData:(NSDictionary*)podcastXmlData;

@property(copy) NSString* srcLocationID;
@property(copy) NSString* destLocationID;
@property unsigned int serviceID;
@property unsigned int storageIndex;
@property unsigned int mediaType;
@property unsigned int currentTransferFileCount;
@property unsigned int maxTransferFileCount;
@property unsigned int failTransferFileCount;
@property(copy) NSString* filePath;
@property(copy) NSString* deviceName;
@property unsigned long long currentTransferSize;
@property unsigned long long maxTransferSize;
/// Size of the file being copied; 0 between files.
@property unsigned long long maxSendBytes;
/// Bytes of the whole request at the last posted progress.
@property unsigned long long prevTransferFileSize;
/// Running count of the current file at the previous call.
@property unsigned long long prevSendBytes;
@property(copy) NSString* playlistName;
@property(copy) NSString* channelName;
/// Tag information of the current item; its entries lead the item's result.
@property(copy) NSDictionary* mediaInfo;
/// 0 initial, 2 running, 3 cancelled, 4 finished.
@property int currentTransferStatus;
/// Result of the current item; a 0 is posted as 0x10000001, the only success code a host knows.
@property unsigned int transferResult;

@end
