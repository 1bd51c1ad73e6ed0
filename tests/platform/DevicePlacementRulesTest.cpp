#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "Sandbox.h"
#include "WrappedFileSystem.h"
#include "umsservice/PlacementRules.h"

namespace umsservice::testing {
namespace {

constexpr uint64_t kCardSize = 1 << 20;

/// A sandbox in which "card" is a volume of its own.
class DevicePlacement : public ::testing::Test {
 protected:
  void SetUp() override {
    REQUIRE_TMPFS_VOLUMES();
    card = std::make_unique<TmpfsVolume>(sandbox.folder("card"), kCardSize);
  }
  std::string volumeOf(const std::string& path) { return rules->volumeOf(files, path); }
  /// Total size of the volume of a path; 0 when it cannot be told.
  uint64_t totalOf(const std::string& path) {
    auto space = rules->spaceOf(files, path);
    return space ? space->total : 0;
  }

  Sandbox sandbox;
  FaultyFileSystem files;
  std::unique_ptr<TmpfsVolume> card;
  std::shared_ptr<const PlacementRules> rules = devicePlacementRules();
};

TEST_F(DevicePlacement, FindsTheMountPointAboveAnExistingPath) {
  sandbox.file("card/Music/Album/a.mp3", "x");
  for (const char* path :
       {"card", "card/", "card///", "card/Music", "card/Music/", "card/Music/Album/a.mp3"}) {
    EXPECT_EQ(volumeOf(sandbox.at(path)), card->path()) << path;
    EXPECT_EQ(totalOf(sandbox.at(path)), kCardSize) << path;
  }
}

TEST_F(DevicePlacement, FindsTheMountPointAboveAPathThatDoesNotExistYet) {
  sandbox.file("card/file", "x");
  ASSERT_EQ(symlink("nowhere", sandbox.at("card/dangling").c_str()), 0);
  ASSERT_EQ(symlink("loop", sandbox.at("card/loop").c_str()), 0);
  for (const std::string& name :
       {std::string("new"), std::string("new/folder/a.mp3"), std::string("file/below"),
        std::string("dangling"), std::string("dangling/a"), std::string("loop/a"), std::string(300, 'n'),
        std::string(300, 'n') + "/a", std::string(6000, 'n'), std::string("nul\0a", 5)}) {
    EXPECT_EQ(volumeOf(sandbox.at("card/" + name)), card->path()) << name;
    EXPECT_EQ(totalOf(sandbox.at("card/" + name)), kCardSize) << name;
  }
}

TEST_F(DevicePlacement, TellsAVolumeFromTheOneItIsMountedOn) {
  sandbox.folder("other");
  EXPECT_NE(volumeOf(sandbox.at("other/a")), card->path());
  EXPECT_EQ(volumeOf(sandbox.at("other/a")), volumeOf(sandbox.path()));
  EXPECT_EQ(volumeOf(sandbox.at("cardboard")), volumeOf(sandbox.path()));
  EXPECT_NE(totalOf(sandbox.at("other/a")), kCardSize);
}

TEST_F(DevicePlacement, FindsTheInnermostOfNestedVolumes) {
  TmpfsVolume inner(sandbox.folder("card/inner"), 2 * kCardSize);
  EXPECT_EQ(volumeOf(sandbox.at("card/inner/new/a")), inner.path());
  EXPECT_EQ(totalOf(sandbox.at("card/inner/new/a")), 2 * kCardSize);
  EXPECT_EQ(volumeOf(sandbox.at("card/a")), card->path());
}

TEST_F(DevicePlacement, SeesThatAVolumeHasGone) {
  EXPECT_EQ(volumeOf(sandbox.at("card/a")), card->path());
  card->vanish();
  EXPECT_EQ(volumeOf(sandbox.at("card/a")), volumeOf(sandbox.path()));
}

TEST_F(DevicePlacement, FollowsALinkOntoAVolume) {
  sandbox.folder("card/Music");
  ASSERT_EQ(symlink(sandbox.at("card/Music").c_str(), sandbox.at("link").c_str()), 0);
  EXPECT_EQ(totalOf(sandbox.at("link/new/a.mp3")), kCardSize);
  EXPECT_NE(volumeOf(sandbox.at("link/new/a.mp3")), volumeOf(sandbox.path()));
}

TEST_F(DevicePlacement, TakesRelativePathsFromTheWorkingFolder) {
  sandbox.folder("card/Music");
  std::filesystem::path before = std::filesystem::current_path();
  ASSERT_EQ(chdir(sandbox.at("card/Music").c_str()), 0);
  for (const char* path : {"a.mp3", "new/a.mp3", ".", "./", "", "../a", ".."}) {
    EXPECT_EQ(totalOf(path), kCardSize) << path;
    EXPECT_EQ(totalOf(volumeOf(path)), kCardSize) << path;
  }
  EXPECT_EQ(volumeOf("new/a.mp3"), ".");
  std::filesystem::current_path(before);
}

TEST_F(DevicePlacement, EndsAtTheRoot) {
  for (const char* path : {"/", "//", "///", "/no such folder at the root/a"}) {
    EXPECT_EQ(volumeOf(path), "/") << path;
    EXPECT_EQ(totalOf(path), files.space("/")->total) << path;
  }
}

TEST_F(DevicePlacement, AnswersSoonForAPathThatIsTooLongToExist) {
  std::string path = card->path();
  for (int i = 0; i < 300000; ++i) path += "/deep";
  EXPECT_EQ(volumeOf(path), card->path());
  EXPECT_EQ(totalOf(path), kCardSize);
  EXPECT_LT(files.count(FileCall::Attributes), 5000u);
}

TEST_F(DevicePlacement, GivesTheSpaceOfTheVolumeBehindAFolderThatMayNotBeSearched) {
  sandbox.folder("card/closed/sub");
  WithoutRootPowers powerless;
  ASSERT_EQ(chmod(sandbox.at("card/closed").c_str(), 0), 0);
  EXPECT_EQ(totalOf(sandbox.at("card/closed/sub/a.mp3")), kCardSize);
  EXPECT_EQ(volumeOf(sandbox.at("card/closed/sub/a.mp3")), card->path());
}

TEST_F(DevicePlacement, HasNoSpaceWhenTheDeviceItselfFails) {
  files.failAlways(FileCall::Space, "card/Music", EIO);
  auto space = rules->spaceOf(files, sandbox.at("card/Music"));
  ASSERT_FALSE(space);
  EXPECT_EQ(space.error().systemNumber, EIO);
}

TEST_F(DevicePlacement, GivesTheFreeSpaceThatIsLeftNow) {
  card->fillUpTo(20 * 4096);
  EXPECT_EQ(rules->spaceOf(files, sandbox.at("card/new/a"))->free, 20u * 4096);
}

TEST_F(DevicePlacement, AsksTheFolderOfAFileThatIsToBeMadeForItsSpace) {
  TmpfsVolume inner(sandbox.folder("card/inner"), 2 * kCardSize);
  std::vector<std::string> asked;
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Space) asked.push_back(path);
    return 0;
  });
  EXPECT_EQ(rules->spaceForNewFile(files, sandbox.at("card/inner/a.mp3"))->total, 2 * kCardSize);
  EXPECT_EQ(asked, std::vector<std::string>{inner.path()});
  EXPECT_EQ(rules->spaceForNewFile(files, sandbox.at("card/no/such/folder/a.mp3"))->total, kCardSize);
  EXPECT_EQ(asked.back(), card->path());
  EXPECT_EQ(rules->spaceForNewFile(files, "/")->total, files.space("/")->total);
}

TEST_F(DevicePlacement, PutsASeparatorWhereTheFolderOfASyncDoesNotBeginWithOne) {
  EXPECT_EQ(rules->syncFolder("/media/CARD", "Music"), "/media/CARD/Music");
  EXPECT_EQ(rules->syncFolder("/media/CARD", "/Music"), "/media/CARD/Music");
}

TEST_F(DevicePlacement, FallsOverToTheCandidateVolumeItself) {
  EXPECT_EQ(rules->fallOverVolume(1, 2), 2u);
  EXPECT_EQ(rules->fallOverFolder("/media/CARD/Music", "Music"), "/media/CARD/Music");
}

}  // namespace
}  // namespace umsservice::testing
