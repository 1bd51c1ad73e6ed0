#include <cerrno>
#include <system_error>

#include "CopyFileTest.h"

namespace umsservice::testing {
namespace {

using CopyFileFailure = CopyFile;
using Action = FileError::Action;

std::string words(int systemNumber) {
  return std::generic_category().message(systemNumber);
}

TEST_F(CopyFileFailure, OfMissingInputLeavesTheNumberAlone) {
  const std::string from = sandbox.file("in/a.mp3", "la");
  EXPECT_FALSE(copy(std::nullopt, to));
  EXPECT_EQ(error, kUntouched);
  EXPECT_FALSE(copy(from, std::nullopt));
  EXPECT_EQ(error, kUntouched);
  EXPECT_FALSE(service->umsCopyFile(kRequest, from, to, nullptr, &error));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(treeOf(internal).size(), 0u);
  expectLine(
      surroundings, 3, kCopyMethod,
      "Input Parameters is invalid. srcPath = $/in/a.mp3, destPath = $/internal/Music/a.mp3, context = 0x0",
      [&] { service->umsCopyFile(kRequest, from, to, nullptr, &error); });
  expectLine(surroundings, 3, kCopyMethod,
             "Input Parameters is invalid. srcPath = (null), destPath = (null), context = <address>",
             [&] { copy(std::nullopt, std::nullopt); });
}

TEST_F(CopyFileFailure, WhereTheDestinationExistsComesBeforeEveryOtherTest) {
  sandbox.file("internal/Music/a.mp3", "old");
  EXPECT_FALSE(copy(sandbox.at("in/missing.mp3"), to));
  EXPECT_EQ(number(), kErrorFileExists);
  EXPECT_FALSE(copy(sandbox.at("in/missing.mp3"), sandbox.folder("internal/Music/folder.mp3")));
  EXPECT_EQ(number(), kErrorFileExists);
  EXPECT_EQ(files.count(FileCall::Space), 0u);
  EXPECT_EQ(bytesOf(to), "old");
}

TEST_F(CopyFileFailure, WhereTheDestinationExistsIsToldBeforeAllElseAtEveryDebugLevel) {
  const std::string from = sandbox.file("in/a.mp3", "new");
  const std::string missing = sandbox.at("in/missing.mp3");
  sandbox.file("internal/Music/a.mp3", "old");
  for (int level = 0; level <= 7; ++level) {
    SCOPED_TRACE(level);
    surroundings.level->level = level;
    auto isRefused = [&](const std::string& source) {
      surroundings.log->clear();
      EXPECT_FALSE(copy(source, to));
      EXPECT_EQ(number(), kErrorFileExists);
      const std::vector<std::string> announcement{
          plain(surroundings, "Copy File : " + source + "  to  " + to)};
      EXPECT_EQ(linesOf(surroundings, kCopyMethod), level < 6 ? std::vector<std::string>{} : announcement);
      EXPECT_EQ(plainLines(surroundings).size(), level < 6 ? 0u : 1u);
    };
    isRefused(from);
    isRefused(missing);
    files.failAlways(FileCall::Space, "", EIO);
    isRefused(from);
    files.setFault(nullptr);
  }
  EXPECT_EQ(bytesOf(to), "old");
}

TEST_F(CopyFileFailure, HasTheSameNumberAtEveryDebugLevel) {
  const std::string from = sandbox.file("in/a.mp3", "new");
  sandbox.file("internal/file", "in the way");
  sandbox.folder("internal/Music");
  ASSERT_EQ(::symlink("nowhere", (internal + "/dangling.mp3").c_str()), 0);
  for (int level = 0; level <= 7; ++level) {
    SCOPED_TRACE(level);
    surroundings.level->level = level;
    EXPECT_FALSE(copy(sandbox.at("in/missing.mp3"), to));
    EXPECT_EQ(number(), kErrorAttributesUnreadable);
    EXPECT_FALSE(copy(from, internal + "/file/a.mp3"));
    EXPECT_EQ(number(), kErrorCreateFolderFailed);
    EXPECT_FALSE(copy(from, internal + "/dangling.mp3"));
    EXPECT_EQ(error, kUntouched);
    files.failAlways(FileCall::Space, "", EIO);
    EXPECT_FALSE(copy(from, to));
    EXPECT_EQ(number(), kErrorVolumeFull);
    files.setFault(nullptr);
  }
  EXPECT_EQ(treeOf(internal + "/Music").size(), 0u);
}

TEST_F(CopyFileFailure, OfASourceThatCannotBeLookedAt) {
  const std::string missing = sandbox.at("in/missing.mp3");
  EXPECT_FALSE(copy(missing, to));
  EXPECT_EQ(number(), kErrorAttributesUnreadable);
  EXPECT_EQ(treeOf(internal).size(), 0u);
  expectLine(
      surroundings, 3, kCopyMethod,
      plain(surroundings, "Get Attributes Error : [" + errorText(ENOENT, Action::Reading, missing) + "]"),
      [&] { copy(missing, to); });

  const std::string present = sandbox.file("in/present.mp3", "la");
  files.failAlways(FileCall::Attributes, "present.mp3", EACCES);
  EXPECT_FALSE(copy(present, to));
  EXPECT_EQ(number(), kErrorAttributesUnreadable);
}

TEST_F(CopyFileFailure, WithoutRoomSaysHowMuchIsMissing) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  volume.fillUpTo(4 * 4096);
  const std::string from = sandbox.patternFile("in/a.mp3", 4 * 4096 + 1);
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(number(), kErrorVolumeFull);
  EXPECT_FALSE(exists(internal + "/Music"));
  expectLine(surroundings, 3, kCopyMethod,
             "Not enough volume space. data Size = 0x00004001, volume Free Size = 0x00004000",
             [&] { copy(from, to); });
}

TEST_F(CopyFileFailure, WithoutRoomShowsTheLowHalfOfALargeSize) {
  const std::string from = sandbox.file("in/huge.mp3", "");
  ASSERT_EQ(::truncate(from.c_str(), (int64_t{1} << 32) + 0x1234), 0);
  files.failAlways(FileCall::Space, "", EIO);  // an unreadable volume counts as full
  expectLine(surroundings, 3, kCopyMethod,
             "Not enough volume space. data Size = 0x00001234, volume Free Size = 0x00000000", [&] {
               EXPECT_FALSE(copy(from, to));
               EXPECT_EQ(number(), kErrorVolumeFull);
             });
}

TEST_F(CopyFileFailure, WhereTheFolderCannotBeMade) {
  const std::string from = sandbox.file("in/a.mp3", "la");
  sandbox.file("internal/Music", "a file in the way");
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(number(), kErrorCreateFolderFailed);
  EXPECT_EQ(bytesOf(internal + "/Music"), "a file in the way");
}

TEST_F(CopyFileFailure, WithoutAFolderInThePath) {
  // A bare name lies on no volume, which leaves no room but for an empty file.
  EXPECT_FALSE(copy(sandbox.file("in/a.mp3", "la"), "bare.mp3"));
  EXPECT_EQ(number(), kErrorVolumeFull);
  EXPECT_FALSE(copy(sandbox.file("in/empty.mp3", ""), "bare.mp3"));
  EXPECT_EQ(number(), kErrorCreateFolderFailed);
  EXPECT_FALSE(exists("bare.mp3"));
}

TEST_F(CopyFileFailure, WhereTheFileCannotBeMadeLeavesTheNumberAlone) {
  const std::string from = sandbox.file("in/a.mp3", "la");
  files.failAlways(FileCall::CreateFile, "a.mp3", EROFS);
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(error, kUntouched);
  expectLine(surroundings, 3, kCopyMethod, "createFileAtPath Fail!", [&] { copy(from, to); });
}

TEST_F(CopyFileFailure, OfANameThatIsTooLong) {
  EXPECT_FALSE(copy(sandbox.file("in/a.mp3", "la"), internal + "/" + std::string(256, 'n')));
  EXPECT_EQ(error, kUntouched);
  EXPECT_TRUE(log.has("createFileAtPath Fail!"));
}

TEST_F(CopyFileFailure, NeverWritesThroughADanglingLink) {
  sandbox.folder("internal/Music");
  ASSERT_EQ(::symlink(sandbox.at("elsewhere").c_str(), to.c_str()), 0);
  EXPECT_FALSE(copy(sandbox.file("in/a.mp3", "la"), to));
  EXPECT_EQ(error, kUntouched);
  EXPECT_FALSE(exists(sandbox.at("elsewhere")));
  EXPECT_TRUE(exists(to));
}

TEST_F(CopyFileFailure, NeverEmptiesAFileThatTheDeviceHidForAMoment) {
  const std::string from = sandbox.file("in/a.mp3", "new");
  sandbox.file("internal/Music/a.mp3", "old");
  files.failNth(FileCall::Attributes, 1, EIO);
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(bytesOf(to), "old");
  files.setFault([&](FileCall call, const std::string& path) {
    bool looksAt = call == FileCall::Attributes || call == FileCall::LinkAttributes;
    return looksAt && path == to ? EIO : 0;
  });
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(bytesOf(to), "old");
}

TEST_F(CopyFileFailure, OfASourceThatIsNoFile) {
  ASSERT_EQ(::mkfifo(sandbox.at("pipe.mp3").c_str(), 0600), 0);
  for (const std::string& from : {sandbox.at("pipe.mp3"), sandbox.folder("folder.mp3")}) {
    EXPECT_FALSE(copy(from, to)) << from;
    EXPECT_EQ(number(), kErrorOpenFailed) << from;
    EXPECT_TRUE(bytesOf(to).empty());
    service->umsDeleteFile(kRequest, to, nullptr);
  }
}

TEST_F(CopyFileFailure, OfASourceThatMayNotBeRead) {
  const std::string from = sandbox.file("in/secret.mp3", "la");
  ASSERT_EQ(::chmod(from.c_str(), 0), 0);
  WithoutRootPowers asAPerson;
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(number(), kErrorOpenFailed);
}

TEST_F(CopyFileFailure, OfHandlesNamesThem) {
  const std::string from = sandbox.file("in/a.mp3", "la");
  files.failAlways(FileCall::OpenForReading, "a.mp3", EMFILE);
  expectLine(surroundings, 3, kCopyMethod,
             "Open file Handle failed! source file handle = (null), destination file handle = <address>",
             [&] {
               service->umsDeleteFile(kRequest, to, nullptr);
               EXPECT_FALSE(copy(from, to));
               EXPECT_EQ(number(), kErrorOpenFailed);
             });
}

TEST_F(CopyFileFailure, InReadingIsTheException) {
  const std::string from = sandbox.patternFile("in/a.mp3", 600'000);
  files.failNth(FileCall::Read, 2, EIO);
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(number(), kErrorCopyFailed);
  EXPECT_EQ(bytesOf(to), bytesOf(from).substr(0, 256 * 1024));
}

TEST_F(CopyFileFailure, InWritingIsTheExceptionAndLeavesWholeUnits) {
  const std::string from = sandbox.patternFile("in/a.mp3", 600'000);
  files.setWrittenBeforeFault(10'000);
  files.failNth(FileCall::Write, 1, EIO);
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(number(), kErrorCopyFailed);
  EXPECT_EQ(bytesOf(to), bytesOf(from).substr(0, 2 * 4096));
}

TEST_F(CopyFileFailure, InClosingIsTheException) {
  files.failAlways(FileCall::Close, "Music/a.mp3", EIO);
  EXPECT_FALSE(copy(sandbox.file("in/a.mp3", "la"), to));
  EXPECT_EQ(number(), kErrorCopyFailed);
}

TEST_F(CopyFileFailure, OfTheExceptionHasAName) {
  const std::string from = sandbox.file("in/a.mp3", "la");
  files.failAlways(FileCall::Write, "a.mp3", ENOSPC);
  auto again = [&] {
    service->umsDeleteFile(kRequest, to, nullptr);
    EXPECT_FALSE(copy(from, to));
  };
  expectLine(surroundings, 3, kCopyMethod, "Name : NSFileHandleOperationException", again);
  expectLine(surroundings, 3, kCopyMethod, "Reason :" + words(ENOSPC), again);
  log.clear();
  again();
  EXPECT_EQ(linesOf(surroundings, kCopyMethod),
            (std::vector<std::string>{"Copy File : $/in/a.mp3  to  $/internal/Music/a.mp3",
                                      "Name : NSFileHandleOperationException", "Reason :" + words(ENOSPC),
                                      "EXIT"}));
}

TEST_F(CopyFileFailure, OfASourceThatShrinksEndsAtOnce) {
  const std::string from = sandbox.patternFile("in/a.mp3", 50'000);
  const std::string before = bytesOf(from);
  files.setFault([&](FileCall call, const std::string& path) {
    return call == FileCall::Read && ::truncate(path.c_str(), 20'000) != 0 ? EIO : 0;
  });
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(number(), kErrorCopyFailed);
  EXPECT_TRUE(log.has("Name : NSFileHandleOperationException"));
  EXPECT_EQ(bytesOf(to), before.substr(0, 20'000));
}

TEST_F(CopyFileFailure, WhenTheDiskFillsInMidCopyIsTheExceptionNotAFullVolume) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  const std::string from = sandbox.patternFile("in/a.mp3", 600'000);
  files.setFault([&](FileCall call, const std::string& path) {
    // Somebody else takes the room that was there when it was asked for.
    if (call == FileCall::Reserve && path == to) volume.fillUpTo(25 * 4096);
    return 0;
  });
  EXPECT_FALSE(copy(from, to));
  EXPECT_EQ(number(), kErrorCopyFailed);
  EXPECT_TRUE(log.has("Reason :" + words(ENOSPC)));
  EXPECT_TRUE(bytesOf(to) == bytesOf(from).substr(0, 25 * 4096));
}

TEST_F(CopyFileFailure, NeverComesOfOthersWhoFillTheDiskOnceItHasSetItsRoomAside) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  const std::string from = sandbox.patternFile("in/a.mp3", 600'000);
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Reserve && path == to) volume.setAside(to, 600'000);
    if (call == FileCall::Write && path == to) volume.fillUpTo(4096);
    return 0;
  });
  EXPECT_TRUE(copy(from, to));
  EXPECT_TRUE(bytesOf(to) == bytesOf(from));
}

}  // namespace
}  // namespace umsservice::testing
