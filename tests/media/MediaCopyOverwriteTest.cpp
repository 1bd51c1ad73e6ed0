#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "MediaRunTest.h"
#include "PassingFileSystem.h"

namespace umsservice::testing {
namespace {

class MediaCopyOverwrite : public MediaRunTest {
 protected:
  MediaCopyOverwrite() {
    for (const char* name : {"a.mp3", "b.mp3", "c.mp3"}) {
      contents.append(source(name, std::string("new ") + name));
      sandbox.file(std::string("internal/Music/") + name, "old");
    }
    useDelegate();
  }
  std::string at(const std::string& name) const { return bytesOf(internal + "/Music/" + name); }
  Lines now() const { return {at("a.mp3"), at("b.mp3"), at("c.mp3")}; }
  std::string words(int number) { return std::generic_category().message(number); }

  Array contents;
  const Lines allOld{"old", "old", "old"};
  const Lines allNew{"new a.mp3", "new b.mp3", "new c.mp3"};
};

TEST_F(MediaCopyOverwrite, WithoutADelegateIsAFailure) {
  surroundings.delegate.reset();
  service = surroundings.makeService();
  service->addDiskInformation(disk(1, internal));
  EXPECT_FALSE(run(toDevice(contents)));
  EXPECT_EQ(now(), allOld);
  EXPECT_EQ(ends(), (Lines{"0 failed 21000002 0: $/in/a.mp3 > $/internal/Music/a.mp3",
                           "1 failed 21000002 0: $/in/b.mp3 > $/internal/Music/b.mp3",
                           "2 failed 21000002 0: $/in/c.mp3 > $/internal/Music/c.mp3"}));
  EXPECT_EQ(results().size(), 0u);
  expectLine(surroundings, 1, kToDevice, "Copy $/in/a.mp3 to $/internal/Music/a.mp3 failed.",
             [&] { run(toDevice(contents)); });
}

TEST_F(MediaCopyOverwrite, AsksForEachConflictWithThePathOfTheSource) {
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = false};
  EXPECT_TRUE(run(toDevice(contents)));
  EXPECT_EQ(delegate.asked(),
            (Lines{sandbox.at("in/a.mp3"), sandbox.at("in/b.mp3"), sandbox.at("in/c.mp3")}));
  EXPECT_EQ(now(), allNew);
  EXPECT_EQ(ends(), (Lines{"0 done 9: $/in/a.mp3 > $/internal/Music/a.mp3",
                           "1 done 9: $/in/b.mp3 > $/internal/Music/b.mp3",
                           "2 done 9: $/in/c.mp3 > $/internal/Music/c.mp3"}));
}

TEST_F(MediaCopyOverwrite, GivesNothingUpForAFileThatWouldNotFitEvenThen) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  sandbox.file("internal/Music/large.mp3", "old");
  Array large{content(sandbox.patternFile("in/large.mp3", 2 << 20), "large.mp3")};
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_FALSE(run(toDevice(large)));
  EXPECT_EQ(at("large.mp3"), "old");
  EXPECT_EQ(ends(), Lines{"0 failed 1000000a 0: $/in/large.mp3 > $/internal/Music/large.mp3"});
}

TEST_F(MediaCopyOverwrite, TakesTheRoomOfTheFileThatItReplaces) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  sandbox.file("internal/Music/a.mp3", "old");
  volume.fillUpTo(0);
  Array one{source("a.mp3", std::string(4096, 'n'))};
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toDevice(one)));
  EXPECT_EQ(at("a.mp3").size(), 4096u);
}

/// A full player that keeps files in units of 32 KiB; deleting a file gives its whole unit back.
class LargeUnits final : public PassingFileSystem {
 public:
  using PassingFileSystem::PassingFileSystem;

  FileResult<FileAttributes> attributes(const std::string& path) override {
    auto found = PassingFileSystem::attributes(path);
    if (found) found->allocated = kUnit;
    return found;
  }
  FileResult<VolumeSpace> space(const std::string&) override { return VolumeSpace{1 << 20, free_}; }
  FileStatus remove(const std::string& path) override {
    FileStatus removed = PassingFileSystem::remove(path);
    if (removed) free_ += kUnit;
    return removed;
  }

 private:
  static constexpr uint64_t kUnit = 32768;
  uint64_t free_ = 0;
};

TEST_F(MediaCopyOverwrite, TakesTheRoomThatThePlayerGivesBackForASmallFile) {
  surroundings.environment.fileSystem = std::make_shared<LargeUnits>(surroundings.files);
  service = surroundings.makeService();
  service->addDiskInformation(disk(1, internal));
  useDelegate();
  sandbox.file("internal/Music/a.mp3", std::string(100, 'o'));
  Array one{source("a.mp3", std::string(5000, 'n'))};
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toDevice(one)));
  EXPECT_EQ(at("a.mp3"), std::string(5000, 'n'));
  Array large{source("a.mp3", std::string(70'000, 'l'))};
  EXPECT_FALSE(run(toDevice(large)));
  EXPECT_EQ(at("a.mp3"), std::string(5000, 'n'));
}

TEST_F(MediaCopyOverwrite, OnceAnsweredForGoodReplacesTheRestUnasked) {
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toDevice(contents)));
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(now(), allNew);
  EXPECT_EQ(results(), std::vector<uint32_t>(3, kItemTransferred));
}

TEST_F(MediaCopyOverwrite, OnceDeclinedForGoodSkipsTheRestUnasked) {
  delegate.answer = {.returned = true, .isOverwrite = false, .isNotAsk = true};
  EXPECT_FALSE(run(toDevice(contents)));
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(now(), allOld);
  EXPECT_EQ(results(), std::vector<uint32_t>(3, kErrorFileExists));
}

TEST_F(MediaCopyOverwrite, OnceAnsweredNoSkipsTheRestUnasked) {
  // Neither out-parameter counts once the answer itself is NO.
  delegate.answer = {.returned = false, .isOverwrite = true, .isNotAsk = false};
  EXPECT_FALSE(run(toDevice(contents)));
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(now(), allOld);
}

TEST_F(MediaCopyOverwrite, DecidesEachConflictWhileItKeepsAsking) {
  delegate.onAsk = [](const std::string& path) {
    return ScriptedDelegate::Answer{true, path.ends_with("b.mp3"), false};
  };
  EXPECT_FALSE(run(toDevice(contents)));
  EXPECT_EQ(delegate.asked().size(), 3u);
  EXPECT_EQ(now(), (Lines{"old", "new b.mp3", "old"}));
  EXPECT_EQ(results(), (std::vector<uint32_t>{kErrorFileExists, kItemTransferred, kErrorFileExists}));
}

TEST_F(MediaCopyOverwrite, BeginsAfreshWithEachRun) {
  delegate.answer = {.returned = false};
  run(toDevice(contents));
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toDevice(contents)));
  EXPECT_EQ(delegate.asked().size(), 2u);
  EXPECT_EQ(now(), allNew);
}

TEST_F(MediaCopyOverwrite, TellsTheHostOfASkippedFileAsDone) {
  delegate.answer = {.returned = false};
  EXPECT_FALSE(run(toDevice(Array{contents.at(0)})));
  EXPECT_EQ(
      told(),
      (Lines{"QDORVEL_NOTI_TRANSFER_PROGRESS: Current=1u CurrentProgress=100u Fail=0u FileName=\"a.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=1u MaxProgress=100u MediaNotiType=1u "
             "ServiceID=7u TransferStatus=2u",
             "QDORVEL_NOTI_MEDIA_TRASFER_RESULT: FilePath=\"$/internal/Music/a.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" MediaNotiType=1u ResultStatus=553648130u "
             "ServiceID=7u VolumeIndex=0u",
             "QDORVEL_NOTI_TRANSFER_PROGRESS: Current=1u CurrentProgress=100u Fail=0u FileName=\"a.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=1u MaxProgress=100u MediaNotiType=1u "
             "ServiceID=7u TransferStatus=4u",
             "QDORVEL_NOTI_UMS_RESULT: DiskSize=0U ErrorNumber=0i EventType=1i ServiceID=7i "
             "Status=587202561i VolumeIndex=0i"}));
  EXPECT_EQ(ends(), Lines{"0 skipped 21000002 0: $/in/a.mp3 > $/internal/Music/a.mp3"});
}

TEST_F(MediaCopyOverwrite, WorksTheSameWayOnTheComputer) {
  sandbox.file("mac/a.mp3", "old");
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toMac(contents)));
  EXPECT_EQ(bytesOf(sandbox.at("mac/a.mp3")), "new a.mp3");
  EXPECT_EQ(delegate.asked().size(), 1u);
}

TEST_F(MediaCopyOverwrite, OfAFileThatCannotBeDeletedIsAFailure) {
  files.failAlways(FileCall::Remove, "a.mp3", EACCES);
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toDevice(contents)));
  EXPECT_EQ(ends()[0], "0 failed 20000003 0: $/in/a.mp3 > $/internal/Music/a.mp3 (" + words(EACCES) + ")");
  EXPECT_EQ(now(), (Lines{"old", "new b.mp3", "new c.mp3"}));
  EXPECT_TRUE(log.has("Delete file is Failed. error = " +
                      errorText(EACCES, FileError::Action::Writing, internal + "/Music/a.mp3")));
}

TEST_F(MediaCopyOverwrite, OfAFolderIsNeverAsked) {
  sandbox.file("internal/Music/d.mp3/kept", "kept");
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_FALSE(run(toDevice(Array{source("d.mp3")})));
  EXPECT_EQ(ends(), Lines{"0 failed 21000002 0: $/in/d.mp3 > $/internal/Music/d.mp3"});
  EXPECT_EQ(delegate.asked().size(), 0u);
  // Nor is what cannot be told from a folder.
  files.failAlways(FileCall::LinkAttributes, "d.mp3", EIO);
  EXPECT_FALSE(run(toDevice(Array{source("d.mp3")})));
  EXPECT_EQ(bytesOf(internal + "/Music/d.mp3/kept"), "kept");
}

TEST_F(MediaCopyOverwrite, OfAFileByItselfIsASkip) {
  const std::string path = internal + "/Music/a.mp3";
  ASSERT_EQ(::link(path.c_str(), (internal + "/other name.mp3").c_str()), 0);
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_FALSE(run(toDevice(Array{content(path, "a.mp3"), content(internal + "/other name.mp3", "a.mp3")})));
  EXPECT_EQ(ends(), (Lines{"0 skipped 21000002 0: $/internal/Music/a.mp3 > $/internal/Music/a.mp3",
                           "1 skipped 21000002 0: $/internal/other name.mp3 > $/internal/Music/a.mp3"}));
  EXPECT_EQ(delegate.asked().size(), 0u);
  EXPECT_EQ(bytesOf(path), "old");
}

TEST_F(MediaCopyOverwrite, GivesNothingUpForASourceThatCannotBeRead) {
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_FALSE(run(toDevice(Array{content("/missing", "a.mp3"), content(sandbox.folder("x"), "b.mp3")})));
  EXPECT_EQ(ends(), (Lines{"0 failed 20000008 0: /missing > $/internal/Music/a.mp3 (" + words(ENOENT) + ")",
                           "1 failed 21000004 0: $/x > $/internal/Music/b.mp3 (" + words(EISDIR) + ")"}));
  EXPECT_EQ(now(), allOld);
  EXPECT_TRUE(log.has("Copy /missing to " + internal + "/Music/a.mp3 failed."));
}

TEST_F(MediaCopyOverwrite, EndsTheRunWhenTheDeviceGoesBetweenDeletingAndCopying) {
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::Remove) service->exitServiceThread();
    return 0;
  });
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toDevice(contents)));
  EXPECT_EQ(now(), (Lines{"", "old", "old"}));
  EXPECT_EQ(ends(), (Lines{"0 not reached 10000008 0: $/in/a.mp3 > $/internal/Music/a.mp3",
                           "1 not reached 10000008 0: $/in/b.mp3 > nil",
                           "2 not reached 10000008 0: $/in/c.mp3 > nil"}));
  EXPECT_EQ(progress(), Lines{"3 1/3 0 100%"});
  EXPECT_EQ(linesOf(surroundings, kToDevice).back(), "Device Disconnected - location-1");
}

TEST_F(MediaCopyOverwrite, EndsTheRunWhenTheSecondCopyIsStopped) {
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::Remove) service->cancelFileAction(kRequest);
    return 0;
  });
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toDevice(contents)));
  EXPECT_EQ(now(), (Lines{"", "old", "old"}));
  EXPECT_EQ(progress(), Lines{"3 1/3 0 100%"});
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
  expectEachItemOnce(3);
}

TEST_F(MediaCopyOverwrite, EndsTheRunWhenTheNewFileIsTooLarge) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  sandbox.patternFile("internal/Music/a.mp3", 4096);
  volume.fillUpTo(4096);
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  const std::string larger = sandbox.patternFile("in/a.mp3", 3 * 4096);
  EXPECT_FALSE(run(toDevice(Array{content(larger, "a.mp3"), source("d.mp3")})));
  EXPECT_EQ(ends(), (Lines{"0 failed 1000000a 0: $/in/a.mp3 > $/internal/Music/a.mp3",
                           "1 not reached 1000000a 0: $/in/d.mp3 > nil"}));
}

TEST_F(MediaCopyOverwrite, ReplacesALinkAndNotWhatItLeadsTo) {
  const std::string path = internal + "/Music/a.mp3";
  const std::string kept = sandbox.file("card/kept.mp3", "kept");
  ASSERT_EQ(::unlink(path.c_str()), 0);
  ASSERT_EQ(::symlink(kept.c_str(), path.c_str()), 0);
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  EXPECT_TRUE(run(toDevice(Array{contents.at(0)})));
  EXPECT_EQ(bytesOf(path), "new a.mp3");
  EXPECT_EQ(bytesOf(kept), "kept");
}

}  // namespace
}  // namespace umsservice::testing
