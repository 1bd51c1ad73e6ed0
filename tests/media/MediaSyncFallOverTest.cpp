#include <unistd.h>

#include <filesystem>

#include "SyncTest.h"

namespace umsservice::testing {
namespace {

/// A device whose first volume is full, for files of more than one page.
class MediaSyncFallOver : public SyncTest {
 protected:
  static constexpr uint64_t kVolume = 1 << 20;
  static constexpr uint64_t kLarge = 100'000;

  void SetUp() override {
    REQUIRE_TMPFS_VOLUMES();
    internalVolume = std::make_unique<TmpfsVolume>(internal, kVolume);
    cardVolume = std::make_unique<TmpfsVolume>(card, kVolume);
    sandbox.folder("internal/Music");
    internalVolume->fillUpTo(3 * 4096);
  }
  std::string addLarge(const std::string& name) {
    return add(sandbox.patternFile("in/" + name, kLarge), name, nullptr);
  }
  void addThirdVolume() { service->addDiskInformation(disk(2, sandbox.folder("third"))); }
  std::string failedLine(const std::string& name, const std::string& to) const {
    return "Sync $/in/" + name + " to " + to + " failed. Send Next Storage";
  }

  std::unique_ptr<TmpfsVolume> internalVolume;
  std::unique_ptr<TmpfsVolume> cardVolume;
};

TEST_F(MediaSyncFallOver, PutsAFileThatDoesNotFitIntoTheOtherVolumesOwnFolder) {
  surroundings.profile->musicExternal = "/Card/Songs";
  const std::string from = addLarge("a.mp3");
  EXPECT_FALSE(run());  // the answer is the last copy to the first volume
  EXPECT_EQ(treeOf(card), (Lines{"Card/", "Card/Songs/", "Card/Songs/a.mp3"}));
  EXPECT_EQ(bytesOf(card + "/Card/Songs/a.mp3"), bytesOf(from));
  EXPECT_FALSE(exists(internal + "/Music/a.mp3"));
  // Hosts find the place by the volume's index; the path stays the one that was tried first.
  EXPECT_EQ(told(), (Lines{"progress 1/1 fail 0 status 2 100% a.mp3",
                           "result 0x10000001 volume 1 $/internal/Music/a.mp3",
                           "progress 1/1 fail 0 status 4 100% a.mp3"}));
  EXPECT_EQ(ends(), Lines{"0 done 0x00000000 100000 bytes to $/card/Card/Songs/a.mp3"});
  EXPECT_EQ(linesOf(surroundings, kSyncMethod), Lines{failedLine("a.mp3", "$/internal/Music/a.mp3") + "."});
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod), Lines{});
}

TEST_F(MediaSyncFallOver, KeepsTheOtherVolumesIndexInLaterResults) {
  addLarge("a.mp3");
  add("small.mp3");
  EXPECT_TRUE(run());
  EXPECT_TRUE(exists(internal + "/Music/small.mp3"));
  EXPECT_EQ(numbers(notifications.named(kMediaResultNotification), key::kVolumeIndex),
            (std::vector<uint32_t>{1, 1}));
}

TEST_F(MediaSyncFallOver, FromTheCardGoesToTheInternalMemory) {
  request.isStartInternal = 0;
  cardVolume->fillUpTo(0);
  add("a.mp3");
  EXPECT_FALSE(run());
  EXPECT_TRUE(exists(internal + "/Music/a.mp3"));
  EXPECT_EQ(told().at(1), "result 0x10000001 volume 0 $/card/Music/a.mp3");
}

TEST_F(MediaSyncFallOver, UsesTheSourcesOwnNameOnTheOtherVolume) {
  add(sandbox.patternFile("in/source.mp3", kLarge), "given.mp3", nullptr);
  EXPECT_FALSE(run());
  EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/source.mp3"}));
}

TEST_F(MediaSyncFallOver, SendsExactlyOneResultForFullVolumesAndGoesOn) {
  sandbox.folder("card/Music");
  cardVolume->fillUpTo(4096);
  addLarge("a.mp3");
  addLarge("b.mp3");
  add("small.mp3");
  addLarge("c.mp3");
  EXPECT_FALSE(run());
  EXPECT_EQ(told(), (Lines{"result 0x1000000a volume 1 $/internal/Music/a.mp3",
                           "progress 3/4 fail 2 status 2 0% small.mp3",
                           "result 0x10000001 volume 1 $/internal/Music/small.mp3",
                           "progress 4/4 fail 3 status 4 100% c.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 failed 0x1000000a 0 bytes to $/internal/Music/a.mp3",
                           "1 failed 0x1000000a 0 bytes to $/internal/Music/b.mp3",
                           "2 done 0x00000000 9 bytes to $/internal/Music/small.mp3",
                           "3 failed 0x1000000a 0 bytes to $/internal/Music/c.mp3"}));
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod).at(0), failedLine("a.mp3", "$/card/Music/a.mp3"));
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod).at(1), "Sync $/in/a.mp3 failed.");
}

TEST_F(MediaSyncFallOver, TellsAboutFullVolumesAgainInTheNextRun) {
  cardVolume->fillUpTo(0);
  addLarge("a.mp3");
  addLarge("b.mp3");
  EXPECT_FALSE(run());
  EXPECT_FALSE(run());
  EXPECT_EQ(results(), (std::vector<uint32_t>{kErrorVolumeFull, kErrorVolumeFull}));
}

TEST_F(MediaSyncFallOver, OnADeviceOfOneVolumeFailsWithTheFirstVolumesNumber) {
  service->removeDiskInformation(service->diskInfoFromIndex(1));
  addLarge("a.mp3");
  EXPECT_FALSE(run());
  EXPECT_EQ(ends(), Lines{"0 failed 0x1000000a 0 bytes to $/internal/Music/a.mp3"});
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod), Lines{"Sync $/in/a.mp3 failed."});
  EXPECT_EQ(treeOf(card), Lines{});
}

TEST_F(MediaSyncFallOver, TriesEveryVolumeInOrder) {
  addThirdVolume();
  cardVolume->fillUpTo(4096);
  addLarge("a.mp3");
  EXPECT_FALSE(run());
  EXPECT_TRUE(exists(sandbox.at("third/Music/a.mp3")));
  EXPECT_EQ(told().at(1), "result 0x10000001 volume 2 $/internal/Music/a.mp3");
}

TEST_F(MediaSyncFallOver, WhereTheFolderCannotBeMadeTriesTheNextVolume) {
  addThirdVolume();
  sandbox.file("card/Music", "a file of that name");
  addLarge("a.mp3");
  EXPECT_FALSE(run());
  EXPECT_TRUE(exists(sandbox.at("third/Music/a.mp3")));
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod), Lines{"Create Folder for $/card/Music is failed"});
  // The folder took the place of the path in what the host hears.
  EXPECT_EQ(told().at(1), "result 0x10000001 volume 2 $/card/Music");
}

TEST_F(MediaSyncFallOver, WhereNoFolderCanBeMadeFailsWithTheFirstVolumesNumber) {
  sandbox.file("card/Music", "a file of that name");
  addLarge("a.mp3");
  EXPECT_FALSE(run());
  EXPECT_EQ(told(),
            (Lines{"progress 1/1 fail 1 status 4 100% Music", "result 0x1000000a volume 1 $/card/Music"}));
  EXPECT_EQ(ends(), Lines{"0 failed 0x1000000a 0 bytes to $/internal/Music/a.mp3"});
}

TEST_F(MediaSyncFallOver, ToAVolumeThatFillsInMidCopyTriesTheNextOne) {
  addThirdVolume();
  files.setFault([&](FileCall call, const std::string& path) {
    return call == FileCall::Write && path.starts_with(card) ? ENOSPC : 0;
  });
  addLarge("a.mp3");
  EXPECT_FALSE(run());
  EXPECT_EQ(bytesOf(sandbox.at("third/Music/a.mp3")), bytesOf(sandbox.at("in/a.mp3")));
}

TEST_F(MediaSyncFallOver, ToAVolumeThatIsTakenAwayMeanwhileFailsWithTheFirstVolumesNumber) {
  // The first volume leaves the list while its file is tried, and the place of the card with it.
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Space && path.starts_with(internal))
      service->removeDiskInformation(service->diskInfoFromIndex(1));
    return 0;
  });
  addLarge("a.mp3");
  addLarge("b.mp3");
  EXPECT_FALSE(run());
  EXPECT_EQ(results(), std::vector<uint32_t>{kErrorVolumeFull});
  EXPECT_EQ(treeOf(card), Lines{});
}

TEST_F(MediaSyncFallOver, SaysWhatItTries) {
  cardVolume->fillUpTo(4096);
  addLarge("a.mp3");
  auto again = [&] { run(); };
  expectLine(surroundings, 1, kSyncMethod, failedLine("a.mp3", "$/internal/Music/a.mp3") + ".", again);
  expectLine(surroundings, 1, kFallOverMethod, failedLine("a.mp3", "$/card/Music/a.mp3"), again);
  expectLine(surroundings, 1, kFallOverMethod, "Sync $/in/a.mp3 failed.", again);
  ASSERT_EQ(::unlink((card + "/.filler").c_str()), 0);
  sandbox.folder("card");
  std::filesystem::remove_all(card + "/Music");
  sandbox.file("card/Music", "a file of that name");
  expectLine(surroundings, 1, kFallOverMethod, "Create Folder for $/card/Music is failed", again);
}

}  // namespace
}  // namespace umsservice::testing
