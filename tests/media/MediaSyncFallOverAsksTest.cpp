#include <filesystem>

#include "SyncTest.h"

namespace umsservice::testing {
namespace {

/// A device whose first volume takes no file, with an older a.mp3 on the second volume.
class MediaSyncFallOverAsks : public SyncTest {
 protected:
  using Answer = ScriptedDelegate::Answer;

  MediaSyncFallOverAsks() {
    sandbox.file("card/Music/a.mp3", "old");
    service->addDiskInformation(disk(2, sandbox.folder("third")));
    add("a.mp3", "new a");
    useDelegate();
    failFirstVolume();
  }
  /// The first volume reports itself full; `also` may answer for the other calls.
  void failFirstVolume(const FaultyFileSystem::Fault& also = nullptr) {
    files.setFault([this, also](FileCall call, const std::string& path) {
      if (call == FileCall::Space && path.starts_with(internal)) return EIO;  // no space is known
      return also ? also(call, path) : 0;
    });
  }
  std::string onCard() const { return bytesOf(card + "/Music/a.mp3"); }
};

TEST_F(MediaSyncFallOverAsks, AndReplacesTheFileThere) {
  delegate.answer = {true, true, false};
  EXPECT_FALSE(run());
  EXPECT_EQ(delegate.asked(), Lines{sandbox.at("in/a.mp3")});
  EXPECT_EQ(onCard(), "new a");
  EXPECT_EQ(treeOf(sandbox.at("third")), Lines{});
  EXPECT_EQ(ends(), Lines{"0 done 0x00000000 5 bytes to $/card/Music/a.mp3"});
}

TEST_F(MediaSyncFallOverAsks, AndGoesOnToAFurtherVolumeWhenDeclined) {
  delegate.answer = {false, false, false};
  EXPECT_FALSE(run());
  EXPECT_EQ(onCard(), "old");
  EXPECT_EQ(bytesOf(sandbox.at("third/Music/a.mp3")), "new a");
  // The file counts as done where it was declined, and as done again where it was placed.
  EXPECT_EQ(
      told(),
      (Lines{"progress 1/1 fail 0 status 2 100% a.mp3", "result 0x21000002 volume 1 $/internal/Music/a.mp3",
             "progress 1/1 fail 0 status 4 100% a.mp3", "progress 1/1 fail 0 status 4 200% a.mp3",
             "result 0x10000001 volume 2 $/internal/Music/a.mp3",
             "progress 1/1 fail 0 status 4 100% a.mp3"}));
  EXPECT_EQ(ends(), Lines{"0 done 0x00000000 5 bytes to $/third/Music/a.mp3"});
}

TEST_F(MediaSyncFallOverAsks, AndCountsAFileThatIsDeclinedEverywhereAsDoneAndAsFailed) {
  service->removeDiskInformation(service->diskInfoFromIndex(2));
  delegate.answer = {true, false, false};
  EXPECT_FALSE(run());
  EXPECT_EQ(
      told(),
      (Lines{"progress 1/1 fail 0 status 2 100% a.mp3", "result 0x21000002 volume 1 $/internal/Music/a.mp3",
             "progress 1/1 fail 0 status 4 100% a.mp3", "progress 1/1 fail 1 status 4 100% a.mp3"}));
  EXPECT_EQ(ends(), Lines{"0 skipped 0x21000002 0 bytes to $/card/Music/a.mp3"});
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod), Lines{"Sync $/in/a.mp3 failed."});
}

TEST_F(MediaSyncFallOverAsks, AfreshForEachFile) {
  sandbox.file("card/Music/b.mp3", "old");
  add("b.mp3", "new b");
  delegate.answer = {true, true, true};  // not to be asked again, for this file
  run();
  EXPECT_EQ(delegate.asked(), (Lines{sandbox.at("in/a.mp3"), sandbox.at("in/b.mp3")}));
  EXPECT_EQ(bytesOf(card + "/Music/b.mp3"), "new b");
}

TEST_F(MediaSyncFallOverAsks, AgainAboutAFileThatTheFirstVolumeCouldNotReplace) {
  sandbox.file("internal/Music/a.mp3", "old");
  delegate.answer = {true, true, true};
  files.setFault([this](FileCall call, const std::string& path) {
    return call == FileCall::Remove && path.starts_with(internal) ? EACCES : 0;
  });
  run();
  EXPECT_EQ(delegate.asked(), (Lines{sandbox.at("in/a.mp3"), sandbox.at("in/a.mp3")}));
  EXPECT_EQ(onCard(), "new a");
}

TEST_F(MediaSyncFallOverAsks, EvenForAnUnattendedRequest) {
  request.serviceID = 0x00100005;
  delegate.answer = {false, false, false};
  run();
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(onCard(), "old");
}

TEST_F(MediaSyncFallOverAsks, NobodyWithoutADelegate) {
  surroundings.delegate.reset();
  run();
  EXPECT_EQ(onCard(), "old");
  EXPECT_EQ(bytesOf(sandbox.at("third/Music/a.mp3")), "new a");
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod),
            Lines{"Sync $/in/a.mp3 to $/card/Music/a.mp3 failed. Send Next Storage"});
}

TEST_F(MediaSyncFallOverAsks, AndKeepsTheFileThereWhenTheSourceCannotBeRead) {
  sandbox.folder("in/folder/a.mp3");
  request.contents = Array{content(sandbox.at("in/folder/a.mp3"), "a.mp3")};
  delegate.answer = {true, true, true};
  EXPECT_FALSE(run());
  EXPECT_EQ(onCard(), "old");
  EXPECT_EQ(ends(), Lines{"0 failed 0x21000004 0 bytes to $/internal/Music/a.mp3"});
}

TEST_F(MediaSyncFallOverAsks, AndNeverRemovesAFolder) {
  std::filesystem::remove_all(card + "/Music/a.mp3");
  sandbox.file("card/Music/a.mp3/inside", "kept");
  delegate.answer = {true, true, true};
  run();
  EXPECT_EQ(bytesOf(card + "/Music/a.mp3/inside"), "kept");
  EXPECT_EQ(delegate.asked(), Lines{});
  EXPECT_EQ(bytesOf(sandbox.at("third/Music/a.mp3")), "new a");
}

TEST_F(MediaSyncFallOverAsks, AndKeepsAFileThatIsTheSourceItself) {
  request.contents = Array{content(card + "/Music/a.mp3", "a.mp3")};
  service->removeDiskInformation(service->diskInfoFromIndex(2));
  delegate.answer = {true, true, true};
  run();
  EXPECT_EQ(onCard(), "old");
  EXPECT_EQ(delegate.asked(), Lines{});
}

TEST_F(MediaSyncFallOverAsks, AndTriesTheNextVolumeWhenTheFileCannotBeRemoved) {
  delegate.answer = {true, true, true};
  failFirstVolume([](FileCall call, const std::string&) { return call == FileCall::Remove ? EACCES : 0; });
  run();
  EXPECT_EQ(onCard(), "old");
  EXPECT_EQ(bytesOf(sandbox.at("third/Music/a.mp3")), "new a");
}

TEST_F(MediaSyncFallOverAsks, AndStopsWhenReleasedBeforeTheSecondCopy) {
  add("b.mp3");
  delegate.answer = {true, true, true};
  failFirstVolume([this](FileCall call, const std::string&) {
    if (call == FileCall::Remove) service->exitServiceThread();
    return 0;
  });
  run();
  EXPECT_FALSE(exists(card + "/Music/a.mp3"));
  // The removal's own number, 0, is the answer: the host takes the file for done; the observer knows better.
  EXPECT_EQ(told(), (Lines{"progress 1/2 fail 0 status 3 100% a.mp3",
                           "result 0x10000001 volume 1 $/internal/Music/a.mp3",
                           "progress 2/2 fail 0 status 3 100% b.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 failed 0x20000005 0 bytes to $/internal/Music/a.mp3",
                           "1 not reached 0x10000008 0 bytes to $/internal/Music/b.mp3"}));
  EXPECT_EQ(linesOf(surroundings, kFallOverMethod),
            (Lines{"Device Disconnected - location-1", "Sync $/in/a.mp3 failed."}));
}

TEST_F(MediaSyncFallOverAsks, AndEndsTheRunWhenCancelledBeforeTheSecondCopy) {
  add("b.mp3");
  delegate.answer = {true, true, true};
  failFirstVolume([this](FileCall call, const std::string&) {
    if (call == FileCall::Remove) service->cancelFileAction(kRequest);
    return 0;
  });
  run();
  EXPECT_EQ(onCard(), "");
  EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
  EXPECT_EQ(ends(), (Lines{"0 not reached 0x10000008 0 bytes to $/internal/Music/a.mp3",
                           "1 not reached 0x10000008 0 bytes to (none)"}));
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
}

}  // namespace
}  // namespace umsservice::testing
