#include <unistd.h>

#include <filesystem>

#include "ListingsTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kTaggedListingMethod = "-[UMSService fileInformationList:mediaType:diskIndex:]";

/// The listing of one media type with tags.
class TaggedListing : public ListingsTest {
 protected:
  MaybeArray list(uint32_t mediaType, uint32_t diskIndex = 0) {
    return service->fileInformationList(0, mediaType, diskIndex);
  }
  Lines listed(uint32_t mediaType, uint32_t diskIndex = 0) { return paths(list(mediaType, diskIndex)); }
};

TEST_F(TaggedListing, GivesTheTagsWithTheVolumeAndWithoutTheCover) {
  put("card/Music/a.mp3");
  const auto found = list(kMediaMusic, 1);
  ASSERT_TRUE(found && found->count() == 1);
  EXPECT_EQ(typed(*found->at(0).dictionary()),
            (Lines{"Artist: text Someone", "FileName: text a.mp3", "FilePath: text " + card + "/Music/a.mp3",
                   "FileSize: u64 7", "Title: text Title of a.mp3", "diskIndex: u32 1"}));
}

TEST_F(TaggedListing, LeavesTheReadersOwnDictionaryAsItIs) {
  Dictionary own = tagsOf("/x/a.mp3");
  tags->answer = [&](const std::string&) { return own; };
  put("internal/a.mp3");
  ASSERT_EQ(list(kMediaMusic)->count(), 1u);
  EXPECT_TRUE(own.contains("AlbumArt"));
  EXPECT_FALSE(own.contains(key::kDiskIndex));
}

TEST_F(TaggedListing, FindsTheFilesOfATypeAtEveryDepthOfTheVolume) {
  for (const char* name :
       {"a.mp3", "deep/er/b.FLAC", "Music/c.txt", "Music/noextension", "DCIM/d.jpg", "e.mp4", "f.xml"})
    put(std::string("internal/") + name);
  sandbox.file("internal/DCIM/large.JPG", std::string(6000, 'x'));
  put("card/g.mp3");
  EXPECT_EQ(listed(kMediaMusic), (Lines{"$/internal/a.mp3", "$/internal/deep/er/b.FLAC"}));
  EXPECT_EQ(listed(kMediaImage), Lines{"$/internal/DCIM/large.JPG"});
  EXPECT_EQ(listed(kMediaVideo), Lines{"$/internal/e.mp4"});
  EXPECT_EQ(listed(kMediaMusic, 1), Lines{"$/card/g.mp3"});
}

TEST_F(TaggedListing, MayBeEmpty) {
  EXPECT_EQ(listed(kMediaMusic), Lines{});
  std::filesystem::remove_all(internal);
  EXPECT_EQ(listed(kMediaMusic), Lines{});  // a volume that cannot be walked counts as empty
}

TEST_F(TaggedListing, GivesNilForOtherTypesAndUnknownVolumes) {
  put("internal/a.mp3");
  for (uint32_t mediaType : {0u, 5u, 6u, 0xffffffffu})
    EXPECT_EQ(listed(mediaType), Lines{"nil"}) << mediaType;
  for (uint32_t mediaType : {1u, 2u, 3u, 4u}) EXPECT_EQ(listed(mediaType, 2), Lines{"nil"}) << mediaType;
  EXPECT_EQ(linesOf(surroundings, kTaggedListingMethod), Lines{});
}

TEST_F(TaggedListing, SaysWhenAVolumeHasNoPath) {
  service->addDiskInformation(Dictionary{{key::kDiskType, 2}});
  for (uint32_t mediaType : {1u, 2u, 3u}) {
    expectLine(surroundings, 1, kTaggedListingMethod, "Get UMS Music list failed",
               [&] { EXPECT_EQ(listed(mediaType, 2), Lines{"nil"}); });
  }
  expectLine(surroundings, 1, kTaggedListingMethod, "UmsPodcastXmlList is failed",
             [&] { EXPECT_EQ(listed(kMediaPodcast, 2), Lines{"nil"}); });
}

TEST_F(TaggedListing, NeverListsThumbnails) {
  sandbox.file("internal/small.jpg", std::string(5000, 'x'));
  sandbox.file("internal/large.jpg", std::string(5001, 'x'));
  EXPECT_EQ(listed(kMediaImage), Lines{"$/internal/large.jpg"});
  EXPECT_EQ(paths(service->fileNameList(0, kMediaImage, 0)),
            (Lines{"$/internal/large.jpg", "$/internal/small.jpg"}));
}

TEST_F(TaggedListing, AppliesTheSizeToImagesOnly) {
  put("internal/a.mp3");
  put("internal/b.mp4");
  EXPECT_EQ(listed(kMediaMusic).size(), 1u);
  EXPECT_EQ(listed(kMediaVideo).size(), 1u);
}

TEST_F(TaggedListing, KeepsAnImageWhoseSizeCannotBeRead) {
  put("internal/small.jpg");
  files.failAlways(FileCall::Attributes, "small.jpg", EIO);
  EXPECT_EQ(listed(kMediaImage), Lines{"$/internal/small.jpg"});
}

TEST_F(TaggedListing, ReadsAnImagesSizeAsASigned32BitNumber) {
  const std::string path = sandbox.file("internal/huge.png", "");
  ASSERT_EQ(::truncate(path.c_str(), off_t{1} << 31), 0);
  EXPECT_EQ(listed(kMediaImage), Lines{});
  ASSERT_EQ(::truncate(path.c_str(), (off_t{1} << 32) + 5001), 0);
  EXPECT_EQ(listed(kMediaImage), Lines{"$/internal/huge.png"});
}

TEST_F(TaggedListing, PassesOverFilesWithoutATagReaderOrTags) {
  for (const char* name : {"a.mp3", "b.mp3", "c.mp3"}) put(std::string("internal/") + name);
  tags->knows = [](const std::string& path) { return !path.ends_with("a.mp3"); };
  tags->answer = [](const std::string& path) {
    return path.ends_with("b.mp3") ? std::nullopt : MaybeDictionary(tagsOf(path));
  };
  EXPECT_EQ(listed(kMediaMusic), Lines{"$/internal/c.mp3"});
}

TEST_F(TaggedListing, IsEmptyWithoutATagReaderInTheHost) {
  surroundings.environment.mediaInfoFactory.reset();
  service = surroundings.makeService();
  service->addDiskInformation(disk(1, internal));
  put("internal/a.mp3");
  EXPECT_EQ(listed(kMediaMusic), Lines{});
}

TEST_F(TaggedListing, NeverListsWhatIsHiddenBelowTheVolume) {
  put("internal/Music/.hidden/a.mp3");
  put("internal/Music/.b.mp3");
  put("internal/Music/c.mp3");
  EXPECT_EQ(listed(kMediaMusic), Lines{"$/internal/Music/c.mp3"});
  EXPECT_EQ(paths(service->subpathsAtDisk(0, 0, false)).size(), 3u);
}

TEST_F(TaggedListing, DoesNotMindAHiddenMountPoint) {
  put(".mnt/card/a.mp3");
  service->addDiskInformation(disk(2, sandbox.at(".mnt/card")));
  EXPECT_EQ(listed(kMediaMusic, 2), Lines{"$/.mnt/card/a.mp3"});
}

TEST_F(TaggedListing, LeavesOutWhatBeginsLikeAMarkedFolder) {
  for (const char* name : {"Music/Old/.nomedia", "Music/Old/a.mp3", "Music/Oldies/b.mp3", "Music/Ol/c.mp3"})
    put(std::string("internal/") + name);
  EXPECT_EQ(listed(kMediaMusic), Lines{"$/internal/Music/Ol/c.mp3"});
  put("internal/.NOMEDIA");
  EXPECT_EQ(listed(kMediaMusic), Lines{});
}

TEST_F(TaggedListing, IsNotEndedByARelease) {
  put("internal/a.mp3");
  service->exitServiceThread();
  EXPECT_EQ(listed(kMediaMusic), Lines{"$/internal/a.mp3"});
}

TEST_F(TaggedListing, GoesOnPastOneBadFile) {
  put("internal/M\xff/a\xfe.mp3");
  put("internal/b.mp3");
  sandbox.folder("internal/c.mp3");  // the reader is asked about folders too
  ASSERT_EQ(::symlink("loop.mp3", (internal + "/loop.mp3").c_str()), 0);
  ASSERT_EQ(::symlink(internal.c_str(), (internal + "/up").c_str()), 0);
  tags->answer = [](const std::string& path) {
    return exists(path) && !path.ends_with("c.mp3") && !path.ends_with("loop.mp3")
               ? MaybeDictionary(tagsOf(path))
               : std::nullopt;
  };
  EXPECT_EQ(listed(kMediaMusic), (Lines{"$/internal/M\xff/a\xfe.mp3", "$/internal/b.mp3"}));
}

// -------------------------------------------------------------------- names without tags

class NameListing : public ListingsTest {};

TEST_F(NameListing, GivesVolumePathAndName) {
  put("card/Music/a.mp3");
  const auto found = service->fileNameList(0, kMediaMusic, 1);
  ASSERT_TRUE(found && found->count() == 1);
  EXPECT_EQ(typed(*found->at(0).dictionary()),
            (Lines{"FileName: text a.mp3", "FilePath: text " + card + "/Music/a.mp3", "diskIndex: u32 1"}));
}

TEST_F(NameListing, WithFoldersGivesThePathBelowTheVolumeAndTheSize) {
  put("internal/Music/a.mp3");
  put("card/Music/a.mp3");
  EXPECT_EQ(typed(*service->fileNameListWithFolderStructure(0, kMediaMusic, 0)->at(0).dictionary()),
            (Lines{"FileName: text Music/a.mp3", "FilePath: text " + internal + "/Music/a.mp3",
                   "FileSize: u64 2", "diskIndex: u32 0"}));
  EXPECT_EQ(typed(*service->fileNameListWithFolderStructure(0, kMediaMusic, 1)->at(0).dictionary()),
            (Lines{"FileName: text External/Music/a.mp3", "FilePath: text " + card + "/Music/a.mp3",
                   "FileSize: u64 2", "diskIndex: u32 1"}));
}

TEST_F(NameListing, AppliesTheSameRulesWithoutTags) {
  for (const char* name :
       {"a.MP3", ".hidden/b.mp3", "c.txt", "noextension", "Old/.nomedia", "Old/d.mp3", "e.jpg"})
    put(std::string("internal/") + name);
  tags->answer = [](const std::string&) -> MaybeDictionary { throw std::logic_error("no tags are read"); };
  EXPECT_EQ(paths(service->fileNameList(0, kMediaMusic, 0)), Lines{"$/internal/a.MP3"});
  EXPECT_EQ(paths(service->fileNameListWithFolderStructure(0, kMediaMusic, 0)), Lines{"$/internal/a.MP3"});
  EXPECT_EQ(paths(service->fileNameList(0, kMediaImage, 0)), Lines{"$/internal/e.jpg"});  // two bytes
}

TEST_F(NameListing, GivesNilForOtherTypesAndUnknownVolumes) {
  for (uint32_t mediaType : {0u, 4u, 5u}) {
    EXPECT_FALSE(service->fileNameList(0, mediaType, 0));
    EXPECT_FALSE(service->fileNameListWithFolderStructure(0, mediaType, 0));
  }
  EXPECT_FALSE(service->fileNameList(0, kMediaMusic, 2));
  EXPECT_FALSE(service->fileNameListWithFolderStructure(0, kMediaMusic, 2));
  EXPECT_EQ(paths(service->fileNameList(0, kMediaMusic, 0)), Lines{});
}

TEST_F(NameListing, SaysWhenAVolumeHasNoPath) {
  service->addDiskInformation(Dictionary{{key::kDiskType, 2}});
  expectLine(surroundings, 1, "-[UMSService fileNameList:mediaType:diskIndex:]", "Get UMS Music list failed",
             [&] { EXPECT_FALSE(service->fileNameList(0, kMediaVideo, 2)); });
  expectLine(surroundings, 1, "-[UMSService fileNameListWithFolderStructure:mediaType:diskIndex:]",
             "Get UMS Music list failed",
             [&] { EXPECT_FALSE(service->fileNameListWithFolderStructure(0, kMediaVideo, 2)); });
}

TEST_F(NameListing, GivesNilOnceReleased) {
  put("internal/a.txt");
  service->exitServiceThread();
  EXPECT_FALSE(service->fileNameList(0, kMediaMusic, 0));
  EXPECT_FALSE(service->fileNameListWithFolderStructure(0, kMediaMusic, 0));
}

TEST_F(NameListing, GivesNilWhenReleasedWhileTheFoldersAreListed) {
  put("internal/a.mp3");
  listing->onList = [&](const std::string&, auto&) { service->exitServiceThread(); };
  EXPECT_FALSE(service->fileNameList(0, kMediaMusic, 0));
}

TEST_F(NameListing, GivesNilWhenReleasedWhileSizesAreRead) {
  put("internal/a.mp3");
  put("internal/b.mp3");
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Attributes && path.ends_with("/a.mp3")) service->exitServiceThread();
    return 0;
  });
  EXPECT_FALSE(service->fileNameListWithFolderStructure(0, kMediaMusic, 0));
  EXPECT_EQ(files.count(FileCall::Attributes), 1u);
}

}  // namespace
}  // namespace umsservice::testing
