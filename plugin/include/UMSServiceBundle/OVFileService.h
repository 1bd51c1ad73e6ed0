/// The host's protocol for the file service of one device; `UMSService` is the one for devices attached as
/// USB mass storage. A host may have others, also as destinations of device-to-device copies.
///
/// Every method may be called from any thread, and from inside a notification handler. Paths are full paths,
/// volume indexes are 0-based ("diskIndex"), sizes are bytes. Error out-parameters are written only where a
/// step has a number of its own, and may be NULL. docs/host-guide.md has the whole story.
#pragma once

#import <Foundation/Foundation.h>

@protocol OVFileService <NSObject>

// Life and identity.

- (id)initWithLocationID:(NSString*)locationID;
/// Not retained; nil leaves the old one in place.
- (void)setConfirmDelegate:(id)delegate;
- (void)setLocationID:(NSString*)locationID;
- (NSString*)locationID;
/// Takes the model name from the key "MN".
- (void)setDeviceInformation:(NSDictionary*)deviceInformation;
- (NSString*)modelName;
- (BOOL)exitServiceThread;
/// 1 once the service is being released or its device has gone, 0 before.
- (unsigned char)getReleaseState;

// Volumes.

- (void)addDiskInformation:(NSDictionary*)diskInformation;
/// Wants a dictionary taken from `diskInformation`, its "diskIndex" included.
- (void)removeDiskInformation:(NSDictionary*)diskInformation;
/// The list itself, not a copy.
- (NSMutableArray*)diskInformation;
- (unsigned long long)freeSpace:(unsigned int)serviceID diskIndex:(unsigned int)diskIndex;
- (unsigned long long)totalSpace:(unsigned int)serviceID diskIndex:(unsigned int)diskIndex;

// Requests: YES when queued. What comes of them is told by notifications.

- (BOOL)syncContents:(unsigned int)serviceID
            contents:(NSArray*)contents
           mediaType:(unsigned int)mediaType
     isStartInternal:(BOOL)isStartInternal;
- (BOOL)copyContentsMacToDevice:(unsigned int)serviceID
                       contents:(NSArray*)contents
                      mediaType:(unsigned int)mediaType
                   storageIndex:(unsigned int)storageIndex;
- (BOOL)copyContentsDeviceToMac:(unsigned int)serviceID
                       contents:(NSArray*)contents
                destinationPath:(NSString*)destinationPath
                      mediaType:(unsigned int)mediaType
                   playlistName:(NSString*)playlistName;
- (BOOL)copyContentsDeviceToDevice:(unsigned int)serviceID
                          contents:(NSArray*)contents
                     srcLocationId:(NSString*)srcLocationId
                    destLocationId:(NSString*)destLocationId
                         mediaType:(unsigned int)mediaType
                  destStorageIndex:(unsigned int)destStorageIndex;
- (BOOL)deleteContents:(unsigned int)serviceID
              contents:(NSArray*)contents
             mediaType:(unsigned int)mediaType
             diskIndex:(unsigned int)diskIndex;
- (void)cancelFileAction:(unsigned int)serviceID;
- (BOOL)reEnumerateAtFolder:(NSString*)folder;

// Listings, on the calling thread. The first number is not used.

- (NSArray*)fileInformationList:(unsigned int)serviceID
                      mediaType:(unsigned int)mediaType
                      diskIndex:(unsigned int)diskIndex;
- (NSArray*)fileNameList:(unsigned int)serviceID
               mediaType:(unsigned int)mediaType
               diskIndex:(unsigned int)diskIndex;
- (NSArray*)fileNameListWithFolderStructure:(unsigned int)serviceID
                                  mediaType:(unsigned int)mediaType
                                  diskIndex:(unsigned int)diskIndex;
- (NSArray*)fileInformationListForAllMediaType:(unsigned int)serviceID;
- (NSArray*)fileInformationList:(NSString*)folder
                  extensionList:(NSArray*)extensionList
                      recursive:(BOOL)recursive;
- (NSArray*)fileInformationList:(NSString*)folder extensionList:(NSArray*)extensionList;
- (NSDictionary*)mediaFileInfoFromDevice:(NSDictionary*)fileInformation
                         destinationPath:(NSString*)destinationPath;
- (NSArray*)subpathsAtDisk:(unsigned int)serviceID
                 diskIndex:(unsigned int)diskIndex
               skipNoMedia:(BOOL)skipNoMedia;

// Folders and single files, on the calling thread.

- (NSArray*)folderLists:(NSString*)folder;
- (NSArray*)fileLists:(NSString*)folder;
- (NSArray*)getDeviceAllFolderLists;
- (BOOL)fileExistsAtPath:(NSString*)path isDirectory:(BOOL*)isDirectory;
- (unsigned long long)fileSizeAtDevice:(NSString*)path;
- (BOOL)deletefileAtDevice:(NSString*)path error:(unsigned int*)error;
- (BOOL)deleteFolder:(NSString*)path;
- (BOOL)createFolder:(NSString*)path;

// Direct transfers, on the calling thread. The callback object, which may be nil, is told of every 4096 bytes
// with the context object as it was given; the answer NO stops the copy. See `UMSTransferCallback`.

- (BOOL)writeFileToDevice:(NSDictionary*)fileInformation
          destinationPath:(NSString*)destinationPath
                diskIndex:(unsigned int)diskIndex
                mediaType:(unsigned int)mediaType
              isOverWrite:(BOOL)isOverWrite
           callbackObject:(id)callbackObject
                  context:(id)context
                    error:(unsigned int*)error;
- (BOOL)readFileFromDevice:(NSDictionary*)fileInformation
           destinationPath:(NSString*)destinationPath
                 diskIndex:(unsigned int)diskIndex
                 mediaType:(unsigned int)mediaType
               isOverWrite:(BOOL)isOverWrite
            callbackObject:(id)callbackObject
                   context:(id)context
                     error:(unsigned int*)error;
- (BOOL)syncWriteFileToDevice:(NSDictionary*)fileInformation
                subFolderName:(NSString*)subFolderName
                    diskIndex:(unsigned int)diskIndex
                    mediaType:(unsigned int)mediaType
                  isOverWrite:(BOOL)isOverWrite
               callbackObject:(id)callbackObject
                      context:(id)context
                        error:(unsigned int*)error;
- (BOOL)writeFileData:(NSString*)path data:(NSData*)data;
- (NSData*)readFileData:(NSString*)path;

// Play and existence: answered from the description alone.

- (NSString*)copyContentToPlay:(unsigned int)serviceID
                     diskIndex:(unsigned int)diskIndex
                     mediaType:(unsigned int)mediaType
               fileInformation:(NSDictionary*)fileInformation NS_RETURNS_NOT_RETAINED;
/// `returnNode` is never written.
- (BOOL)isExistContentFromMac:(unsigned int)serviceID
                    diskIndex:(unsigned int)diskIndex
                    mediaType:(unsigned int)mediaType
              fileInformation:(NSDictionary*)fileInformation
                   returnNode:(id*)returnNode;

// A file service of another kind of device may have these. `UMSService` has none of them: players and phones
// that are plain volumes know no playlists. Ask `respondsToSelector:` first.
@optional

- (BOOL)readPlaylistFromDevice:(NSString*)playlistName
                    destFolder:(NSString*)destFolder
                     mediaType:(unsigned int)mediaType;
- (NSArray*)playlistNameInformation:(unsigned int)serviceID mediaType:(unsigned int)mediaType;
- (BOOL)syncPlaylistContents:(NSArray*)contents mediaType:(unsigned int)mediaType isDelete:(BOOL)isDelete;
- (BOOL)deleteContentsAtPlaylist:(unsigned int)serviceID
                        contents:(NSArray*)contents
                       mediaType:(unsigned int)mediaType
                    playlistName:(NSString*)playlistName;
- (BOOL)addContentsToPlaylist:(unsigned int)serviceID
                     contents:(NSArray*)contents
                    mediaType:(unsigned int)mediaType
                 playlistName:(NSString*)playlistName;
- (BOOL)renamePlaylist:(NSString*)playlistName
      destPlaylistName:(NSString*)destPlaylistName
             mediaType:(unsigned int)mediaType;
- (BOOL)deletePlaylist:(NSString*)playlistName mediaType:(unsigned int)mediaType;
- (NSArray*)playlistInformationList:(unsigned int)serviceID
                          mediaType:(unsigned int)mediaType
                       playlistName:(NSString*)playlistName;
- (BOOL)createPlaylist:(NSString*)playlistName mediaType:(unsigned int)mediaType contents:(NSArray*)contents;
- (BOOL)releaseHiddenStorage;
- (NSString*)friendlyName;
- (BOOL)syncContents:(unsigned int)serviceID
            contents:(NSArray*)contents
           mediaType:(unsigned int)mediaType
           diskIndex:(unsigned int)diskIndex
     destinationPath:(NSString*)destinationPath;
- (BOOL)copyContentsMacToDevice:(unsigned int)serviceID
                       contents:(NSArray*)contents
                      mediaType:(unsigned int)mediaType
                   storageIndex:(unsigned int)storageIndex
                   playlistName:(NSString*)playlistName;

@end

/// What the callback object of a direct transfer answers: the first for `writeFileToDevice:...` and
/// `readFileFromDevice:...`, the second for `syncWriteFileToDevice:...`. A callback object without the method
/// is not told of progress.
@protocol UMSTransferCallback <NSObject>
@optional

- (BOOL)transferProgressInfo:(id)context
             maxTransferSize:(unsigned int)maxTransferSize
         currentTransferSize:(unsigned int)currentTransferSize;
- (BOOL)transferProgressInfoEx:(id)context
               maxTransferSize:(unsigned long long)maxTransferSize
           currentTransferSize:(unsigned long long)currentTransferSize;

@end
