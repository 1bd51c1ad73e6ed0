/// The service's own steps as a category: queue and dispatch, media, files, podcasts.
#include "service/Notifier.h"
#include "service/Parts.h"
#include "service/Requests.h"

using umsplugin::notifierIn;
using umsplugin::toArray;
using umsplugin::toData;
using umsplugin::toDictionary;
using umsplugin::toHost;
using umsplugin::toServiceInfo;
using umsplugin::toText;

@implementation UMSService (UMSServicePrivate)

// -------------------------------------------------------------------- queue, dispatch, reports

- (void)umsFileServiceQueueThread:(id)argument {
  static_cast<void>(argument);
  _parts->service.umsFileServiceQueueThread();
}

- (void)emptyQueue {
  _parts->service.emptyQueue();
}

- (BOOL)emptyQueue:(unsigned int)serviceID {
  return _parts->service.emptyQueue(serviceID);
}

- (BOOL)isCancelServiceId:(unsigned int)serviceID {
  return _parts->service.isCancelServiceId(serviceID);
}

- (BOOL)removeCancelServiceId:(unsigned int)serviceID {
  return _parts->service.removeCancelServiceId(serviceID);
}

- (BOOL)doUmsFileService:(_serviceinfo*)serviceInfo {
  if (!serviceInfo) return _parts->service.doUmsFileService(nullptr);
  const umsservice::_serviceinfo record = toServiceInfo(*serviceInfo);
  return _parts->service.doUmsFileService(&record);
}

- (void)sendResultEvent:(_serviceinfo*)serviceInfo
              eventType:(unsigned int)eventType
                 status:(unsigned int)status
            errornumber:(unsigned int)errornumber
              diskSpace:(unsigned long long)diskSpace
           storageIndex:(unsigned int)storageIndex {
  if (!serviceInfo) return;
  _parts->service.sendResultEvent(toServiceInfo(*serviceInfo), eventType, status, errornumber, diskSpace,
                                  storageIndex);
}

- (void)sendCancelProgressEvent:(unsigned int)serviceID
                     locationId:(NSString*)locationId
                      mediaType:(unsigned int)mediaType
                    currentFile:(unsigned int)currentFile
                        maxFile:(unsigned int)maxFile
                 transferStatus:(unsigned int)transferStatus {
  _parts->service.sendCancelProgressEvent(serviceID, toText(locationId), mediaType, currentFile, maxFile,
                                          transferStatus);
}

// -------------------------------------------------------------------- media

- (int)checkMediaType:(NSString*)path {
  return _parts->service.checkMediaType(toText(path));
}

- (BOOL)checkContentWithExtentions:(NSString*)extension extLists:(NSArray*)extLists {
  return _parts->service.checkContentWithExtentions(toText(extension), toArray(extLists));
}

- (BOOL)umsCopyFile:(unsigned int)serviceID
            srcPath:(NSString*)srcPath
           destPath:(NSString*)destPath
            context:(OVUmsDeviceNotifier*)context
              error:(int*)error {
  return _parts->service.umsCopyFile(serviceID, toText(srcPath), toText(destPath), notifierIn(context),
                                     error);
}

- (BOOL)umsMoveFile:(unsigned int)serviceID
            srcPath:(NSString*)srcPath
           destPath:(NSString*)destPath
            context:(OVUmsDeviceNotifier*)context
              error:(int*)error {
  return _parts->service.umsMoveFile(serviceID, toText(srcPath), toText(destPath), notifierIn(context),
                                     error);
}

- (BOOL)umsDeleteFile:(unsigned int)serviceID srcPath:(NSString*)srcPath error:(int*)error {
  return _parts->service.umsDeleteFile(serviceID, toText(srcPath), error);
}

- (unsigned long long)mediaFileSize:(NSString*)path {
  return _parts->service.mediaFileSize(toText(path));
}

- (unsigned long long)totalMediaContentsSize:(NSArray*)contents {
  return _parts->service.totalMediaContentsSize(toArray(contents));
}

- (BOOL)sendSmiFile:(unsigned int)serviceID
       srcVideoPath:(NSString*)srcVideoPath
           destPath:(NSString*)destPath
          mediaType:(unsigned int)mediaType {
  return _parts->service.sendSmiFile(serviceID, toText(srcVideoPath), toText(destPath), mediaType);
}

- (BOOL)deleteSmiFile:(unsigned int)serviceID filePath:(NSString*)filePath mediaType:(unsigned int)mediaType {
  return _parts->service.deleteSmiFile(serviceID, toText(filePath), mediaType);
}

- (BOOL)doCopyMediaContents:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doCopyMediaContents(toServiceInfo(*serviceInfo));
}

- (BOOL)doCopyMediaContentsForAnyMediaType:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doCopyMediaContentsForAnyMediaType(toServiceInfo(*serviceInfo));
}

- (BOOL)doSyncMediaContents:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doSyncMediaContents(toServiceInfo(*serviceInfo));
}

- (int)syncUmsFile:(unsigned int)serviceID
            atPath:(NSString*)atPath
             index:(unsigned int)index
         mediaType:(unsigned int)mediaType
         mediaData:(NSDictionary*)mediaData
           context:(OVUmsDeviceNotifier*)context {
  return _parts->service.syncUmsFile(serviceID, toText(atPath), index, mediaType, toDictionary(mediaData),
                                     notifierIn(context));
}

- (BOOL)doDeleteMediaContents:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doDeleteMediaContents(toServiceInfo(*serviceInfo));
}

- (BOOL)doDeviceToDevcieContents:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doDeviceToDevcieContents(toServiceInfo(*serviceInfo));
}

// -------------------------------------------------------------------- files

- (NSArray*)fileScan:(NSString*)folder {
  return toHost(_parts->service.fileScan(toText(folder)));
}

- (NSArray*)fileScan:(NSString*)folder skipNoMedia:(BOOL)skipNoMedia {
  return toHost(_parts->service.fileScan(toText(folder), skipNoMedia));
}

- (NSArray*)recursiveFolderLists:(NSString*)folder {
  return toHost(_parts->service.recursiveFolderLists(toText(folder)));
}

- (BOOL)isHiddenFile:(NSString*)path {
  return _parts->service.isHiddenFile(toText(path));
}

- (BOOL)checkMediaContent:(NSString*)volumePath
                 filePath:(NSString*)filePath
                 diskType:(int)diskType
                mediaType:(int)mediaType {
  return _parts->service.checkMediaContent(toText(volumePath), toText(filePath), diskType, mediaType);
}

// -------------------------------------------------------------------- podcasts

- (NSMutableDictionary*)checkXmlData:(NSString*)channelFolder channelName:(NSString*)channelName {
  return toHost(_parts->service.checkXmlData(toText(channelFolder), toText(channelName)));
}

- (BOOL)sendXmlData:(unsigned int)serviceID
        xmlDocument:(NSXMLDocument*)xmlDocument
           filePath:(NSString*)channelFolder
        podcastName:(NSString*)podcastName {
  NSData* bytes = [xmlDocument XMLDataWithOptions:NSXMLNodePrettyPrint];
  return _parts->service.sendXmlData(serviceID, toData(bytes), toText(channelFolder), toText(podcastName));
}

- (void)makeEpisodeFullPath:(NSDictionary*)podcast podcastChannelName:(NSString*)channelFolder {
  _parts->service.makeEpisodeFullPath(toDictionary(podcast), toText(channelFolder));
}

- (NSMutableDictionary*)makeXMLInfoFromFileData:(NSString*)channelFolder data:(NSData*)data {
  return toHost(_parts->service.makeXMLInfoFromFileData(toText(channelFolder), toData(data)));
}

- (unsigned int)totalPodcastCount:(NSArray*)podcasts {
  return _parts->service.totalPodcastCount(toArray(podcasts));
}

- (unsigned long long)totalPodcastFileSize:(NSArray*)podcasts sendCount:(unsigned int*)sendCount {
  return _parts->service.totalPodcastFileSize(toArray(podcasts), sendCount);
}

- (unsigned long long)totalUmsPodcastEpisodeDataSize:(NSArray*)episodes {
  return _parts->service.totalUmsPodcastEpisodeDataSize(toArray(episodes));
}

- (BOOL)checkUmsPodcastEpisodeSize:(NSString*)volumePath episodeData:(NSArray*)episodes {
  return _parts->service.checkUmsPodcastEpisodeSize(toText(volumePath), toArray(episodes));
}

- (BOOL)doCopyPodcastContents:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doCopyPodcastContents(toServiceInfo(*serviceInfo));
}

- (BOOL)doSyncPodcastContents:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doSyncPodcastContents(toServiceInfo(*serviceInfo));
}

- (int)syncUmsPodcastFile:(unsigned int)serviceID
                    index:(unsigned int)index
                mediaType:(unsigned int)mediaType
              podcastInfo:(NSDictionary*)podcastInfo
             xmlConverter:(QDUIPodcastXMLConverter*)xmlConverter
                  context:(OVUmsDeviceNotifier*)context {
  // Converters are all alike; the run has one of its own.
  static_cast<void>(xmlConverter);
  return _parts->service.syncUmsPodcastFile(serviceID, index, mediaType, toDictionary(podcastInfo),
                                            notifierIn(context));
}

- (BOOL)doDeletePodcastContents:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doDeletePodcastContents(toServiceInfo(*serviceInfo));
}

- (BOOL)doDeviceToDevicePodcast:(_serviceinfo*)serviceInfo {
  return serviceInfo && _parts->service.doDeviceToDevicePodcast(toServiceInfo(*serviceInfo));
}

@end
