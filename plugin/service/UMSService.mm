/// The methods of both protocols; the compiler wants those of one class in one place. The other ones stand in
/// `Lookups.mm` and `Private.mm`.
#import "UMSServiceBundle/UMSService.h"

#include <exception>

#include "service/Parts.h"
#include "service/TransferBridge.h"

using umsplugin::HostCallback;
using umsplugin::HostContext;
using umsplugin::toArray;
using umsplugin::toData;
using umsplugin::toDictionary;
using umsplugin::toHost;
using umsplugin::toText;

@implementation UMSService

- (id)init {
  if (!(self = [super init])) return nil;
  try {
    _parts = new UMSServiceParts(self);
  } catch (const std::exception&) {
    [self release];
    return nil;
  }
  return self;
}

- (id)initWithLocationID:(NSString*)locationID {
  if (!(self = [super init])) return nil;
  try {
    _parts = new UMSServiceParts(self, toText(locationID));
  } catch (const std::exception&) {
    [self release];
    return nil;
  }
  return self;
}

- (void)dealloc {
  if (_parts) {
    _parts->service.exitServiceThread();  // nothing new is begun that the next lines would have to wait for
    _parts->confirmDelegate->setDelegate(nil);
    _parts->section->forget();
  }
  delete _parts;
  [super dealloc];
}

/// What stands for the service at the destination of a copy says so too.
- (BOOL)isEqual:(id)other {
  return self == other || ([other isProxy] && [other isEqual:self]);
}

- (NSUInteger)hash {
  return [super hash];
}

- (void)setConfirmDelegate:(id)delegate {
  if (!delegate) return;
  _parts->confirmDelegate->setDelegate(delegate);
  _parts->service.setConfirmDelegate(_parts->confirmDelegate);
}

- (void)setLocationID:(NSString*)locationID {
  _parts->service.setLocationID(toText(locationID));
}

- (NSString*)locationID {
  return toHost(_parts->service.locationID());
}

- (void)setDeviceInformation:(NSDictionary*)deviceInformation {
  _parts->service.setDeviceInformation(toDictionary(deviceInformation));
}

- (NSString*)modelName {
  return toHost(_parts->service.modelName());
}

- (void)disconnectDevice:(NSString*)locationID {
  _parts->service.disconnectDevice(toText(locationID));
}

- (BOOL)exitServiceThread {
  return _parts->service.exitServiceThread();
}

- (unsigned char)getReleaseState {
  return _parts->service.getReleaseState();
}

- (int)fileTransferStatus {
  return _parts->service.fileTransferStatus();
}

- (void)setFileTransferStatus:(int)status {
  _parts->service.setFileTransferStatus(status);
}

// -------------------------------------------------------------------- volumes

- (void)addDiskInformation:(NSDictionary*)diskInformation {
  _parts->service.addDiskInformation(toDictionary(diskInformation));
}

- (void)removeDiskInformation:(NSDictionary*)diskInformation {
  _parts->service.removeDiskInformation(toDictionary(diskInformation));
}

- (NSMutableArray*)diskInformation {
  return [[_parts->volumes retain] autorelease];
}

- (unsigned long long)freeSpace:(unsigned int)serviceID diskIndex:(unsigned int)diskIndex {
  return _parts->service.freeSpace(serviceID, diskIndex);
}

- (unsigned long long)totalSpace:(unsigned int)serviceID diskIndex:(unsigned int)diskIndex {
  return _parts->service.totalSpace(serviceID, diskIndex);
}

// -------------------------------------------------------------------- requests

- (BOOL)syncContents:(unsigned int)serviceID
            contents:(NSArray*)contents
           mediaType:(unsigned int)mediaType
     isStartInternal:(BOOL)isStartInternal {
  return _parts->service.syncContents(serviceID, toArray(contents), mediaType, isStartInternal);
}

- (BOOL)copyContentsMacToDevice:(unsigned int)serviceID
                       contents:(NSArray*)contents
                      mediaType:(unsigned int)mediaType
                   storageIndex:(unsigned int)storageIndex {
  return _parts->service.copyContentsMacToDevice(serviceID, toArray(contents), mediaType, storageIndex);
}

- (BOOL)copyContentsDeviceToMac:(unsigned int)serviceID
                       contents:(NSArray*)contents
                destinationPath:(NSString*)destinationPath
                      mediaType:(unsigned int)mediaType
                   playlistName:(NSString*)playlistName {
  return _parts->service.copyContentsDeviceToMac(serviceID, toArray(contents), toText(destinationPath),
                                                 mediaType, toText(playlistName));
}

- (BOOL)copyContentsDeviceToDevice:(unsigned int)serviceID
                          contents:(NSArray*)contents
                     srcLocationId:(NSString*)srcLocationId
                    destLocationId:(NSString*)destLocationId
                         mediaType:(unsigned int)mediaType
                  destStorageIndex:(unsigned int)destStorageIndex {
  return _parts->service.copyContentsDeviceToDevice(serviceID, toArray(contents), toText(srcLocationId),
                                                    toText(destLocationId), mediaType, destStorageIndex);
}

- (BOOL)deleteContents:(unsigned int)serviceID
              contents:(NSArray*)contents
             mediaType:(unsigned int)mediaType
             diskIndex:(unsigned int)diskIndex {
  return _parts->service.deleteContents(serviceID, toArray(contents), mediaType, diskIndex);
}

- (BOOL)reEnumerateAtFolder:(NSString*)folder {
  return _parts->service.reEnumerateAtFolder(toText(folder));
}

- (void)cancelFileAction:(unsigned int)serviceID {
  _parts->service.cancelFileAction(serviceID);
}

// -------------------------------------------------------------------- listings

- (NSArray*)fileInformationList:(unsigned int)serviceID
                      mediaType:(unsigned int)mediaType
                      diskIndex:(unsigned int)diskIndex {
  return toHost(_parts->service.fileInformationList(serviceID, mediaType, diskIndex));
}

- (NSArray*)fileNameList:(unsigned int)serviceID
               mediaType:(unsigned int)mediaType
               diskIndex:(unsigned int)diskIndex {
  return toHost(_parts->service.fileNameList(serviceID, mediaType, diskIndex));
}

- (NSArray*)fileNameListWithFolderStructure:(unsigned int)serviceID
                                  mediaType:(unsigned int)mediaType
                                  diskIndex:(unsigned int)diskIndex {
  return toHost(_parts->service.fileNameListWithFolderStructure(serviceID, mediaType, diskIndex));
}

- (NSArray*)fileInformationListForAllMediaType:(unsigned int)serviceID {
  return toHost(_parts->service.fileInformationListForAllMediaType(serviceID));
}

- (NSArray*)fileInformationList:(NSString*)folder
                  extensionList:(NSArray*)extensionList
                      recursive:(BOOL)recursive {
  return toHost(
      _parts->service.fileInformationList(toText(folder), toArray(extensionList), bool{recursive != NO}));
}

- (NSArray*)fileInformationList:(NSString*)folder extensionList:(NSArray*)extensionList {
  return toHost(_parts->service.fileInformationList(toText(folder), toArray(extensionList)));
}

- (NSDictionary*)mediaFileInfoFromDevice:(NSDictionary*)fileInformation
                         destinationPath:(NSString*)destinationPath {
  return toHost(
      _parts->service.mediaFileInfoFromDevice(toDictionary(fileInformation), toText(destinationPath)));
}

// -------------------------------------------------------------------- folders and single files

- (BOOL)fileLists:(unsigned int)serviceID
         fileName:(NSString*)folder
        enumChild:(BOOL)enumChild
         contents:(NSArray**)contents {
  umsservice::MaybeArray listed;
  if (!_parts->service.fileLists(serviceID, toText(folder), enumChild, &listed)) return NO;
  if (contents) *contents = [[toHost(listed) copy] autorelease];
  return YES;
}

- (NSArray*)folderLists:(NSString*)folder {
  return toHost(_parts->service.folderLists(toText(folder)));
}

- (NSArray*)fileLists:(NSString*)folder {
  return toHost(_parts->service.fileLists(toText(folder)));
}

- (NSArray*)getDeviceAllFolderLists {
  return toHost(_parts->service.getDeviceAllFolderLists());
}

- (BOOL)fileExistsAtPath:(NSString*)path isDirectory:(BOOL*)isDirectory {
  const umsservice::MaybeString given = toText(path);
  bool folder = false;
  const bool exists = _parts->service.fileExistsAtPath(given, &folder);
  // Without a path there is nothing to tell, and the host's variable stays as it is.
  if (isDirectory && given) *isDirectory = folder;
  return exists;
}

- (unsigned long long)fileSizeAtDevice:(NSString*)path {
  return _parts->service.fileSizeAtDevice(toText(path));
}

- (BOOL)deletefileAtDevice:(NSString*)path error:(unsigned int*)error {
  return _parts->service.deletefileAtDevice(toText(path), error);
}

- (BOOL)deleteFolder:(NSString*)path {
  return _parts->service.deleteFolder(toText(path));
}

- (BOOL)createFolder:(NSString*)path {
  return _parts->service.createFolder(toText(path));
}

- (NSArray*)subpathsAtDisk:(unsigned int)serviceID
                 diskIndex:(unsigned int)diskIndex
               skipNoMedia:(BOOL)skipNoMedia {
  return toHost(_parts->service.subpathsAtDisk(serviceID, diskIndex, skipNoMedia));
}

// -------------------------------------------------------------------- direct transfers

- (BOOL)writeFileToDevice:(NSDictionary*)fileInformation
          destinationPath:(NSString*)destinationPath
                diskIndex:(unsigned int)diskIndex
                mediaType:(unsigned int)mediaType
              isOverWrite:(BOOL)isOverWrite
           callbackObject:(id)callbackObject
                  context:(id)context
                    error:(unsigned int*)error {
  HostContext given(context);
  return _parts->service.writeFileToDevice(toDictionary(fileInformation), toText(destinationPath), diskIndex,
                                           mediaType, isOverWrite, HostCallback::over(callbackObject), &given,
                                           error);
}

- (BOOL)readFileFromDevice:(NSDictionary*)fileInformation
           destinationPath:(NSString*)destinationPath
                 diskIndex:(unsigned int)diskIndex
                 mediaType:(unsigned int)mediaType
               isOverWrite:(BOOL)isOverWrite
            callbackObject:(id)callbackObject
                   context:(id)context
                     error:(unsigned int*)error {
  HostContext given(context);
  return _parts->service.readFileFromDevice(toDictionary(fileInformation), toText(destinationPath), diskIndex,
                                            mediaType, isOverWrite, HostCallback::over(callbackObject),
                                            &given, error);
}

- (BOOL)syncWriteFileToDevice:(NSDictionary*)fileInformation
                subFolderName:(NSString*)subFolderName
                    diskIndex:(unsigned int)diskIndex
                    mediaType:(unsigned int)mediaType
                  isOverWrite:(BOOL)isOverWrite
               callbackObject:(id)callbackObject
                      context:(id)context
                        error:(unsigned int*)error {
  HostContext given(context);
  return _parts->service.syncWriteFileToDevice(toDictionary(fileInformation), toText(subFolderName),
                                               diskIndex, mediaType, isOverWrite,
                                               HostCallback::over(callbackObject), &given, error);
}

- (BOOL)writeFileData:(NSString*)path data:(NSData*)data {
  return _parts->service.writeFileData(toText(path), toData(data));
}

- (NSData*)readFileData:(NSString*)path {
  return toHost(_parts->service.readFileData(toText(path)));
}

// -------------------------------------------------------------------- lookups

- (NSString*)copyContentToPlay:(unsigned int)serviceID
                     diskIndex:(unsigned int)diskIndex
                     mediaType:(unsigned int)mediaType
               fileInformation:(NSDictionary*)fileInformation {
  return toHost(
      _parts->service.copyContentToPlay(serviceID, diskIndex, mediaType, toDictionary(fileInformation)));
}

- (BOOL)isExistContentFromMac:(unsigned int)serviceID
                    diskIndex:(unsigned int)diskIndex
                    mediaType:(unsigned int)mediaType
              fileInformation:(NSDictionary*)fileInformation
                   returnNode:(id*)returnNode {
  static_cast<void>(returnNode);
  return _parts->service.isExistContentFromMac(serviceID, diskIndex, mediaType, toDictionary(fileInformation),
                                               nullptr);
}

// -------------------------------------------------------------------- podcast indexes

- (NSDictionary*)umsPodcastXmlData:(NSString*)filePath {
  return toHost(_parts->service.umsPodcastXmlData(toText(filePath)));
}

- (BOOL)podcastXmlLists:(unsigned int)serviceID fileName:(NSString*)folder contents:(NSArray**)contents {
  umsservice::MaybeArray listed;
  if (!_parts->service.podcastXmlLists(serviceID, toText(folder), &listed)) return NO;
  if (contents) *contents = [[toHost(listed) copy] autorelease];
  return YES;
}

@end
