#include <cerrno>

#include "Sandbox.h"
#include "WrappedFileSystem.h"
#include "umsservice/PlacementRules.h"

namespace umsservice::testing {
namespace {

class HostPlacement : public ::testing::Test {
 protected:
  Sandbox sandbox;
  MappedFileSystem files{"/Volumes", sandbox.folder("Volumes")};
  std::shared_ptr<const PlacementRules> rules = hostPlacementRules();
};

TEST_F(HostPlacement, FindsTheVolumeByWalkingThePathOverVolumes) {
  const std::pair<const char*, const char*> rows[] = {
      {"/Volumes/CARD/Music/a.mp3", "/Volumes/CARD/"},
      {"/Volumes/CARD/Music/", "/Volumes/CARD/"},
      {"/Volumes/CARD/", "/Volumes/CARD/"},
      {"/Volumes/CARD", "/Volumes/CARD/"},
      {"/Volumes/MY CARD/a", "/Volumes/MY CARD/"},
      {"/volumes/CARD/a", "/volumes/CARD/"},
      {"/VOLUMES/card/a", "/VOLUMES/card/"},
      {"//Volumes///CARD//a", "/Volumes/CARD/"},
      {"/Volumes/volumes/a", "/Volumes/volumes/"},
      {"/Volumes/CARD/Volumes/B/c", "/Volumes/CARD/"},
      {"Volumes/CARD/a", "Volumes/CARD/"},
  };
  for (const auto& [path, volume] : rows) EXPECT_EQ(rules->volumeOf(files, path), volume) << path;
}

TEST_F(HostPlacement, GivesTheRootFileSystemForAPathElsewhere) {
  for (const char* path : {"/", "/tmp/a.mp3", "/Users/me/Music/", "/VolumesX/CARD/a", "/My Volumes/CARD/a"})
    EXPECT_EQ(rules->volumeOf(files, path), "//") << path;
  EXPECT_EQ(rules->volumeOf(files, "a/b"), "/");
  EXPECT_EQ(rules->volumeOf(files, ""), "/");
}

TEST_F(HostPlacement, LooksAtNoFileToNameAVolume) {
  FaultyFileSystem counting;
  (void)rules->volumeOf(counting, "/Volumes/CARD/a");
  EXPECT_EQ(counting.count(FileCall::Attributes) + counting.count(FileCall::Space), 0u);
}

TEST_F(HostPlacement, GivesTheSpaceOfTheVolumeWhetherThePathExistsOrNot) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume card(sandbox.folder("Volumes/CARD"), 1 << 20);
  auto space = rules->spaceOf(files, "/Volumes/CARD/no/such/folder/a.mp3");
  ASSERT_TRUE(space);
  EXPECT_EQ(space->total, 1u << 20);
  EXPECT_EQ(space->free, card.freeBytes());
  auto root = rules->spaceOf(files, "/tmp/a.mp3");
  ASSERT_TRUE(root);
  EXPECT_EQ(root->total, files.space("/")->total);
}

TEST_F(HostPlacement, HasNoSpaceForAVolumeThatIsGone) {
  auto space = rules->spaceOf(files, "/Volumes/GONE/a.mp3");
  ASSERT_FALSE(space);
  EXPECT_EQ(space.error().systemNumber, ENOENT);
}

TEST_F(HostPlacement, JoinsVolumeAndFolderOfASyncWithNothingBetween) {
  EXPECT_EQ(rules->syncFolder("/Volumes/CARD", "/Music"), "/Volumes/CARD/Music");
  EXPECT_EQ(rules->syncFolder("/Volumes/CARD", "Music"), "/Volumes/CARDMusic");
  EXPECT_EQ(rules->syncFolder("/Volumes/CARD/", "/Music"), "/Volumes/CARD//Music");
}

TEST_F(HostPlacement, FallsOverToTheCandidatesFolderOnTheFailedVolume) {
  EXPECT_EQ(rules->fallOverVolume(1, 2), 1u);
  EXPECT_EQ(rules->fallOverFolder("/Volumes/CARD/Music", "Music"), "Music");
}

}  // namespace
}  // namespace umsservice::testing
