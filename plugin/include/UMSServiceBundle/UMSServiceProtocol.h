/// What only the service of a USB mass-storage device has, beside `OVFileService`.
#pragma once

#import <Foundation/Foundation.h>

@protocol UMSService <NSObject>

/// Marks the device as gone when the location is this service's (in any letter case), then waits while the
/// host marks a transfer.
- (void)disconnectDevice:(NSString*)locationID;
/// The podcast channel of one index file with full episode paths, after mending the index; nil on failure.
- (NSDictionary*)umsPodcastXmlData:(NSString*)filePath;
/// The index files below a folder, as paths relative to it. The number is not used.
- (BOOL)podcastXmlLists:(unsigned int)serviceID fileName:(NSString*)folder contents:(NSArray**)contents;
/// The entries of a folder, deeply or not, without what lies under ".nomedia" folders. The number is not
/// used.
- (BOOL)fileLists:(unsigned int)serviceID
         fileName:(NSString*)folder
        enumChild:(BOOL)enumChild
         contents:(NSArray**)contents;

@end
