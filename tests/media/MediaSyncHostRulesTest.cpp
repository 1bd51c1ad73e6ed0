#include <filesystem>

#include "SyncTest.h"

namespace umsservice::testing {
namespace {

/// A host's view: volumes below "/Volumes", relative folders and folders at the top caught in the sandbox.
class MediaSyncHostRules : public ::testing::Test {
 protected:
  MediaSyncHostRules() {
    auto top = std::make_shared<MappedFileSystem>("/Card", sandbox.folder("top"), surroundings.files);
    surroundings.environment.fileSystem =
        std::make_shared<MappedFileSystem>("/Volumes", sandbox.folder("volumes"), top);
    surroundings.environment.placementRules = hostPlacementRules();
    service = surroundings.makeService();
    service->addDiskInformation(disk(1, "/Volumes/PHONE"));
    service->addDiskInformation(disk(2, "/Volumes/CARD"));
    request.contents = Array{content(sandbox.patternFile("in/a.mp3", 50'000), "a.mp3")};
    before = std::filesystem::current_path();
    std::filesystem::current_path(sandbox.folder("here"));
  }
  ~MediaSyncHostRules() override { std::filesystem::current_path(before); }

  bool run() { return service->doSyncMediaContents(request); }
  Lines tree(const std::string& folder) const { return treeOf(sandbox.at(folder)); }

  TestSurroundings surroundings;
  const Sandbox& sandbox = surroundings.sandbox;
  std::string phone = sandbox.folder("volumes/PHONE");
  std::string card = sandbox.folder("volumes/CARD");
  std::shared_ptr<UMSService> service;
  _serviceinfo request = syncRequest(7);
  std::filesystem::path before;
};

TEST_F(MediaSyncHostRules, JoinVolumeAndProfileFolderWithNothingBetween) {
  surroundings.profile->musicInternal = "/Songs";
  EXPECT_TRUE(run());
  EXPECT_EQ(tree("volumes"), (Lines{"CARD/", "PHONE/", "PHONE/Songs/", "PHONE/Songs/a.mp3"}));
  EXPECT_EQ(story(surroundings).at(1), "result 0x10000001 volume 0 /Volumes/PHONE/Songs/a.mp3");
}

TEST_F(MediaSyncHostRules, JoinVolumeAndFixedNameWithNothingBetweenToo) {
  EXPECT_TRUE(run());
  EXPECT_EQ(tree("volumes"), (Lines{"CARD/", "PHONE/", "PHONEMusic/", "PHONEMusic/a.mp3"}));
}

TEST_F(MediaSyncHostRules, FindTheVolumeOfAPathBelowVolumes) {
  surroundings.profile->musicInternal = "/Songs";
  ASSERT_TRUE(run());
  EXPECT_TRUE(surroundings.log->has("Volume Name string = /Volumes/PHONE/"));
}

TEST_F(MediaSyncHostRules, FallOverToTheFailedVolumesPathWithTheCandidatesFolder) {
  surroundings.profile->musicInternal = "/Songs";
  surroundings.profile->musicExternal = "/Card/Songs";
  sandbox.file("volumes/PHONE/Songs/a.mp3", "old");  // a conflict that nobody settles
  EXPECT_FALSE(run());
  EXPECT_EQ(tree("volumes"), (Lines{"CARD/", "PHONE/", "PHONE/Card/", "PHONE/Card/Songs/",
                                    "PHONE/Card/Songs/a.mp3", "PHONE/Songs/", "PHONE/Songs/a.mp3"}));
  EXPECT_EQ(tree("top"), Lines{"Songs/"});  // the folder is made under its own name
  EXPECT_EQ(story(surroundings).at(1), "result 0x10000001 volume 1 /Volumes/PHONE/Songs/a.mp3");
  EXPECT_EQ(outcomesOf(surroundings),
            Lines{"0 done 0x00000000 50000 bytes to /Volumes/PHONE/Card/Songs/a.mp3"});
}

TEST_F(MediaSyncHostRules, MakeARelativeFolderWhereTheProcessStands) {
  surroundings.profile->musicInternal = "/Songs";  // the card has its fixed name
  sandbox.file("volumes/PHONE/Songs/a.mp3", "old");
  EXPECT_FALSE(run());
  EXPECT_EQ(tree("here"), Lines{"Music/"});
  // The joined path names a volume that is not there, so nothing fits on it.
  EXPECT_EQ(outcomesOf(surroundings), Lines{"0 failed 0x1000000a 0 bytes to /Volumes/PHONE/Songs/a.mp3"});
  EXPECT_EQ(story(surroundings).back(), "result 0x1000000a volume 1 /Volumes/PHONE/Songs/a.mp3");
}

TEST_F(MediaSyncHostRules, NameTheFoldersAsTheProfileGivesThemWhenTheyCannotBeMade) {
  surroundings.profile->musicInternal = "/Songs";
  surroundings.profile->musicExternal = "/Card/Songs";
  sandbox.file("volumes/PHONE/Songs/a.mp3", "old");
  sandbox.file("top/Songs", "a file of that name");
  EXPECT_FALSE(run());
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod),
            (Lines{"Create Folder for /Card/Songs is failed", "Sync $/in/a.mp3 failed."}));
  EXPECT_EQ(outcomesOf(surroundings), Lines{"0 failed 0x21000002 0 bytes to /Volumes/PHONE/Songs/a.mp3"});
}

TEST_F(MediaSyncHostRules, LeaveAFileThatDoesNotFitWithoutAPlace) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume full(phone, 1 << 20);
  full.fillUpTo(40'960);
  surroundings.profile->musicInternal = "/Songs";
  surroundings.profile->musicExternal = "/Songs";
  request.contents->append(content(sandbox.file("in/b.mp3", "la"), "b.mp3"));
  EXPECT_TRUE(run());
  EXPECT_EQ(tree("volumes/CARD"), Lines{});
  EXPECT_EQ(story(surroundings), (Lines{"progress 2/2 fail 1 status 4 100% a.mp3",
                                        "result 0x1000000a volume 1 /Volumes/PHONE/Songs/a.mp3",
                                        "progress 2/2 fail 1 status 4 0% b.mp3",
                                        "result 0x10000001 volume 1 /Volumes/PHONE/Songs/b.mp3",
                                        "progress 2/2 fail 1 status 4 100% b.mp3"}));
}

}  // namespace
}  // namespace umsservice::testing
