/// The classes that a host brings along. The service finds them at run time by name, as a bundle cannot link
/// against the application that loads it; a class that is not there means that nobody has an answer.
///
/// Asked on the host's threads and on the worker threads. Declared here as protocols so that a host can have
/// its classes checked; the service asks for the methods only.
#pragma once

#import <Foundation/Foundation.h>

/// The class named `ProfileInfo`: the default folder of each media type on a device, asked with the device's
/// location identifier (nil when the service has none). Nil means that the profile does not know. A folder
/// begins with "/".
@protocol UMSProfileInfo

+ (id)sharedInstance;
- (NSString*)contentsMusicDefaultFolderInternal:(NSString*)locationID;
- (NSString*)contentsMusicDefaultFolderExternal:(NSString*)locationID;
- (NSString*)contentsImageDefaultFolderInternal:(NSString*)locationID;
- (NSString*)contentsImageDefaultFolderExternal:(NSString*)locationID;
- (NSString*)contentsMovieDefaultFolderInternal:(NSString*)locationID;
- (NSString*)contentsMovieDefaultFolderExternal:(NSString*)locationID;
- (NSString*)contentsPodcastDefaultFolderInternal:(NSString*)locationID;
- (NSString*)contentsPodcastDefaultFolderExternal:(NSString*)locationID;

@end

/// The class named `OVMediaInfoFactory`: the tag reader.
@protocol UMSMediaInfoFactory

/// Something that answers `build:` for a file, or nil for a file of no known kind.
+ (id)getBuilder:(NSString*)path;

@end

/// What `getBuilder:` answers.
@protocol UMSMediaInfoBuilder

/// The tags of a file as a dictionary that the service may change, or nil. Keys that the service reads:
/// "FileName", "FilePath", "FileSize", "AlbumArt", "Title"; all others pass through untouched.
- (NSMutableDictionary*)build:(NSString*)path;

@end
