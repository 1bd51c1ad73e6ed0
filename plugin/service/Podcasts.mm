/// The steps of the podcast operations: index files, sizes, and the long operations on the calling thread.
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

@implementation UMSService (UMSServicePrivatePodcasts)

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
