/// Listings of a host that has no tag reader and no profiles.
#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class ListingsWithoutTags : public HostTest {
 protected:
  ListingsWithoutTags() {
    sandbox.file("internal/Music/a.mp3", "four");
    sandbox.file("card/Music/Live/b.mp3", "seven b");
  }
  UMSService* const service = makeDevice();
};

TEST_F(ListingsWithoutTags, NameFilesAndFolders) {
  NSArray* names = [service fileNameList:1 mediaType:1 diskIndex:0];
  ASSERT_EQ([names count], 1u);
  NSDictionary* file = [names objectAtIndex:0];
  EXPECT_EQ([file count], 3u);
  EXPECT_EQ(text([file objectForKey:@"FileName"]), "a.mp3");
  EXPECT_EQ(text([file objectForKey:@"FilePath"]), internal + "/Music/a.mp3");
  EXPECT_EQ(number(file, @"diskIndex"), 0);
  NSDictionary* onCard = [[service fileNameListWithFolderStructure:1 mediaType:1 diskIndex:1] lastObject];
  EXPECT_EQ(text([onCard objectForKey:@"FileName"]), "External/Music/Live/b.mp3");
  EXPECT_EQ(number(onCard, @"FileSize"), 7);
  EXPECT_EQ([service fileNameList:1 mediaType:4 diskIndex:0], nil);
  EXPECT_EQ([service fileNameList:1 mediaType:1 diskIndex:7], nil);
}

TEST_F(ListingsWithoutTags, HaveNoTaggedFiles) {
  EXPECT_EQ([[service fileInformationList:1 mediaType:1 diskIndex:0] count], 0u);
  EXPECT_NE([service fileInformationList:1 mediaType:1 diskIndex:0], nil);
  EXPECT_EQ([service fileInformationList:1 mediaType:5 diskIndex:0], nil);
  NSArray* groups = [service fileInformationListForAllMediaType:1];
  ASSERT_EQ([groups count], 8u);
  EXPECT_EQ(number([groups objectAtIndex:5], @"DiskIndex"), 1);
  EXPECT_EQ(number([groups objectAtIndex:5], @"ContentMediaType"), 2);
  EXPECT_EQ([[groups objectAtIndex:0] objectForKey:@"ContentMediaTag"], nil);
}

TEST_F(ListingsWithoutTags, DescribeFilesOfAnyFolder) {
  NSArray* all = [NSArray arrayWithObject:@"*"];
  NSDictionary* file = [[service fileInformationList:string(card) extensionList:all
                                           recursive:YES] lastObject];
  EXPECT_EQ(text([file objectForKey:@"FolderName"]), "Music/Live");
  EXPECT_EQ(text([file objectForKey:@"FileName"]), "Music/Live/b.mp3");
  EXPECT_EQ(number(file, @"FileSize"), 7);
  EXPECT_EQ([[service fileInformationList:string(card) extensionList:all recursive:NO] count], 0u);
  EXPECT_EQ([[service fileInformationList:string(card) extensionList:all] count], 0u);
  EXPECT_EQ([service fileInformationList:string(card) extensionList:nil recursive:YES], nil);
}

TEST_F(ListingsWithoutTags, TakeADescriptionWithATitleAsItIs) {
  NSDictionary* described = [NSDictionary
      dictionaryWithObjectsAndKeys:@"T", @"Title", @"/mac/a.mp3", @"FilePath", [NSNull null], @"Genre", nil];
  NSDictionary* placed = [service mediaFileInfoFromDevice:described destinationPath:@"/device/a.mp3"];
  EXPECT_EQ(text([placed objectForKey:@"FilePath"]), "/device/a.mp3");
  EXPECT_EQ([placed objectForKey:@"Genre"], [NSNull null]);
  EXPECT_EQ(text([described objectForKey:@"FilePath"]), "/mac/a.mp3");
  EXPECT_EQ([service mediaFileInfoFromDevice:[NSDictionary dictionary] destinationPath:@"/device/a.mp3"],
            nil);
}

}  // namespace
}  // namespace umsplugin::testing
