/// Scans, folders and single files, on the calling thread.
#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class Files : public HostTest {
 protected:
  static std::vector<std::string> sorted(NSArray* strings) {
    return texts([strings sortedArrayUsingSelector:@selector(compare:)]);
  }
  UMSService* const service = makeDevice();
};

TEST_F(Files, AreListedFlatAndDeep) {
  sandbox.file("internal/Music/a.mp3", "a");
  sandbox.file("internal/Music/.hidden", "h");
  sandbox.folder("internal/Music/Live");
  const std::string music = internal + "/Music";
  EXPECT_EQ(sorted([service fileLists:string(music)]), std::vector<std::string>{"a.mp3"});
  EXPECT_EQ(sorted([service folderLists:string(music)]), std::vector<std::string>{"Live"});
  EXPECT_EQ([service folderLists:nil], nil);
  EXPECT_EQ([service fileLists:string(music + "/none")], nil);
  NSArray* contents = nil;
  EXPECT_TRUE([service fileLists:0 fileName:string(internal) enumChild:YES contents:&contents]);
  EXPECT_EQ(sorted(contents),
            (std::vector<std::string>{"Music", "Music/.hidden", "Music/Live", "Music/a.mp3"}));
  EXPECT_TRUE([service fileLists:0 fileName:string(internal) enumChild:NO contents:NULL]);
  EXPECT_FALSE([service fileLists:0 fileName:nil enumChild:NO contents:&contents]);
}

TEST_F(Files, BelowAMarkerAreLeftOut) {
  sandbox.file("internal/Old/.nomedia", "");
  sandbox.file("internal/Old/a.mp3", "a");
  sandbox.file("internal/New/b.mp3", "b");
  NSArray* contents = nil;
  EXPECT_TRUE([service fileLists:0 fileName:string(internal) enumChild:YES contents:&contents]);
  EXPECT_EQ(sorted(contents), (std::vector<std::string>{"New", "New/b.mp3"}));
  NSArray* markers = [NSArray arrayWithObject:@"Old/.nomedia"];
  EXPECT_FALSE([service checkNoMedia:@"Old/a.mp3" nomediaList:markers]);
  EXPECT_TRUE([service checkNoMedia:@"New/b.mp3" nomediaList:markers]);
  NSArray* paths = [NSArray arrayWithObjects:@"Old/a.mp3", @"New/b.mp3", nil];
  EXPECT_EQ(texts([service removeFileListByNoMedia:paths nomediaList:markers]),
            std::vector<std::string>{"New/b.mp3"});
}

TEST_F(Files, AreScannedWithNameAndSize) {
  sandbox.file("internal/a.mp3", "four");
  sandbox.file("internal/.hidden/b.mp3", "b");
  NSArray* seen = [service subpathsAtDisk:99 diskIndex:0 skipNoMedia:YES];
  ASSERT_EQ([seen count], 1u);
  NSDictionary* file = [seen objectAtIndex:0];
  EXPECT_EQ(text([file objectForKey:@"FilePath"]), internal + "/a.mp3");
  EXPECT_EQ(text([file objectForKey:@"FileName"]), "a.mp3");
  EXPECT_EQ(number(file, @"FileSize"), 4);
  EXPECT_TRUE([file isKindOfClass:[NSMutableDictionary class]]);
  EXPECT_EQ([[service fileScan:string(internal) skipNoMedia:NO] count], 2u);
  EXPECT_EQ([[service fileScan:string(internal)] count], 1u);
  EXPECT_EQ([service subpathsAtDisk:0 diskIndex:1 skipNoMedia:YES], nil) << "the card is empty";
  EXPECT_EQ([service subpathsAtDisk:0 diskIndex:5 skipNoMedia:YES], nil);
  EXPECT_EQ([service fileScan:nil], nil);
}

TEST_F(Files, LieInFoldersThatAreListedAsTrees) {
  sandbox.folder("internal/Music/Live");
  NSArray* trees = [service getDeviceAllFolderLists];
  ASSERT_EQ([trees count], 2u);
  NSDictionary* first = [trees objectAtIndex:0];
  EXPECT_EQ(number(first, @"diskIndex"), 0);
  EXPECT_EQ(texts([first objectForKey:@"folderLists"]),
            (std::vector<std::string>{internal, internal + "/Music", internal + "/Music/Live"}));
  EXPECT_EQ([[service recursiveFolderLists:string(card)] count], 1u);
}

TEST_F(Files, AreAskedForMadeAndDeleted) {
  const std::string path = sandbox.file("internal/a.mp3", "four");
  BOOL isDirectory = YES;
  EXPECT_TRUE([service fileExistsAtPath:string(path) isDirectory:&isDirectory]);
  EXPECT_FALSE(isDirectory);
  EXPECT_TRUE([service fileExistsAtPath:string(internal) isDirectory:&isDirectory]);
  EXPECT_TRUE(isDirectory);
  EXPECT_FALSE([service fileExistsAtPath:nil isDirectory:NULL]);
  EXPECT_EQ([service fileSizeAtDevice:string(path)], 4u);
  EXPECT_TRUE([service createFolder:string(internal + "/x/y")]);
  EXPECT_FALSE([service createFolder:string(path)]);
  EXPECT_TRUE([service deleteFolder:string(internal + "/x")]);
  unsigned int error = 77;
  EXPECT_TRUE([service deletefileAtDevice:string(path) error:&error]);
  EXPECT_EQ(error, 0u);
  EXPECT_FALSE([service deletefileAtDevice:string(path) error:&error]);
  EXPECT_EQ(error, 0x20000003u);
  EXPECT_FALSE([service deletefileAtDevice:nil error:NULL]);
}

TEST_F(Files, WithoutAPathTellNothingOfFolders) {
  BOOL isDirectory = 0x55;
  EXPECT_FALSE([service fileExistsAtPath:nil isDirectory:&isDirectory]);
  EXPECT_EQ(isDirectory, 0x55) << "left as it is";
  EXPECT_FALSE([service fileExistsAtPath:string(internal + "/none") isDirectory:&isDirectory]);
  EXPECT_EQ(isDirectory, NO);
}

TEST_F(Files, AreListedOnceAndForAll) {
  sandbox.file("internal/a.xml", "<channel/>");
  NSArray* contents = nil;
  EXPECT_TRUE([service fileLists:0 fileName:string(internal) enumChild:YES contents:&contents]);
  EXPECT_FALSE([contents isKindOfClass:[NSMutableArray class]]);
  EXPECT_TRUE([service podcastXmlLists:0 fileName:string(internal) contents:&contents]);
  EXPECT_FALSE([contents isKindOfClass:[NSMutableArray class]]);
  EXPECT_EQ(texts(contents), std::vector<std::string>{"a.xml"});
}

TEST_F(Files, WithHiddenComponentsAreHidden) {
  EXPECT_TRUE([service isHiddenFile:@"Music/.trash/x.jpg"]);
  EXPECT_FALSE([service isHiddenFile:@"Music/x.jpg"]);
}

TEST_F(Files, GetNamesThatPlayersAccept) {
  EXPECT_EQ(text([service convertAvailableFileName:@" a:b*c?.mp3 "]), "a_b_c_.mp3");
  NSMutableString* path = [service convertAvailableString:@"Music/a:b"];
  [path appendString:@"!"];
  EXPECT_EQ(text(path), "/Music/a_b!");
  EXPECT_EQ([service convertAvailableFileName:nil], nil);
}

TEST_F(Files, AreReadAndWrittenWhole) {
  NSData* data = [@"some bytes" dataUsingEncoding:NSUTF8StringEncoding];
  EXPECT_TRUE([service writeFileData:string(internal + "/blob") data:data]);
  EXPECT_EQ(bytesOf(internal + "/blob"), "some bytes");
  EXPECT_TRUE([[service readFileData:string(internal + "/blob")] isEqualToData:data]);
  EXPECT_TRUE([service writeFileData:string(internal + "/blob") data:[NSData data]]);
  EXPECT_EQ([[service readFileData:string(internal + "/blob")] length], 0u);
  EXPECT_EQ([service readFileData:string(internal + "/none")], nil);
  EXPECT_FALSE([service writeFileData:nil data:data]);
}

TEST_F(Files, ArePlayedWhereTheyLie) {
  NSDictionary* described = content("/no/such/file.mp3", "file.mp3");
  EXPECT_EQ(text([service copyContentToPlay:1 diskIndex:0 mediaType:1 fileInformation:described]),
            "/no/such/file.mp3");
  EXPECT_EQ([service copyContentToPlay:1 diskIndex:0 mediaType:1 fileInformation:[NSDictionary dictionary]],
            nil);
  id node = @"untouched";
  EXPECT_TRUE([service isExistContentFromMac:1
                                   diskIndex:0
                                   mediaType:1
                             fileInformation:described
                                  returnNode:&node]);
  EXPECT_EQ(text(node), "untouched");
  EXPECT_FALSE([service isExistContentFromMac:1 diskIndex:0 mediaType:1 fileInformation:nil returnNode:NULL]);
}

}  // namespace
}  // namespace umsplugin::testing
