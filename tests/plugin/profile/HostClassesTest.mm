/// A host that brings its own classes along: device profiles and a tag reader.
#include "HostTest.h"
#include "Try.h"
#import "UMSServiceBundle/HostClasses.h"

/// Answers with a folder for music and images; knows nothing of the others.
@interface ProfileInfo : NSObject
@end

static BOOL raises;
static NSString* lastProfileLocation;
static NSString* musicFolder = @"/Tunes";

@implementation ProfileInfo
+ (id)sharedInstance {
  static ProfileInfo* const shared = [[ProfileInfo alloc] init];
  return shared;
}
- (NSString*)contentsMusicDefaultFolderInternal:(NSString*)locationID {
  [lastProfileLocation release];
  lastProfileLocation = [locationID copy];
  return musicFolder;
}
- (NSString*)contentsMusicDefaultFolderExternal:(NSString*)locationID {
  if (raises) [NSException raise:@"ProfileException" format:@"no profile"];
  return [NSString stringWithFormat:@"/%@/CardTunes", locationID];
}
- (NSString*)contentsImageDefaultFolderInternal:(NSString*)locationID {
  return @"";
}
- (NSString*)contentsImageDefaultFolderExternal:(NSString*)locationID {
  return nil;
}
@end

/// Reads "tags" for songs and images; a song named plain.mp3 has none.
@interface OVMediaInfoFactory : NSObject
@end

static NSMutableDictionary* lastTags;

@implementation OVMediaInfoFactory
+ (id)getBuilder:(NSString*)path {
  return [[path lastPathComponent] isEqualToString:@"strange.mp3"] ? nil : [[[self alloc] init] autorelease];
}
- (NSMutableDictionary*)build:(NSString*)path {
  if (raises) [NSException raise:@"TagException" format:@"no tags"];
  if ([[path lastPathComponent] isEqualToString:@"plain.mp3"]) return nil;
  NSMutableDictionary* tags = [NSMutableDictionary dictionary];
  [tags setObject:path forKey:@"FilePath"];
  [tags setObject:[path lastPathComponent] forKey:@"FileName"];
  [tags setObject:[NSNumber numberWithUnsignedLongLong:10000000000ull] forKey:@"FileSize"];
  [tags setObject:[NSData dataWithBytes:"picture" length:7] forKey:@"AlbumArt"];
  [tags setObject:@"A Title" forKey:@"Title"];
  [tags setObject:@"seven" forKey:[NSNumber numberWithInt:7]];
  [tags setObject:[NSDate dateWithTimeIntervalSince1970:5] forKey:@"Recorded"];
  [lastTags release];
  lastTags = [tags retain];
  return tags;
}
@end

namespace umsplugin::testing {
namespace {

class HostClasses : public HostTest {
 protected:
  NSDictionary* firstOf(NSArray* files) {
    EXPECT_EQ([files count], 1u);
    return [files count] ? [files objectAtIndex:0] : nil;
  }
  UMSService* const service = makeDevice();
};

TEST_F(HostClasses, GiveTheDefaultFolders) {
  EXPECT_EQ(text([service defaultMediaContentsPath:@"/V" diskType:1 mediaType:1]), "/V/Tunes");
  EXPECT_EQ(text(lastProfileLocation), "location-1");
  EXPECT_EQ(text([service defaultMediaContentsPath:@"/V" diskType:2 mediaType:1]), "/V/location-1/CardTunes");
  EXPECT_EQ(text([service defaultMediaContentsPath:@"/V" diskType:1 mediaType:2]), "/V/DCIM/Camera");
  EXPECT_EQ(text([service defaultUmsMediaPath:0 mediaType:2]), "");
  EXPECT_EQ(text([service defaultUmsMediaPath:1 mediaType:2]), "DCIM/Camera");
  EXPECT_EQ(text([service getMediaDefaultPath:1]), "/Tunes/");
  EXPECT_EQ(text([service defaultMediaContentsPath:@"/V" diskType:1 mediaType:3]), "/V/DCIM/Camera")
      << "the profile does not answer for videos";
}

TEST_F(HostClasses, AreAskedWithoutALocationToo) {
  [service setLocationID:nil];
  EXPECT_EQ(text([service defaultMediaContentsPath:@"/V" diskType:1 mediaType:1]), "/V/Tunes");
  EXPECT_EQ(lastProfileLocation, nil);
}

TEST_F(HostClasses, MayAnswerWithSomethingElse) {
  NSString* const before = musicFolder;
  const id noText = [NSNumber numberWithInt:3];
  musicFolder = noText;
  EXPECT_EQ(text([service defaultMediaContentsPath:@"/V" diskType:1 mediaType:1]), "/V/Music");
  musicFolder = before;
}

TEST_F(HostClasses, SendSyncsToTheProfilesFolder) {
  NSArray* contents = [NSArray arrayWithObject:content(sandbox.file("mac/a.mp3", "a"), "a.mp3")];
  ASSERT_TRUE([service syncContents:1 contents:contents mediaType:1 isStartInternal:YES]);
  ASSERT_TRUE([ear waitFor:kItemResult count:1]);
  EXPECT_TRUE(exists(internal + "/Tunes/a.mp3"));
}

TEST_F(HostClasses, ReadTagsForListings) {
  sandbox.file("internal/Music/a.mp3", "a");
  sandbox.file("internal/Music/plain.mp3", "no tags");
  sandbox.file("internal/Music/strange.mp3", "no builder");
  NSDictionary* file = firstOf([service fileInformationList:1 mediaType:1 diskIndex:0]);
  EXPECT_EQ(text([file objectForKey:@"Title"]), "A Title");
  EXPECT_EQ([file objectForKey:@"AlbumArt"], nil);
  EXPECT_EQ(number(file, @"diskIndex"), 0);
  EXPECT_EQ(number(file, @"FileSize"), 10000000000);
  EXPECT_TRUE([[file objectForKey:@"Recorded"] isEqual:[NSDate dateWithTimeIntervalSince1970:5]]);
  EXPECT_EQ(text([file objectForKey:[NSNumber numberWithInt:7]]), "seven") << "whatever the key";
  EXPECT_NE([lastTags objectForKey:@"AlbumArt"], nil) << "the reader's own dictionary was copied";
}

TEST_F(HostClasses, ReadTagsOfAllTypesInPlace) {
  sandbox.file("internal/Music/a.mp3", "a");
  NSArray* groups = [service fileInformationListForAllMediaType:1];
  NSDictionary* file = firstOf([[groups objectAtIndex:0] objectForKey:@"ContentMediaTag"]);
  EXPECT_EQ(file, lastTags) << "the reader's own dictionary is handed on";
  EXPECT_EQ([lastTags objectForKey:@"AlbumArt"], nil);
}

TEST_F(HostClasses, ReadTagsForFoldersAsTheyAre) {
  sandbox.file("internal/Music/a.mp3", "a");
  NSArray* extensions = [NSArray arrayWithObject:@"MP3"];
  NSString* folder = string(internal + "/Music");
  NSDictionary* whole = firstOf([service fileInformationList:folder extensionList:extensions]);
  EXPECT_EQ(whole, lastTags);
  EXPECT_TRUE([[whole objectForKey:@"AlbumArt"] isKindOfClass:[NSData class]]);
  NSDictionary* some = firstOf([service fileInformationList:folder extensionList:extensions recursive:YES]);
  EXPECT_EQ([some count], 4u);
  EXPECT_EQ(text([some objectForKey:@"FolderName"]), "");
}

TEST_F(HostClasses, DescribeAFileThatWasPlaced) {
  NSDictionary* placed = [service mediaFileInfoFromDevice:[NSDictionary dictionary]
                                          destinationPath:string(internal + "/a.mp3")];
  EXPECT_EQ(placed, lastTags);
}

TEST_F(HostClasses, ThatRaiseEndTheRequestThatAskedThem) {
  NSArray* contents = [NSArray arrayWithObject:content(sandbox.file("mac/a.mp3", "a"), "a.mp3")];
  raises = YES;
  EXPECT_EQ(text(exceptionIn([&] { [service defaultMediaContentsPath:@"/V" diskType:2 mediaType:1]; })),
            "ProfileException");
  ASSERT_TRUE([service copyContentsDeviceToMac:1
                                      contents:contents
                               destinationPath:string(sandbox.at("back"))
                                     mediaType:1
                                  playlistName:nil]);
  ASSERT_TRUE(eventually([&] {
    NSDictionary* last = [[[ear named:kProgress] lastObject] userInfo];
    return [[last objectForKey:@"TransferStatus"] intValue] == 3;
  }));
  raises = NO;
  ASSERT_TRUE([service copyContentsMacToDevice:2 contents:contents mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(number([[[ear named:kUmsResult] lastObject] userInfo], @"Status"), 0);
}

TEST_F(HostClasses, LeadTheResultsOfCopies) {
  NSArray* contents = [NSArray arrayWithObject:content(sandbox.file("mac/a.mp3", "a"), "a.mp3")];
  ASSERT_TRUE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  NSDictionary* result = [[[ear named:kItemResult] lastObject] userInfo];
  EXPECT_EQ(text([result objectForKey:@"Title"]), "A Title");
  EXPECT_TRUE([[result objectForKey:@"AlbumArt"] isKindOfClass:[NSData class]]);
  EXPECT_EQ(text([result objectForKey:[NSNumber numberWithInt:7]]), "seven");
  EXPECT_EQ(text([result objectForKey:@"FilePath"]), internal + "/location-1/CardTunes/a.mp3")
      << "a copy asks by the volume's index, and only 1 stands for internal memory there";
  EXPECT_EQ(number(result, @"FileSize"), 10000000000);
}

}  // namespace
}  // namespace umsplugin::testing
