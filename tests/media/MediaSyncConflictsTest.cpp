#include <unistd.h>

#include "SyncTest.h"

namespace umsservice::testing {
namespace {

/// A device on which a.mp3 and b.mp3 are already there.
class MediaSyncConflict : public SyncTest {
 protected:
  MediaSyncConflict() {
    sandbox.file("internal/Music/a.mp3", "old");
    sandbox.file("internal/Music/b.mp3", "old");
    add("a.mp3", "new a");
    add("b.mp3", "new b");
  }

  using Answer = ScriptedDelegate::Answer;

  void answer(bool returned, bool isOverwrite, bool isNotAsk) {
    useDelegate();
    delegate.answer = {returned, isOverwrite, isNotAsk};
  }
  std::string onDevice(const std::string& name) const { return bytesOf(internal + "/Music/" + name); }
  /// Does something once, when the existing file is about to be removed.
  void onRemove(const std::function<int()>& action) {
    files.setFault(
        [action](FileCall call, const std::string&) { return call == FileCall::Remove ? action() : 0; });
  }
};

TEST_F(MediaSyncConflict, OfAnUnattendedRequestIsReplacedWithoutAQuestion) {
  answer(false, false, false);
  for (uint32_t serviceID : {0x00100000u, 0x00100005u, 0x0010ffffu}) {
    request.serviceID = serviceID;
    sandbox.file("internal/Music/a.mp3", "old");
    EXPECT_TRUE(run());
    EXPECT_EQ(onDevice("a.mp3"), "new a") << serviceID;
  }
  EXPECT_EQ(delegate.asked(), Lines{});
  EXPECT_EQ(results(), std::vector<uint32_t>(6, kItemTransferred));
}

TEST_F(MediaSyncConflict, OfAnyOtherRequestIsAskedAbout) {
  answer(true, true, false);
  for (uint32_t serviceID : {0u, 0x000fffffu, 0x00110000u, 0x00200005u, 0x10100005u}) {
    request.serviceID = serviceID;
    const size_t before = delegate.asked().size();
    EXPECT_TRUE(run());
    EXPECT_EQ(delegate.asked().size(), before + 2) << serviceID;
  }
  EXPECT_EQ(delegate.asked().at(0), sandbox.at("in/a.mp3"));
  EXPECT_EQ(onDevice("b.mp3"), "new b");
}

TEST_F(MediaSyncConflict, ThatIsDeclinedIsSkippedAndSoAreAllLaterOnes) {
  answer(false, true, false);
  EXPECT_FALSE(run());
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(onDevice("a.mp3"), "old");
  EXPECT_EQ(treeOf(card), Lines{});  // declined on the first volume, not tried elsewhere
  EXPECT_EQ(
      told(),
      (Lines{"progress 1/2 fail 0 status 2 50% a.mp3", "result 0x21000002 volume 0 $/internal/Music/a.mp3",
             "progress 2/2 fail 0 status 2 100% b.mp3", "result 0x21000002 volume 0 $/internal/Music/b.mp3",
             "progress 2/2 fail 0 status 4 100% b.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 skipped 0x21000002 0 bytes to $/internal/Music/a.mp3",
                           "1 skipped 0x21000002 0 bytes to $/internal/Music/b.mp3"}));
}

TEST_F(MediaSyncConflict, ThatIsAnsweredForAllIsNotAskedAboutAgain) {
  answer(true, true, true);
  EXPECT_TRUE(run());
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(onDevice("a.mp3"), "new a");
  EXPECT_EQ(onDevice("b.mp3"), "new b");
}

TEST_F(MediaSyncConflict, ThatIsKeptForAllIsNotAskedAboutAgain) {
  answer(true, false, true);
  EXPECT_FALSE(run());
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(onDevice("b.mp3"), "old");
}

TEST_F(MediaSyncConflict, IsAskedAboutOneByOne) {
  useDelegate();
  delegate.onAsk = [](const std::string& path) { return Answer{true, path.ends_with("b.mp3"), false}; };
  EXPECT_TRUE(run());
  EXPECT_EQ(delegate.asked().size(), 2u);
  EXPECT_EQ(onDevice("a.mp3"), "old");
  EXPECT_EQ(onDevice("b.mp3"), "new b");
}

TEST_F(MediaSyncConflict, WithoutADelegateGoesToTheOtherVolume) {
  EXPECT_FALSE(run());  // the last copy to the first volume failed
  EXPECT_EQ(onDevice("a.mp3"), "old");
  EXPECT_EQ(bytesOf(card + "/Music/a.mp3"), "new a");
  EXPECT_TRUE(log.has("Sync " + sandbox.at("in/a.mp3") + " to " + internal +
                      "/Music/a.mp3 failed. Send Next Storage."));
  EXPECT_EQ(ends(), (Lines{"0 done 0x00000000 5 bytes to $/card/Music/a.mp3",
                           "1 done 0x00000000 5 bytes to $/card/Music/b.mp3"}));
}

TEST_F(MediaSyncConflict, WhoseFileCannotBeRemovedGoesToTheOtherVolume) {
  answer(true, true, false);
  onRemove([] { return EACCES; });
  EXPECT_FALSE(run());
  EXPECT_EQ(onDevice("a.mp3"), "old");
  EXPECT_EQ(bytesOf(card + "/Music/a.mp3"), "new a");
}

TEST_F(MediaSyncConflict, WhoseFileCannotBeRemovedFailsOnADeviceOfOneVolume) {
  service->removeDiskInformation(service->diskInfoFromIndex(1));
  request.serviceID = 0x00100005;
  onRemove([] { return EACCES; });
  EXPECT_FALSE(run());
  EXPECT_EQ(ends().at(0), "0 failed 0x20000003 0 bytes to $/internal/Music/a.mp3");
}

TEST_F(MediaSyncConflict, IsNotCopiedAfterAReleaseInBetween) {
  answer(true, true, false);
  onRemove([&] {
    service->exitServiceThread();
    return 0;
  });
  run();
  EXPECT_FALSE(exists(internal + "/Music/a.mp3"));
  EXPECT_EQ(onDevice("b.mp3"), "old");
  EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
  EXPECT_EQ(linesOf(surroundings, kSyncMethod), Lines{"Device Disconnected - location-1"});
  EXPECT_EQ(ends().size(), 2u);
}

TEST_F(MediaSyncConflict, ThatIsCancelledBeforeTheSecondCopyEndsTheRun) {
  request.serviceID = 0x00100005;
  onRemove([&] {
    service->cancelFileAction(request.serviceID);
    return 0;
  });
  EXPECT_TRUE(run());
  EXPECT_EQ(onDevice("a.mp3"), "");
  EXPECT_EQ(onDevice("b.mp3"), "old");
  EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
  EXPECT_FALSE(service->isCancelServiceId(request.serviceID));
}

TEST_F(MediaSyncConflict, WithAFolderIsNeverSettledByRemovingIt) {
  sandbox.file("internal/Music/folder.mp3/inside", "kept");
  request.contents = Array();
  add("folder.mp3", "new");
  answer(true, true, true);
  for (uint32_t serviceID : {kRequest, 0x00100005u}) {
    request.serviceID = serviceID;
    run();
    EXPECT_EQ(bytesOf(internal + "/Music/folder.mp3/inside"), "kept");
    EXPECT_EQ(bytesOf(card + "/Music/folder.mp3"), "new");
  }
}

TEST_F(MediaSyncConflict, OfAFileWithItselfKeepsIt) {
  ASSERT_EQ(::link((internal + "/Music/a.mp3").c_str(), sandbox.at("in/hard.mp3").c_str()), 0);
  request.contents =
      Array{content(internal + "/Music/a.mp3", "a.mp3"), content(sandbox.at("in/hard.mp3"), "a.mp3")};
  answer(true, true, true);
  for (uint32_t serviceID : {kRequest, 0x00100005u}) {
    request.serviceID = serviceID;
    run();
    EXPECT_EQ(onDevice("a.mp3"), "old");
  }
  EXPECT_EQ(delegate.asked(), Lines{});
  EXPECT_EQ(results(), std::vector<uint32_t>(4, kErrorFileExists));
}

TEST_F(MediaSyncConflict, WithASourceThatCannotBeReadKeepsTheExistingFile) {
  request.contents =
      Array{content(sandbox.at("in/missing.mp3"), "a.mp3"), content(sandbox.folder("in/folder"), "b.mp3")};
  answer(true, true, true);
  for (uint32_t serviceID : {kRequest, 0x00100005u}) {
    request.serviceID = serviceID;
    EXPECT_FALSE(run());
    EXPECT_EQ(onDevice("a.mp3"), "old");
    EXPECT_EQ(onDevice("b.mp3"), "old");
  }
  EXPECT_EQ(ends().at(0), "0 failed 0x20000008 0 bytes to $/internal/Music/a.mp3");
  EXPECT_EQ(ends().at(1), "1 failed 0x21000004 0 bytes to $/internal/Music/b.mp3");
}

TEST_F(MediaSyncConflict, IsTheSameForALinkThatLeadsAnywhere) {
  const std::string elsewhere = sandbox.file("elsewhere.mp3", "elsewhere");
  ASSERT_EQ(::unlink((internal + "/Music/a.mp3").c_str()), 0);
  ASSERT_EQ(::symlink(elsewhere.c_str(), (internal + "/Music/a.mp3").c_str()), 0);
  answer(true, true, true);
  EXPECT_TRUE(run());
  EXPECT_EQ(bytesOf(elsewhere), "elsewhere");  // the link was replaced, not what it led to
  EXPECT_EQ(onDevice("a.mp3"), "new a");
}

}  // namespace
}  // namespace umsservice::testing
