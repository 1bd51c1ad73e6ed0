#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "LastReference.h"
#include "LogExpectations.h"

namespace umsservice::testing {
namespace {

constexpr auto kSendMethod = "-[UMSService sendSmiFile:srcVideoPath:destPath:mediaType:]";
constexpr auto kDeleteMethod = "-[UMSService deleteSmiFile:filePath:mediaType:]";

class SubtitleCompanion : public DeviceTest {
 protected:
  bool send() { return service->sendSmiFile(7, video, folder, kMediaVideo); }
  bool removeIt() { return service->deleteSmiFile(7, folder + "/trip.mp4", kMediaVideo); }
  void expectSendLine(int level, const std::string& message, bool answer = false) {
    expectLine(surroundings, level, kSendMethod, plain(surroundings, message),
               [&] { EXPECT_EQ(send(), answer); });
  }
  std::string words(int number) { return std::generic_category().message(number); }

  std::string video = sandbox.file("in/trip.mp4", "moving");
  std::string subtitles = sandbox.file("in/trip.smi", "spoken words");
  std::string folder = internal + "/DCIM/Camera";
  std::string copied = folder + "/trip.smi";
};

TEST_F(SubtitleCompanion, GoesBesideItsVideoAndMakesTheFolder) {
  EXPECT_TRUE(send());
  EXPECT_EQ(bytesOf(copied), "spoken words");
  EXPECT_EQ(treeOf(internal), (std::vector<std::string>{"DCIM/", "DCIM/Camera/", "DCIM/Camera/trip.smi"}));
  EXPECT_EQ(notifications.all().size(), 0u);
}

TEST_F(SubtitleCompanion, OfEqualSizeIsLeftAlone) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "SPOKEN WORDS");
  EXPECT_TRUE(send());
  EXPECT_EQ(bytesOf(copied), "SPOKEN WORDS");
  EXPECT_EQ(files.count(FileCall::Read), 0u);
  expectSendLine(6, "Already exist smi file : " + copied, true);
}

TEST_F(SubtitleCompanion, OfAnotherSizeIsReplaced) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "much longer than the other one");
  EXPECT_TRUE(send());
  EXPECT_EQ(bytesOf(copied), "spoken words");
}

TEST_F(SubtitleCompanion, IsNamedAfterTheVideoLessItsLastExtension) {
  sandbox.file("in/a.b.smi", "ab");
  EXPECT_TRUE(service->sendSmiFile(7, sandbox.at("in/a.b.avi"), folder, kMediaVideo));
  EXPECT_EQ(bytesOf(folder + "/a.b.smi"), "ab");
  sandbox.file("in/bare.smi", "no extension");
  EXPECT_TRUE(service->sendSmiFile(7, sandbox.at("in/bare"), folder, kMediaVideo));
  EXPECT_EQ(bytesOf(folder + "/bare.smi"), "no extension");
}

TEST_F(SubtitleCompanion, OfNoBytesIsCopiedToo) {
  sandbox.file("in/trip.smi", "");
  EXPECT_TRUE(send());
  EXPECT_TRUE(exists(copied));
}

TEST_F(SubtitleCompanion, LargerThanAnyBlockIsCopiedWhole) {
  sandbox.patternFile("in/trip.smi", 700'000);
  EXPECT_TRUE(send());
  EXPECT_EQ(bytesOf(copied), bytesOf(subtitles));
}

TEST_F(SubtitleCompanion, StaysWhereTheMediaTypeIsNotVideo) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "on the device");
  for (uint32_t mediaType : {0u, 1u, 2u, 4u, 5u}) {
    EXPECT_FALSE(service->sendSmiFile(7, video, folder, mediaType));
    EXPECT_FALSE(service->sendSmiFile(7, std::nullopt, std::nullopt, mediaType));
    EXPECT_FALSE(service->deleteSmiFile(7, folder + "/trip.mp4", mediaType));
    EXPECT_FALSE(service->deleteSmiFile(7, std::nullopt, mediaType));
  }
  EXPECT_EQ(bytesOf(copied), "on the device");
  EXPECT_EQ(linesOf(surroundings, kSendMethod).size() + linesOf(surroundings, kDeleteMethod).size(), 0u);
}

TEST_F(SubtitleCompanion, NeedsAPathAndAFolder) {
  expectLine(surroundings, 3, kSendMethod, "Input parameter is invalid. srcPath = 0x0, destPath = <address>",
             [&] { EXPECT_FALSE(service->sendSmiFile(7, std::nullopt, folder, kMediaVideo)); });
  expectLine(surroundings, 3, kSendMethod, "Input parameter is invalid. srcPath = <address>, destPath = 0x0",
             [&] { EXPECT_FALSE(service->sendSmiFile(7, video, std::nullopt, kMediaVideo)); });
  expectLine(surroundings, 3, kSendMethod, "SMI file path is invalid. srcSmiPath = 0x0,  destSmiPath = 0x0",
             [&] { EXPECT_FALSE(service->sendSmiFile(7, "/", folder, kMediaVideo)); });
}

TEST_F(SubtitleCompanion, ThatDoesNotExistIsTheCommonCase) {
  ASSERT_EQ(::unlink(subtitles.c_str()), 0);
  expectSendLine(1, "SMI file does not exist. srcSmiPath = " + subtitles);
  EXPECT_EQ(treeOf(internal).size(), 0u);
}

TEST_F(SubtitleCompanion, WhoseExistingCopyCannotBeLookedAtIsCopied) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "SPOKEN WORDS");
  int looks = 0;
  files.setFault([&](FileCall call, const std::string& path) {
    return call == FileCall::Attributes && path == copied && ++looks == 2 ? EIO : 0;
  });
  EXPECT_TRUE(send());
  EXPECT_EQ(bytesOf(copied), "spoken words");
  EXPECT_TRUE(log.has("Get Attributes Error : [" + errorText(EIO, FileError::Action::Reading, copied) + "]"));
  expectSendLine(6, "Already exist smi file : " + copied, true);
}

TEST_F(SubtitleCompanion, OfAnUnreadableExistingCopyIsToldAtLevelThree) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "SPOKEN WORDS");
  int looks = 0;
  files.setFault([&](FileCall call, const std::string& path) {
    return call == FileCall::Attributes && path == copied && looks++ % 3 == 1 ? EIO : 0;
  });
  expectSendLine(3, "Get Attributes Error : [" + errorText(EIO, FileError::Action::Reading, copied) + "]",
                 true);
}

TEST_F(SubtitleCompanion, WithoutRoomFailsAlone) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  volume.fillUpTo(4096);
  sandbox.patternFile("in/trip.smi", 4097);
  expectSendLine(3, "Not enough volume space. data Size = 0x00001001, volume Free Size = 0x00001000");
  EXPECT_FALSE(exists(copied));
  sandbox.patternFile("in/trip.smi", 4096);
  EXPECT_TRUE(send());
}

TEST_F(SubtitleCompanion, WhoseFolderCannotBeMadeFails) {
  sandbox.file("internal/DCIM", "a file in the way");
  expectSendLine(3, "Create download folder is filed. Error = " +
                        errorText(ENOTDIR, FileError::Action::Writing, folder));
  EXPECT_EQ(bytesOf(internal + "/DCIM"), "a file in the way");
}

TEST_F(SubtitleCompanion, WhoseFileCannotBeMadeFails) {
  files.failAlways(FileCall::CreateFile, "trip.smi", EROFS);
  expectSendLine(3, "createFileAtPath Fail!");
}

TEST_F(SubtitleCompanion, NeverReplacesAFolderOfItsName) {
  sandbox.file("internal/DCIM/Camera/trip.smi/kept", "kept");
  EXPECT_FALSE(send());
  EXPECT_TRUE(log.has("createFileAtPath Fail!"));
  EXPECT_FALSE(removeIt());
  EXPECT_EQ(bytesOf(copied + "/kept"), "kept");
}

TEST_F(SubtitleCompanion, ThatCannotBeReadCostsNothing) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "of another size");
  files.failAlways(FileCall::OpenForReading, "trip.smi", EACCES);
  expectSendLine(3, "Open file Handle failed! source file handle = (null), destination file handle = (null)");
  EXPECT_EQ(bytesOf(copied), "of another size");
}

TEST_F(SubtitleCompanion, ThatIsNoFileIsNotCopied) {
  ASSERT_EQ(::unlink(subtitles.c_str()), 0);
  ASSERT_EQ(::mkfifo(subtitles.c_str(), 0600), 0);
  EXPECT_FALSE(send());
  EXPECT_FALSE(exists(copied));
}

TEST_F(SubtitleCompanion, IsNeverEmptiedToBeCopiedOntoItself) {
  int looks = 0;
  files.setFault([&](FileCall call, const std::string& path) {
    // The first look finds the source, the second is for the existing copy.
    return call == FileCall::Attributes && path == subtitles && ++looks == 2 ? EIO : 0;
  });
  EXPECT_TRUE(service->sendSmiFile(7, video, sandbox.at("in"), kMediaVideo));
  EXPECT_EQ(bytesOf(subtitles), "spoken words");
}

TEST_F(SubtitleCompanion, StopsWhenTheDeviceIsReleased) {
  service->exitServiceThread();
  expectSendLine(5, "Device Disconnected - location-1");
  EXPECT_EQ(bytesOf(copied), "");
  expectLine(surroundings, 5, kDeleteMethod, "Device Disconnected - location-1",
             [&] { EXPECT_FALSE(removeIt()); });
  EXPECT_TRUE(exists(copied));
}

TEST_F(SubtitleCompanion, ReleasedAtTheLastMomentGivesUpNothingThatIsThere) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "of another size");
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::OpenForReading) service->exitServiceThread();
    return 0;
  });
  EXPECT_FALSE(send());
  EXPECT_EQ(bytesOf(copied), "of another size");
  EXPECT_EQ(linesOf(surroundings, kSendMethod), std::vector<std::string>{"Device Disconnected - location-1"});
}

TEST_F(SubtitleCompanion, ReleasedWhileAFailingDeviceHidesTheExistingOneGivesItUpNeither) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "of another size");
  service->exitServiceThread();
  files.failAlways(FileCall::Attributes, "Camera/trip.smi", EIO);
  EXPECT_FALSE(send());
  EXPECT_EQ(bytesOf(copied), "of another size");
}

TEST_F(SubtitleCompanion, ThatGrowsIsTakenAtTheSizeItBeganWith) {
  const std::string before = bytesOf(sandbox.patternFile("in/trip.smi", 10'000));
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::OpenForReading) sandbox.patternFile("in/trip.smi", 50'000);
    return 0;
  });
  EXPECT_TRUE(send());
  EXPECT_EQ(bytesOf(copied), before);
}

TEST_F(SubtitleCompanion, ThatShrinksIsTheException) {
  sandbox.patternFile("in/trip.smi", 10'000);
  files.setFault([&](FileCall call, const std::string&) {
    return call == FileCall::OpenForReading && ::truncate(subtitles.c_str(), 5000) != 0 ? errno : 0;
  });
  EXPECT_FALSE(send());
  EXPECT_EQ(bytesOf(copied), bytesOf(subtitles));
  EXPECT_TRUE(log.has("Name : NSFileHandleOperationException"));
  EXPECT_TRUE(log.has("Reason :" + words(ENODATA)));
}

TEST_F(SubtitleCompanion, IsCopiedWholeWhenTheLastReferenceGoesAwayMeanwhile) {
  std::weak_ptr<UMSService> watched = service;
  letGoInCall(files, service, FileCall::Read);
  EXPECT_TRUE(send());
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(bytesOf(copied), "spoken words");
}

TEST_F(SubtitleCompanion, IsNotStoppedByACancel) {
  service->cancelFileAction(7);
  EXPECT_TRUE(send());
}

TEST_F(SubtitleCompanion, ThatCannotBeWrittenIsTheException) {
  for (FileCall call : {FileCall::Write, FileCall::Close}) {
    files.failAlways(call, "Camera/trip.smi", EIO);
    log.clear();
    EXPECT_FALSE(send());
    auto lines = linesOf(surroundings, kSendMethod);
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(
        std::vector<std::string>(lines.end() - 3, lines.end()),
        (std::vector<std::string>{
            "Open file Handle failed! source file handle = <address>, destination file handle = <address>",
            "Name : NSFileHandleOperationException", "Reason :" + words(EIO)}));
    service->umsDeleteFile(7, copied, nullptr);
  }
  files.failAlways(FileCall::Read, "trip.smi", EIO);
  auto again = [&] {
    service->umsDeleteFile(7, copied, nullptr);
    EXPECT_FALSE(send());
  };
  expectLine(surroundings, 3, kSendMethod, "Name : NSFileHandleOperationException", again);
  expectLine(surroundings, 3, kSendMethod, "Reason :" + words(EIO), again);
}

TEST_F(SubtitleCompanion, GoesWithItsVideo) {
  sandbox.file("internal/DCIM/Camera/trip.smi", "on the device");
  EXPECT_TRUE(removeIt());
  EXPECT_FALSE(exists(copied));
  EXPECT_EQ(bytesOf(subtitles), "spoken words");
}

TEST_F(SubtitleCompanion, ThatIsMissingCannotGo) {
  expectLine(surroundings, 3, kDeleteMethod,
             plain(surroundings,
                   "Delete file is Failed. error = " + errorText(ENOENT, FileError::Action::Writing, copied)),
             [&] { EXPECT_FALSE(removeIt()); });
  expectLine(surroundings, 3, kDeleteMethod, "Input parameter is invalid. filePath = 0x0",
             [&] { EXPECT_FALSE(service->deleteSmiFile(7, std::nullopt, kMediaVideo)); });
  expectLine(surroundings, 3, kDeleteMethod, "SMI file path is invalid. destSmiPath = 0x0",
             [&] { EXPECT_FALSE(service->deleteSmiFile(7, "/", kMediaVideo)); });
}

TEST_F(SubtitleCompanion, InUpperCaseIsAnotherFile) {
  ASSERT_EQ(::rename(subtitles.c_str(), sandbox.at("in/trip.SMI").c_str()), 0);
  EXPECT_FALSE(send());
}

}  // namespace
}  // namespace umsservice::testing
