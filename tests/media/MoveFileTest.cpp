#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

#include "CopyFileTest.h"

namespace umsservice::testing {
namespace {

class MoveFile : public CopyFile {
 protected:
  /// Remove and Sync calls in the order in which they are made.
  std::vector<FileCall> calls;
  void recordCalls() {
    files.setFault([this](FileCall call, const std::string&) {
      if (call == FileCall::Sync || call == FileCall::Close || call == FileCall::Remove)
        calls.push_back(call);
      return 0;
    });
  }

  std::string from = sandbox.patternFile("in/a.mp3", 300'000);
  const std::string before = bytesOf(from);
  std::string music = sandbox.folder("internal/Music");
};

TEST_F(MoveFile, PutsTheBytesThereRemovesTheSourceAndLeavesTheNumberAlone) {
  EXPECT_TRUE(move(from, to));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(bytesOf(to), before);
  EXPECT_FALSE(exists(from));
  EXPECT_EQ(notifier.maxSendBytes(), 300'000u);
  EXPECT_EQ(linesOf(surroundings, kMoveMethod),
            (std::vector<std::string>{"Move File : $/in/a.mp3  to  $/internal/Music/a.mp3", "EXIT"}));
}

TEST_F(MoveFile, SaysWhatItDoes) {
  expectLine(surroundings, 6, kMoveMethod, "Move File : $/in/b.mp3  to  $/internal/Music/b.mp3", [&] {
    service->umsDeleteFile(kRequest, music + "/b.mp3", nullptr);
    EXPECT_TRUE(move(sandbox.file("in/b.mp3", "la"), music + "/b.mp3"));
  });
}

TEST_F(MoveFile, KeepsTheCopySafeBeforeTheSourceGoes) {
  recordCalls();
  EXPECT_TRUE(move(from, to));
  EXPECT_EQ(calls, (std::vector<FileCall>{FileCall::Sync, FileCall::Close, FileCall::Remove}));
}

TEST_F(MoveFile, KeepsTheSourceWhenTheDeviceCannotKeepTheCopy) {
  for (FileCall call : {FileCall::Sync, FileCall::Close, FileCall::Write, FileCall::Read}) {
    service->umsDeleteFile(kRequest, to, nullptr);
    files.failNth(call, 1, EIO);
    EXPECT_FALSE(move(from, to));
    EXPECT_EQ(number(), kErrorCopyFailed);
    EXPECT_EQ(bytesOf(from), before);
  }
  EXPECT_EQ(log.count("Name : NSFileHandleOperationException"), 4u);
  EXPECT_EQ(log.count("Reason :" + std::generic_category().message(EIO)), 4u);
}

TEST_F(MoveFile, DoesNotMakeTheFolder) {
  EXPECT_FALSE(move(from, internal + "/Elsewhere/a.mp3"));
  EXPECT_EQ(error, kUntouched);
  EXPECT_FALSE(exists(internal + "/Elsewhere"));
  EXPECT_EQ(bytesOf(from), before);
  expectLine(surroundings, 3, kMoveMethod, "createFileAtPath Fail!",
             [&] { move(from, internal + "/Elsewhere/a.mp3"); });
}

TEST_F(MoveFile, DoesNotHearACancel) {
  service->cancelFileAction(kRequest);
  EXPECT_TRUE(move(from, to));
  EXPECT_EQ(bytesOf(to), before);
}

TEST_F(MoveFile, ThatIsReleasedKeepsTheSourceAndLeavesTheNumberAlone) {
  from = sandbox.patternFile("in/long.mp3", 3'000'000);
  notifications.onEach([&](const Notification&) { service->exitServiceThread(); });
  EXPECT_FALSE(move(from, to));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(bytesOf(to), bytesOf(from).substr(0, 245u * 4096));
  expectLine(surroundings, 3, kMoveMethod, "Object Releasing process stop!", [&] {
    service->umsDeleteFile(kRequest, to, nullptr);
    EXPECT_FALSE(move(from, to));
  });
}

TEST_F(MoveFile, WhoseSourceCannotBeRemovedLeavesBoth) {
  files.failAlways(FileCall::Remove, "in/a.mp3", EACCES);
  EXPECT_FALSE(move(from, to));
  EXPECT_EQ(linesOf(surroundings, kMoveMethod),
            (std::vector<std::string>{"Move File : $/in/a.mp3  to  $/internal/Music/a.mp3",
                                      "removeIemAtPath Fail!", "EXIT"}));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(bytesOf(to), before);
  EXPECT_EQ(bytesOf(from), before);
  expectLine(surroundings, 3, kMoveMethod, "removeIemAtPath Fail!", [&] {
    service->umsDeleteFile(kRequest, to, nullptr);
    EXPECT_FALSE(move(from, to));
  });
}

TEST_F(MoveFile, KeepsASourceThatHasGrownMeanwhile) {
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::Read) std::ofstream(from, std::ios::app) << "more";
    return 0;
  });
  EXPECT_FALSE(move(from, to));
  EXPECT_TRUE(bytesOf(from).starts_with(before + "more"));
  EXPECT_TRUE(log.has("removeIemAtPath Fail!"));
}

TEST_F(MoveFile, KeepsASourceThatShrinksMeanwhile) {
  files.setFault([&](FileCall call, const std::string&) {
    return call == FileCall::Read && ::truncate(from.c_str(), 100'000) != 0 ? errno : 0;
  });
  EXPECT_FALSE(move(from, to));
  EXPECT_EQ(number(), kErrorCopyFailed);
  EXPECT_EQ(bytesOf(from), before.substr(0, 100'000));
  EXPECT_EQ(linesOf(surroundings, kMoveMethod).back(), "EXIT");
}

TEST_F(MoveFile, KeepsASourceThatShrinksAfterItsLastByte) {
  files.setFault([&](FileCall call, const std::string&) {
    return call == FileCall::Sync && ::truncate(from.c_str(), 100'000) != 0 ? errno : 0;
  });
  EXPECT_FALSE(move(from, to));
  EXPECT_EQ(bytesOf(from), before.substr(0, 100'000));
  EXPECT_EQ(bytesOf(to), before);
}

TEST_F(MoveFile, OntoAVolumeThatVanishesKeepsTheSource) {
  REQUIRE_TMPFS_VOLUMES();
  for (FileCall last : {FileCall::Write, FileCall::Sync, FileCall::Close}) {
    TmpfsVolume volume(internal, 4 << 20);
    sandbox.folder("internal/Music");
    files.setFault([&, gone = false](FileCall call, const std::string& path) mutable {
      if (call == last && path == to && !std::exchange(gone, true)) volume.vanish();
      return gone && path.starts_with(internal) ? EIO : 0;
    });
    EXPECT_FALSE(move(from, to));
    EXPECT_EQ(number(), kErrorCopyFailed);
    EXPECT_EQ(bytesOf(from), before);
  }
}

TEST_F(MoveFile, NeverReplacesAFile) {
  sandbox.file("internal/Music/a.mp3", "old");
  EXPECT_FALSE(move(from, to));
  EXPECT_EQ(number(), kErrorFileExists);
  EXPECT_FALSE(move(from, from));
  EXPECT_EQ(number(), kErrorFileExists);
  EXPECT_EQ(bytesOf(to), "old");
  EXPECT_EQ(bytesOf(from), before);
}

TEST_F(MoveFile, OfASourceThatCannotBeLookedAtOrOpened) {
  EXPECT_FALSE(move(sandbox.at("missing.mp3"), to));
  EXPECT_EQ(number(), kErrorAttributesUnreadable);
  EXPECT_TRUE(log.has("Get Attributes Error : [" +
                      errorText(ENOENT, FileError::Action::Reading, sandbox.at("missing.mp3")) + "]"));
  EXPECT_FALSE(move(sandbox.folder("folder.mp3"), to));
  EXPECT_EQ(number(), kErrorOpenFailed);
  EXPECT_TRUE(exists(sandbox.at("folder.mp3")));
  EXPECT_EQ(linesOf(surroundings, kMoveMethod).back(),
            "Open file Handle failed! source file handle = (null), destination file handle = <address>");
}

TEST_F(MoveFile, WithoutRoomSaysSoInItsOwnWords) {
  files.failAlways(FileCall::Space, "", EIO);
  expectLine(surroundings, 3, kMoveMethod,
             "Not enough volume space. data Size = 0x000493e0, volume Free Size = 0x00000000s", [&] {
               EXPECT_FALSE(move(from, to));
               EXPECT_EQ(number(), kErrorVolumeFull);
             });
  EXPECT_FALSE(exists(to));
}

TEST_F(MoveFile, OfMissingInputLeavesTheNumberAlone) {
  expectLine(
      surroundings, 3, kMoveMethod,
      "Input Parameters is invalid. srcPath = (null), destPath = $/internal/Music/a.mp3, context = <address>",
      [&] {
        EXPECT_FALSE(move(std::nullopt, to));
        EXPECT_EQ(error, kUntouched);
      });
  EXPECT_FALSE(move(from, std::nullopt));
  EXPECT_FALSE(service->umsMoveFile(kRequest, from, to, nullptr, &error));
  EXPECT_EQ(bytesOf(from), before);
}

}  // namespace
}  // namespace umsservice::testing
