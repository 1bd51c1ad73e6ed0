#include "CopyFileTest.h"

namespace umsservice::testing {
namespace {

TEST_F(CopyFile, PutsTheBytesThereMakesTheFolderAndGivesNumberZero) {
  const std::string from = sandbox.patternFile("in/a.mp3", 700'001);
  EXPECT_TRUE(copy(from, to));
  EXPECT_EQ(number(), 0u);
  EXPECT_EQ(bytesOf(to), bytesOf(from));
  EXPECT_EQ(notifier.maxSendBytes(), 700'001u);
  EXPECT_EQ(notifier.currentTransferSize(), 700'001u);
}

TEST_F(CopyFile, SaysWhatItDoes) {
  const std::string from = sandbox.file("in/a.mp3", "la");
  auto again = [&] {
    service->umsDeleteFile(kRequest, to, &error);
    ASSERT_TRUE(copy(from, to));
  };
  expectLine(surroundings, 6, kCopyMethod, "Copy File : $/in/a.mp3  to  $/internal/Music/a.mp3", again);
  expectLine(surroundings, 6, kCopyMethod, "EXIT", again);
}

TEST_F(CopyFile, WorksWithoutAPlaceForTheNumber) {
  EXPECT_TRUE(service->umsCopyFile(kRequest, sandbox.file("in/a.mp3", "la"), to, &notifier, nullptr));
  EXPECT_EQ(bytesOf(to), "la");
}

TEST_F(CopyFile, OfNoBytesMakesAnEmptyFileAndReportsNoBytes) {
  notifier.setMaxSendBytes(99);
  EXPECT_TRUE(copy(sandbox.file("in/empty.mp3", ""), to));
  EXPECT_EQ(number(), 0u);
  EXPECT_TRUE(exists(to));
  EXPECT_EQ(bytesOf(to), "");
  EXPECT_EQ(notifier.maxSendBytes(), 0u);
  EXPECT_EQ(notifications.all().size(), 0u);
}

TEST_F(CopyFile, OfNoBytesIsCompleteEvenWhenCancelledOrReleased) {
  service->cancelFileAction(kRequest);
  service->exitServiceThread();
  EXPECT_TRUE(copy(sandbox.file("in/empty.mp3", ""), to));
  EXPECT_EQ(number(), 0u);
}

TEST_F(CopyFile, ReportsTheRunningCountOfTheFile) {
  EXPECT_TRUE(copy(sandbox.patternFile("in/a.mp3", 3'000'000), to));
  // After each million and at the end; counts are multiples of 4096 until then.
  EXPECT_EQ(numbers(notifications.all(), key::kCurrentProgress), (std::vector<uint32_t>{33, 66, 100}));
  EXPECT_EQ(notifier.prevSendBytes(), 0u);
}

TEST_F(CopyFile, ThatIsCancelledLeavesWholeUnitsAndSaysYesWithTheStopCode) {
  const std::string from = sandbox.patternFile("in/a.mp3", 3'000'000);
  notifications.onEach([&](const Notification&) { service->cancelFileAction(kRequest); });
  EXPECT_TRUE(copy(from, to));
  EXPECT_EQ(number(), kErrorStopped);
  // The first report comes with the unit that passes the million.
  EXPECT_EQ(bytesOf(to).size(), 245u * 4096);
  EXPECT_EQ(bytesOf(to), bytesOf(from).substr(0, 245u * 4096));
  EXPECT_EQ(linesOf(surroundings, kCopyMethod).back(), "EXIT");
}

TEST_F(CopyFile, ThatIsReleasedLeavesWholeUnitsAndSaysYesWithTheStopCode) {
  const std::string from = sandbox.patternFile("in/a.mp3", 3'000'000);
  notifications.onEach([&](const Notification&) { service->exitServiceThread(); });
  EXPECT_TRUE(copy(from, to));
  EXPECT_EQ(number(), kErrorStopped);
  EXPECT_EQ(bytesOf(to), bytesOf(from).substr(0, 245u * 4096));
}

TEST_F(CopyFile, SaysWhyItStops) {
  const std::string from = sandbox.file("in/a.mp3", "la");
  auto again = [&] {
    service->umsDeleteFile(kRequest, to, &error);
    ASSERT_TRUE(copy(from, to));
    EXPECT_EQ(number(), kErrorStopped);
    EXPECT_EQ(bytesOf(to), "");
  };
  service->cancelFileAction(kRequest);
  expectLine(surroundings, 5, kCopyMethod, "Cancel File Copy", again);
  service->exitServiceThread();
  expectLine(surroundings, 3, kCopyMethod, "Object Releasing process stop!", again);
  EXPECT_FALSE(log.has("Cancel File Copy"));  // the shutdown is looked at first
}

TEST_F(CopyFile, IsNotStoppedByTheCancelOfAnotherRequest) {
  service->cancelFileAction(kRequest + 1);
  EXPECT_TRUE(copy(sandbox.file("in/a.mp3", "la"), to));
  EXPECT_EQ(number(), 0u);
}

TEST_F(CopyFile, FitsWhenTheFreeSpaceIsExactlyItsSize) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  sandbox.folder("internal/Music");
  volume.fillUpTo(5 * 4096);
  ASSERT_EQ(volume.freeBytes(), 5u * 4096);
  const std::string from = sandbox.patternFile("in/a.mp3", 5 * 4096);
  EXPECT_TRUE(copy(from, to));
  EXPECT_EQ(number(), 0u);
  EXPECT_EQ(bytesOf(to), bytesOf(from));
  EXPECT_EQ(volume.freeBytes(), 0u);
}

TEST_F(CopyFile, KeepsEveryByteOfANameButNulAndSlash) {
  const std::string from = sandbox.file("in/a.mp3", "la");
  for (int byte = 1; byte < 256; ++byte) {
    if (byte == '/') continue;
    const std::string path = internal + "/" + std::string(1, static_cast<char>(byte)) + "n.mp3";
    EXPECT_TRUE(copy(from, path)) << byte;
    EXPECT_EQ(bytesOf(path), "la") << byte;
  }
  EXPECT_EQ(treeOf(internal).size(), 254u);
}

TEST_F(CopyFile, FollowsALinkAtTheSource) {
  const std::string real = sandbox.file("in/real.mp3", "la la");
  ASSERT_EQ(::symlink(real.c_str(), sandbox.at("in/link.mp3").c_str()), 0);
  EXPECT_TRUE(copy(sandbox.at("in/link.mp3"), to));
  EXPECT_EQ(bytesOf(to), "la la");
}

TEST_F(CopyFile, OfASourceThatGrowsTakesTheSizeItBeganWith) {
  const std::string from = sandbox.patternFile("in/a.mp3", 10'000);
  const std::string before = bytesOf(from);
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::Read) sandbox.patternFile("in/a.mp3", 50'000);
    return 0;
  });
  EXPECT_TRUE(copy(from, to));
  EXPECT_EQ(number(), 0u);
  EXPECT_EQ(bytesOf(to), before);
}

}  // namespace
}  // namespace umsservice::testing
