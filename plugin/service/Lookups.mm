/// What the service answers beside the two protocols: its volumes and their default folders, names, markers,
/// and the progress of direct transfers.
#include "service/Notifier.h"
#include "service/Parts.h"

using umsplugin::notifierIn;
using umsplugin::toArray;
using umsplugin::toHost;
using umsplugin::toText;

namespace {

/// The object in a host's list that is a dictionary; volumes of a service's may be in it.
NSDictionary* elementFor(const umsservice::MaybeDictionary& found, NSArray* list) {
  for (NSUInteger i = 0; found && i < [list count]; ++i) {
    id element = [list objectAtIndex:i];
    if (![element isKindOfClass:[UMSLiveDictionary class]]) continue;
    if ([static_cast<UMSLiveDictionary*>(element) libraryDictionary].isSame(*found)) return element;
  }
  return toHost(found);
}

}  // namespace

@implementation UMSService (Lookups)

- (NSDictionary*)diskInfoFromIndex:(unsigned int)index {
  return [_parts->volumes elementFor:_parts->service.diskInfoFromIndex(index)];
}

- (NSDictionary*)diskInfoFromDiskInfoList:(NSArray*)diskInfoList index:(unsigned int)index {
  auto found = _parts->service.diskInfoFromDiskInfoList(toArray(diskInfoList), index);
  if ([diskInfoList isKindOfClass:[UMSLiveArray class]]) {
    return [static_cast<UMSLiveArray*>(diskInfoList) elementFor:found];
  }
  return elementFor(found, diskInfoList);
}

- (NSString*)diskVolumeNameFromIndex:(unsigned int)index {
  return toHost(_parts->service.diskVolumeNameFromIndex(index));
}

- (NSString*)volumePath:(unsigned int)index {
  return toHost(_parts->service.volumePath(index));
}

- (NSString*)volumePathWithOption:(BOOL)isInternal index:(unsigned int*)index {
  return toHost(_parts->service.volumePathWithOption(isInternal, index));
}

- (unsigned long long)volumeFreeSpace:(NSString*)path {
  return _parts->service.volumeFreeSpace(toText(path));
}

- (NSString*)defaultMediaContentsPath:(NSString*)volumePath diskType:(int)diskType mediaType:(int)mediaType {
  return toHost(_parts->service.defaultMediaContentsPath(toText(volumePath), diskType, mediaType));
}

- (NSString*)defaultMediaContentsPath:(NSArray*)diskInfoList
                                index:(unsigned int)index
                            mediaType:(int)mediaType {
  return toHost(_parts->service.defaultMediaContentsPath(toArray(diskInfoList), index, mediaType));
}

- (NSString*)defaultUmsMediaPath:(unsigned int)diskIndex mediaType:(unsigned int)mediaType {
  return toHost(_parts->service.defaultUmsMediaPath(diskIndex, mediaType));
}

- (NSString*)getMediaDefaultPath:(int)mediaType {
  return toHost(_parts->service.getMediaDefaultPath(mediaType));
}

- (NSString*)convertAvailableFileName:(NSString*)name {
  return toHost(_parts->service.convertAvailableFileName(toText(name)));
}

- (NSMutableString*)convertAvailableString:(NSString*)path {
  return [[toHost(_parts->service.convertAvailableString(toText(path))) mutableCopy] autorelease];
}

- (BOOL)checkNoMedia:(NSString*)path nomediaList:(NSArray*)nomediaList {
  return _parts->service.checkNoMedia(toText(path), toArray(nomediaList));
}

- (NSArray*)removeFileListByNoMedia:(NSArray*)paths nomediaList:(NSArray*)nomediaList {
  return toHost(_parts->service.removeFileListByNoMedia(toArray(paths), toArray(nomediaList)));
}

- (BOOL)transferProgressInfo:(id)context
             maxTransferSize:(unsigned int)maxTransferSize
         currentTransferSize:(unsigned int)currentTransferSize {
  return _parts->service.transferProgressInfo(notifierIn(context), maxTransferSize, currentTransferSize);
}

- (BOOL)transferProgressInfoEx:(id)context
               maxTransferSize:(unsigned long long)maxTransferSize
           currentTransferSize:(unsigned long long)currentTransferSize {
  return _parts->service.transferProgressInfoEx(notifierIn(context), maxTransferSize, currentTransferSize);
}

@end
