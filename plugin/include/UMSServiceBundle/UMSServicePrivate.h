/// The steps that the service's own operations are made of, as a category. They are here for tools and tests
/// of the host; a host needs none of them to serve a device.
///
/// Error out-parameters are written only where a step has a number of its own, and may be NULL.
#pragma once

#import "UMSServiceBundle/OVUmsDeviceNotifier.h"
#import "UMSServiceBundle/QDUIPodcastXMLConverter.h"
#import "UMSServiceBundle/UMSService.h"

@interface UMSService (UMSServicePrivate)

// Queue and dispatch.

/// The body of the service's worker thread: runs queued requests on the calling thread until the service is
/// released. The service has started one of its own already. The argument is not used.
- (void)umsFileServiceQueueThread:(id)argument;
- (void)emptyQueue;
- (BOOL)emptyQueue:(unsigned int)serviceID;
- (BOOL)isCancelServiceId:(unsigned int)serviceID;
- (BOOL)removeCancelServiceId:(unsigned int)serviceID;
/// Runs one request on the calling thread, as the worker does; NO for NULL.
- (BOOL)doUmsFileService:(_serviceinfo*)serviceInfo;

// Reports; nothing is posted for a NULL record.

- (void)sendResultEvent:(_serviceinfo*)serviceInfo
              eventType:(unsigned int)eventType
                 status:(unsigned int)status
            errornumber:(unsigned int)errornumber
              diskSpace:(unsigned long long)diskSpace
           storageIndex:(unsigned int)storageIndex;
- (void)sendCancelProgressEvent:(unsigned int)serviceID
                     locationId:(NSString*)locationId
                      mediaType:(unsigned int)mediaType
                    currentFile:(unsigned int)currentFile
                        maxFile:(unsigned int)maxFile
                 transferStatus:(unsigned int)transferStatus;

// Media: types, single files, companions, and the long operations on the calling thread (NO for NULL).

- (int)checkMediaType:(NSString*)path;
- (BOOL)checkContentWithExtentions:(NSString*)extension extLists:(NSArray*)extLists;
- (BOOL)umsCopyFile:(unsigned int)serviceID
            srcPath:(NSString*)srcPath
           destPath:(NSString*)destPath
            context:(OVUmsDeviceNotifier*)context
              error:(int*)error;
- (BOOL)umsMoveFile:(unsigned int)serviceID
            srcPath:(NSString*)srcPath
           destPath:(NSString*)destPath
            context:(OVUmsDeviceNotifier*)context
              error:(int*)error;
- (BOOL)umsDeleteFile:(unsigned int)serviceID srcPath:(NSString*)srcPath error:(int*)error;
- (unsigned long long)mediaFileSize:(NSString*)path;
- (unsigned long long)totalMediaContentsSize:(NSArray*)contents;
- (BOOL)sendSmiFile:(unsigned int)serviceID
       srcVideoPath:(NSString*)srcVideoPath
           destPath:(NSString*)destPath
          mediaType:(unsigned int)mediaType;
- (BOOL)deleteSmiFile:(unsigned int)serviceID filePath:(NSString*)filePath mediaType:(unsigned int)mediaType;
- (BOOL)doCopyMediaContents:(_serviceinfo*)serviceInfo;
- (BOOL)doCopyMediaContentsForAnyMediaType:(_serviceinfo*)serviceInfo;
- (BOOL)doSyncMediaContents:(_serviceinfo*)serviceInfo;
- (int)syncUmsFile:(unsigned int)serviceID
            atPath:(NSString*)atPath
             index:(unsigned int)index
         mediaType:(unsigned int)mediaType
         mediaData:(NSDictionary*)mediaData
           context:(OVUmsDeviceNotifier*)context;
- (BOOL)doDeleteMediaContents:(_serviceinfo*)serviceInfo;
- (BOOL)doDeviceToDevcieContents:(_serviceinfo*)serviceInfo;

// Files: scans and what they leave out.

- (NSArray*)fileScan:(NSString*)folder;
- (NSArray*)fileScan:(NSString*)folder skipNoMedia:(BOOL)skipNoMedia;
- (NSArray*)recursiveFolderLists:(NSString*)folder;
- (BOOL)isHiddenFile:(NSString*)path;
- (BOOL)checkMediaContent:(NSString*)volumePath
                 filePath:(NSString*)filePath
                 diskType:(int)diskType
                mediaType:(int)mediaType;

// Podcast index files: NAME.xml in a channel's folder.

/// The channel as its index file has it, with paths relative to the channel's folder; nil without one.
- (NSMutableDictionary*)checkXmlData:(NSString*)channelFolder channelName:(NSString*)channelName;
/// Writes a document as the index of a channel, whole or not at all. The number is not used.
- (BOOL)sendXmlData:(unsigned int)serviceID
        xmlDocument:(NSXMLDocument*)xmlDocument
           filePath:(NSString*)channelFolder
        podcastName:(NSString*)podcastName;
/// Makes the path of every episode full, in place; paths that begin with the folder stay.
- (void)makeEpisodeFullPath:(NSDictionary*)podcast podcastChannelName:(NSString*)channelFolder;
/// The channel that the bytes of an index hold, with the folder in front of every path.
- (NSMutableDictionary*)makeXMLInfoFromFileData:(NSString*)channelFolder data:(NSData*)data;

// Sizes.

- (unsigned int)totalPodcastCount:(NSArray*)podcasts;
- (unsigned long long)totalPodcastFileSize:(NSArray*)podcasts sendCount:(unsigned int*)sendCount;
- (unsigned long long)totalUmsPodcastEpisodeDataSize:(NSArray*)episodes;
- (BOOL)checkUmsPodcastEpisodeSize:(NSString*)volumePath episodeData:(NSArray*)episodes;

// The long operations on the calling thread; NO for NULL.

- (BOOL)doCopyPodcastContents:(_serviceinfo*)serviceInfo;
- (BOOL)doSyncPodcastContents:(_serviceinfo*)serviceInfo;
/// Tries a channel of a sync on the volumes behind the given one. 0, or the last error number.
- (int)syncUmsPodcastFile:(unsigned int)serviceID
                    index:(unsigned int)index
                mediaType:(unsigned int)mediaType
              podcastInfo:(NSDictionary*)podcastInfo
             xmlConverter:(QDUIPodcastXMLConverter*)xmlConverter
                  context:(OVUmsDeviceNotifier*)context;
- (BOOL)doDeletePodcastContents:(_serviceinfo*)serviceInfo;
- (BOOL)doDeviceToDevicePodcast:(_serviceinfo*)serviceInfo;

@end
