#include "CoreRoom.h"

namespace umsservice::testing {
namespace {

constexpr auto kFreeSpaceMethod = "-[UMSService volumeFreeSpace:]";

using VolumeSpaces = CoreTest;

/// A file system that shows the sandbox as "/Volumes" and keeps the paths that space was asked for.
class VolumeSpacesOfAHost : public CoreTest {
 protected:
  std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>(
      std::make_shared<MappedFileSystem>("/Volumes", surroundings.sandbox.path()));
  Lines asked;

  /// A context under host rules, whose space questions are kept.
  ServiceContext hostContext() {
    Environment environment = surroundings.environment;
    environment.fileSystem = files;
    environment.placementRules = hostPlacementRules();
    files->setFault([this](FileCall call, const std::string& path) {
      if (call == FileCall::Space) asked.push_back(path);
      return 0;
    });
    return ServiceContext(environment, "<service>", std::nullopt);
  }
};

TEST_F(VolumeSpaces, GivesFreeAndTotalBytesOfAnIndex) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("card"), 1 << 20);
  volume.fillUpTo(300 * 1024);
  context.volumes.addDiskInformation(disk(2, volume.path()));
  EXPECT_EQ(context.spaces.totalSpace(0), uint64_t{1} << 20);
  EXPECT_EQ(context.spaces.freeSpace(0), volume.freeBytes());
}

TEST_F(VolumeSpaces, AnUnknownIndexIsZeroAndABadParameter) {
  const char* message = "Input parameters is invalid. diskName = (null)";
  expectLine(surroundings, 3, "-[UMSService freeSpace:diskIndex:]", message,
             [&] { EXPECT_EQ(context.spaces.freeSpace(3), 0u); });
  expectLine(surroundings, 3, "-[UMSService totalSpace:diskIndex:]", message,
             [&] { EXPECT_EQ(context.spaces.totalSpace(3), 0u); });
}

TEST_F(VolumeSpaces, AnUnreadableFileSystemIsZeroWithoutALine) {
  context.volumes.addDiskInformation(disk(2, sandbox.at("gone")));
  EXPECT_EQ(context.spaces.freeSpace(0), 0u);
  EXPECT_EQ(context.spaces.totalSpace(0), 0u);
  surroundings.files->failAlways(FileCall::Space, "", EIO);
  log.clear();
  surroundings.level->level = 5;
  EXPECT_EQ(context.spaces.volumeFreeSpace(sandbox.at("a.mp3")), 0u);
  EXPECT_EQ(log.lines(), Lines());
}

TEST_F(VolumeSpaces, APathThatCannotNameAVolumeIsZeroAndSaidSo) {
  expectLine(surroundings, 3, kFreeSpaceMethod, "filePath is nil.",
             [&] { EXPECT_EQ(context.spaces.volumeFreeSpace(std::nullopt), 0u); });
  for (const char* path : {"", "/", "a"}) {
    expectLine(surroundings, 3, kFreeSpaceMethod, "Get Volume Path is failed.",
               [&] { EXPECT_EQ(context.spaces.volumeFreeSpace(path), 0u); });
  }
}

TEST_F(VolumeSpacesOfAHost, APathOnAVolumeBelongsToIt) {
  sandbox.folder("CARD");
  ServiceContext host = hostContext();
  EXPECT_GT(host.spaces.volumeFreeSpace("/Volumes/CARD/Music/a.mp3"), 0u);
  EXPECT_GT(host.spaces.volumeFreeSpace("/Volumes/CARD"), 0u);
  EXPECT_EQ(asked, (Lines{"/Volumes/CARD/", "/Volumes/CARD/"}));
}

TEST_F(VolumeSpacesOfAHost, APathElsewhereBelongsToTheRootFileSystem) {
  ServiceContext host = hostContext();
  EXPECT_GT(host.spaces.volumeFreeSpace("/home/somebody/Music/a.mp3"), 0u);
  EXPECT_EQ(asked, (Lines{"//"}));
}

TEST_F(VolumeSpacesOfAHost, NamesTheVolumeAtLevelSix) {
  sandbox.folder("CARD");
  ServiceContext host = hostContext();
  expectLine(surroundings, 6, kFreeSpaceMethod, "Volume Name string = /Volumes/CARD/",
             [&] { host.spaces.volumeFreeSpace("/Volumes/CARD/Music/a.mp3"); });
  expectLine(surroundings, 6, kFreeSpaceMethod, "Volume Name string = /volumes/CARD/",
             [&] { host.spaces.volumeFreeSpace("/volumes/CARD/Music/a.mp3"); });
  expectLine(surroundings, 6, kFreeSpaceMethod, "Volume Name string = //",
             [&] { host.spaces.volumeFreeSpace("/home/somebody/a.mp3"); });
}

}  // namespace
}  // namespace umsservice::testing
