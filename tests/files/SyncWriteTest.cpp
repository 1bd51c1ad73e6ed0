#include <unistd.h>

#include "TransferTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kMethod =
    "-[UMSService "
    "syncWriteFileToDevice:subFolderName:diskIndex:mediaType:isOverWrite:callbackObject:context:error:]";

/// The write into a media type's default folder.
class SyncWrite : public TransferTest {
 protected:
  std::string to = internal + "/Music/a.mp3";
};

TEST_F(SyncWrite, PutsTheFileIntoTheDefaultFolderAndReportsEachUnit) {
  EXPECT_TRUE(syncWrite(patternFile("a.mp3", 10'000)));
  EXPECT_EQ(error, kUntouched);  // the number of a good write is the caller's
  EXPECT_EQ(bytesOf(to), bytesOf(sandbox.at("in/a.mp3")));
  ASSERT_EQ(callback->reports.size(), 3u);
  EXPECT_TRUE(callback->reports[0].full);
  EXPECT_EQ(callback->reports[0].context, &context);
  EXPECT_EQ(callback->reports[0].max, 10'000u);
  EXPECT_EQ(callback->reports[0].current, 4096u);
  EXPECT_EQ(callback->reports[2].current, 10'000u);
}

TEST_F(SyncWrite, ChoosesTheFolderByTheVolumesTypeAndTheMediaType) {
  surroundings.profile->movieExternal = "/Card/Clips";
  EXPECT_TRUE(syncWrite(file("a.mp4", "la"), std::nullopt, 1, kMediaVideo));
  EXPECT_TRUE(syncWrite(file("a.jpg", "la"), std::nullopt, 1, kMediaImage));
  EXPECT_TRUE(syncWrite(file("a.xml", "la"), std::nullopt, 1, kMediaPodcast));
  EXPECT_EQ(treeOf(card), (Lines{"Card/", "Card/Clips/", "Card/Clips/a.mp4", "DCIM/", "DCIM/Camera/",
                                 "DCIM/Camera/a.jpg", "Podcast/", "Podcast/a.xml"}));
}

TEST_F(SyncWrite, TakesTheGivenNameElseTheSourcesOwn) {
  Dictionary from = file("a.mp3", "la");
  from.set(key::kFileName, "given.mp3");
  EXPECT_TRUE(syncWrite(from));
  EXPECT_TRUE(syncWrite(file("own.mp3", "la")));
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/given.mp3", "Music/own.mp3"}));
}

TEST_F(SyncWrite, GoesIntoASubFolderThatExists) {
  sandbox.folder("internal/Music/Sub");
  EXPECT_TRUE(syncWrite(file("a.mp3", "la"), "Sub"));
  EXPECT_EQ(bytesOf(internal + "/Music/Sub/a.mp3"), "la");
  EXPECT_TRUE(log.has("Copy File : " + sandbox.at("in/a.mp3") + "  to  " + internal + "/Music/Sub/a.mp3"));
}

TEST_F(SyncWrite, DoesNotMakeTheSubFolder) {
  expectLine(surroundings, 3, kMethod, "createFileAtPath Fail!",
             [&] { EXPECT_FALSE(syncWrite(file("a.mp3", "la"), "Sub")); });
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(treeOf(internal), Lines{"Music/"});
}

TEST_F(SyncWrite, ReplacesAnExistingFileWhateverTheFlag) {
  for (bool isOverWrite : {false, true}) {
    sandbox.file("internal/Music/a.mp3", "something older and longer");
    EXPECT_TRUE(syncWrite(file("a.mp3", "la"), std::nullopt, 0, kMediaMusic, isOverWrite));
    EXPECT_EQ(bytesOf(to), "la");
  }
}

TEST_F(SyncWrite, OfNoBytesMakesAnEmptyFileWithoutAReport) {
  sandbox.file("internal/Music/a.mp3", "old");
  EXPECT_TRUE(syncWrite(file("a.mp3", "")));
  EXPECT_EQ(bytesOf(to), "");
  EXPECT_EQ(callback->reports.size(), 0u);
}

TEST_F(SyncWrite, RefusesMissingInput) {
  service->addDiskInformation(Dictionary{{key::kDiskType, 2}});  // a volume without a path
  const Dictionary good = file("a.mp3", "la");
  EXPECT_FALSE(syncWrite(std::nullopt));
  EXPECT_EQ(error, kErrorInvalidInput);
  for (uint32_t diskIndex : {2u, 3u}) {
    EXPECT_FALSE(syncWrite(good, std::nullopt, diskIndex));
    EXPECT_EQ(error, kErrorInvalidInput);
  }
  EXPECT_FALSE(syncWrite(Dictionary{{key::kFileName, "a.mp3"}}));
  EXPECT_EQ(error, kErrorInvalidInput);
  EXPECT_EQ(linesOf(surroundings, kMethod), Lines{});
}

TEST_F(SyncWrite, LooksForTheFolderBeforeItLooksAtTheSource) {
  EXPECT_FALSE(syncWrite(Dictionary(), std::nullopt, 0, 5));
  EXPECT_TRUE(log.has("Do not support media type. Media Type = 5"));
}

TEST_F(SyncWrite, SaysWhatItDoes) {
  const Dictionary from = file("a.mp3", "la");
  expectLine(surroundings, 6, kMethod, "Copy File : $/in/a.mp3  to  $/internal/Music/a.mp3",
             [&] { syncWrite(from); });
}

TEST_F(SyncWrite, FailsForASourceThatIsMissing) {
  const std::string missing = sandbox.at("missing.mp3");
  auto again = [&] { EXPECT_FALSE(syncWrite(Dictionary{{key::kFilePath, missing}})); };
  expectLine(surroundings, 3, kMethod,
             plain(surroundings,
                   "Get Attributes Error : [" + errorText(ENOENT, FileError::Action::Reading, missing) + "]"),
             again);
  EXPECT_EQ(error, kErrorAttributesUnreadable);
  EXPECT_EQ(treeOf(internal), Lines{});
}

TEST_F(SyncWrite, FitsWhenTheFreeSpaceIsExactlyItsSize) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  sandbox.folder("internal/Music");
  volume.fillUpTo(5 * 4096);
  EXPECT_FALSE(syncWrite(patternFile("a.mp3", 5 * 4096 + 1)));
  EXPECT_EQ(error, kErrorVolumeFull);
  EXPECT_FALSE(exists(to));
  EXPECT_TRUE(syncWrite(patternFile("a.mp3", 5 * 4096)));
  EXPECT_EQ(volume.freeBytes(), 0u);
}

TEST_F(SyncWrite, SaysHowMuchIsMissing) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  volume.fillUpTo(4096);
  const Dictionary from = patternFile("a.mp3", 5000);
  expectLine(surroundings, 3, kMethod,
             "Not enough volume space. data Size = 0x00001388, volume Free Size = 0x00001000s",
             [&] { EXPECT_FALSE(syncWrite(from)); });
}

TEST_F(SyncWrite, SaysYesWithoutACopyWhereTheFolderCannotBeMade) {
  sandbox.file("internal/Music", "a file of that name");
  expectLine(surroundings, 3, kMethod, "createFolder Fail!",
             [&] { EXPECT_TRUE(syncWrite(file("a.mp3", "la"))); });
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(callback->reports.size(), 0u);
}

TEST_F(SyncWrite, SaysYesWithoutACopyForATypeWithoutAFolder) {
  EXPECT_TRUE(syncWrite(file("a.mp3", "la"), std::nullopt, 0, 5));
  EXPECT_EQ(linesOf(surroundings, kMethod),
            (Lines{"Copy File : $/in/a.mp3  to  (null)/a.mp3", "createFolder Fail!"}));
  EXPECT_EQ(treeOf(internal), Lines{});
  EXPECT_FALSE(exists("(null)"));
}

TEST_F(SyncWrite, NeverReplacesAFolder) {
  sandbox.file("internal/Music/a.mp3/inside", "kept");
  EXPECT_FALSE(syncWrite(file("a.mp3", "la")));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(bytesOf(to + "/inside"), "kept");
}

TEST_F(SyncWrite, NeverWritesThroughALink) {
  const std::string real = sandbox.file("real.mp3", "real");
  sandbox.folder("internal/Music");
  ASSERT_EQ(::symlink(real.c_str(), to.c_str()), 0);
  EXPECT_FALSE(syncWrite(file("a.mp3", "la")));
  EXPECT_EQ(bytesOf(real), "real");
}

TEST_F(SyncWrite, NeverEmptiesAFileForASourceThatCannotBeRead) {
  sandbox.file("internal/Music/a.mp3", "old");
  const Dictionary from{{key::kFilePath, sandbox.folder("in/a.mp3")}};
  expectLine(surroundings, 3, kMethod,
             "Open file Handle failed! source file handle = (null), destination file handle = (null)",
             [&] { EXPECT_FALSE(syncWrite(from)); });
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_EQ(bytesOf(to), "old");
}

TEST_F(SyncWrite, FailsForASourceThatCannotBeOpened) {
  const Dictionary from{{key::kFilePath, sandbox.folder("in/a.mp3")}};
  auto again = [&] {
    ::unlink(to.c_str());
    EXPECT_FALSE(syncWrite(from));
  };
  expectLine(surroundings, 3, kMethod,
             "Open file Handle failed! source file handle = (null), destination file handle = <address>",
             again);
  EXPECT_EQ(error, kErrorCopyFailed);
}

TEST_F(SyncWrite, KeepsAFileThatIsTheSourceItself) {
  sandbox.file("internal/Music/a.mp3", "la");
  const Dictionary from{{key::kFilePath, to}};
  EXPECT_TRUE(syncWrite(from));
  EXPECT_EQ(bytesOf(to), "la");
  EXPECT_EQ(callback->reports.size(), 1u);
  callback->onReport = [] { return false; };
  EXPECT_FALSE(syncWrite(from));
  EXPECT_EQ(error, kErrorStopped);
  callback.reset();
  EXPECT_TRUE(syncWrite(from));
  EXPECT_EQ(bytesOf(to), "la");
}

TEST_F(SyncWrite, StopsAtTheFirstUnitWhenTheCallbackSaysNo) {
  callback->onReport = [] { return false; };
  EXPECT_FALSE(syncWrite(patternFile("a.mp3", 600'000)));
  EXPECT_EQ(error, kErrorStopped);
  EXPECT_EQ(bytesOf(to).size(), 4096u);
}

TEST_F(SyncWrite, StopsWithinOneUnitWhenReleasedAndLeavesTheNumberAlone) {
  callback->onReport = [&] { return service->exitServiceThread(); };
  const Dictionary from = patternFile("a.mp3", 600'000);
  EXPECT_FALSE(syncWrite(from));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(bytesOf(to).size(), 4096u);
  expectLine(surroundings, 3, kMethod, "Object Releasing process stop!", [&] { syncWrite(from); });
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(bytesOf(to).size(), 4096u);  // once released, nothing that exists is given up
}

TEST_F(SyncWrite, EndsWhenTheLastReferenceGoesAwayInAReport) {
  callback->onReport = [&] {
    service.reset();
    return true;
  };
  EXPECT_FALSE(syncWrite(patternFile("a.mp3", 600'000)));
  EXPECT_EQ(bytesOf(to).size(), 4096u);
}

TEST_F(SyncWrite, FailsWhenReadingOrWritingFails) {
  const Dictionary from = patternFile("a.mp3", 600'000);
  for (FileCall call : {FileCall::Read, FileCall::Write, FileCall::Close}) {
    files.failNth(call, call == FileCall::Close ? 1 : 2, EIO);
    EXPECT_FALSE(syncWrite(from));
    EXPECT_EQ(error, kErrorCopyFailed);
  }
  auto again = [&] {
    files.failNth(FileCall::Write, 1, ENOSPC);
    syncWrite(from);
  };
  expectLine(surroundings, 3, kMethod, "Name : NSFileHandleOperationException", again);
  expectLine(surroundings, 3, kMethod, "Reason :No space left on device", again);
}

}  // namespace
}  // namespace umsservice::testing
