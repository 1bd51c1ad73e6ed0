/// The format of a podcast channel's index file: between the dictionary that hosts know, the document, and
/// the bytes of the file.
///
/// A channel is a dictionary of texts with its episodes, dictionaries too, under "children". A converter has
/// no state; one may be used from any thread, a document from one thread at a time. Where the platform has
/// windows the class stands where hosts expect it, below their window controllers; it shows none.
#pragma once

#import <Foundation/Foundation.h>

#ifdef __APPLE__
#import <AppKit/AppKit.h>
@interface QDUIPodcastXMLConverter : NSWindowController
#else
@interface QDUIPodcastXMLConverter : NSObject
#endif

- (id)init;
/// A document of the channel's fields, and of its episodes when they are to be included.
- (NSXMLDocument*)makePodcastXMLFromPodcastDictionary:(NSDictionary*)podcast
                                       includeEpisode:(BOOL)includeEpisode;
/// The channel that the bytes of an index hold; nil when they are no index.
- (NSMutableDictionary*)makePodcastDictionaryFromXML:(NSData*)data;
/// Appends an episode, unless there is one with its "Url".
- (void)addPodcastEpisode:(NSDictionary*)episode inXML:(NSXMLDocument*)document;
/// Removes the first episode with that "Url", if there is one.
- (void)removePodcastEpisode:(NSDictionary*)episode inXML:(NSXMLDocument*)document;

@end
