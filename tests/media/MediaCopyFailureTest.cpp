#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "MediaRunTest.h"

namespace umsservice::testing {
namespace {

class MediaCopyFailure : public MediaRunTest {
 protected:
  std::string words(int number) { return std::generic_category().message(number); }
  /// Runs the request and expects a line of its operation at level 1, as every failed item has one.
  void expectItemLine(const char* method, const std::string& message, const _serviceinfo& made) {
    expectLine(surroundings, 1, method, message, [&] { run(made); });
  }
};

TEST_F(MediaCopyFailure, OfAnElementThatIsNoDictionary) {
  for (auto command : {kCommandCopyToDevice, kCommandCopyFile}) {
    _serviceinfo made = request(command, Array{Value(), Null{}, "text", 3, Array{"a"}, source("good.mp3")});
    made.destPath = sandbox.at("mac");
    EXPECT_TRUE(run(made));
  }
  expectLine(surroundings, 1, kToDevice, "Contents data is nil. Next data search",
             [&] { run(toDevice(Array{Value()})); });
  auto outcomes = items.outcomes();
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(outcomes[i].kind, ItemOutcome::Kind::Failed);
    EXPECT_EQ(outcomes[i].errorNumber, kErrorBadCopyItem);
  }
  EXPECT_EQ(outcomes[5].kind, ItemOutcome::Kind::Done);
  EXPECT_EQ(bytesOf(sandbox.at("mac/good.mp3")), "good.mp3");
}

TEST_F(MediaCopyFailure, OfAnItemWithoutPathOrName) {
  Array contents{Dictionary(), Dictionary{{"FilePath", "/x/a.mp3"}}, Dictionary{{"FileName", "a.mp3"}},
                 Dictionary{{"FilePath", 3}, {"FileName", Null{}}}};
  EXPECT_TRUE(run(toDevice(contents)));
  EXPECT_EQ(ends(), (Lines{"0 failed 23000005 0: nil > nil", "1 failed 23000005 0: /x/a.mp3 > nil",
                           "2 failed 23000005 0: nil > nil", "3 failed 23000005 0: nil > nil"}));
  expectItemLine(kToDevice, "Get contents information is failed. filePath = /x/a.mp3, name = (null)",
                 toDevice(Array{Dictionary{{"FilePath", "/x/a.mp3"}}}));
  expectItemLine(kToMac, "Get contents information is failed. filePath = (null), name = a.mp3",
                 toMac(Array{Dictionary{{"FileName", "a.mp3"}}}));
}

TEST_F(MediaCopyFailure, CountsEachFailureAndPostsNoResultForIt) {
  EXPECT_FALSE(run(toDevice(Array{source("a.txt"), content("/missing", "b.mp3"), source("c.xml")})));
  EXPECT_EQ(results().size(), 0u);
  // A failure of the last but one already counts as the end; hosts have always been told so.
  EXPECT_EQ(progress(), (Lines{"4 3/3 2 100%", "4 3/3 3 100%"}));
  EXPECT_EQ(numbers(notifications.named(kUmsResultNotification), key::kStatus),
            std::vector<uint32_t>{kErrorOperationFailed});
}

TEST_F(MediaCopyFailure, OfAnUnknownTypeOrAPodcastOnTheWayToADevice) {
  EXPECT_TRUE(run(toDevice(Array{source("notes.txt"), source("index.xml"), source("noextension")})));
  EXPECT_EQ(ends(),
            (Lines{"0 failed 14000002 0: $/in/notes.txt > nil", "1 failed 14000002 0: $/in/index.xml > nil",
                   "2 failed 14000002 0: $/in/noextension > nil"}));
  EXPECT_EQ(treeOf(internal).size(), 0u);
  expectItemLine(kToDevice, "Media type is unknown or podcast. filePath = $/in/index.xml, name = index.xml",
                 toDevice(Array{source("index.xml")}));
}

TEST_F(MediaCopyFailure, OfAFolderFailsOnlyTheFilesThatGoThere) {
  sandbox.file("internal/Music", "a file in the way");
  EXPECT_TRUE(run(toDevice(Array{source("a.mp3"), source("b.jpg")})));
  EXPECT_EQ(ends(), (Lines{"0 failed 20000002 0: $/in/a.mp3 > nil (" + words(EEXIST) + ")",
                           "1 done 5: $/in/b.jpg > $/internal/DCIM/Camera/b.jpg"}));
  EXPECT_EQ(bytesOf(internal + "/Music"), "a file in the way");
  expectItemLine(kToDevice, "Create Folder for $/internal/Music is failed", toDevice(Array{source("a.mp3")}));
}

TEST_F(MediaCopyFailure, OfAFolderShowsTheFolderInTheProgress) {
  sandbox.file("internal/Music", "a file in the way");
  run(toDevice(Array{source("a.mp3")}));
  EXPECT_EQ(texts(notifications.named(kTransferProgressNotification), key::kFileName), Lines{"Music"});
}

TEST_F(MediaCopyFailure, OfAnUnknownVolumeFailsEveryFile) {
  EXPECT_TRUE(run(toDevice(Array{source("a.mp3"), source("b.mp3")}, 9)));
  EXPECT_EQ(ends(),
            (Lines{"0 failed 20000002 0: $/in/a.mp3 > nil", "1 failed 20000002 0: $/in/b.mp3 > nil"}));
  expectItemLine(kToDevice, "Create Folder for (null) is failed", toDevice(Array{source("a.mp3")}, 9));
}

TEST_F(MediaCopyFailure, OfTheFolderOnTheComputerFailsAllWithoutTouchingAFile) {
  sandbox.file("mac", "a file in the way");
  EXPECT_FALSE(run(toMac(Array{source("a.mp3"), source("b.mp3"), Value()})));
  EXPECT_EQ(ends(), (Lines{"0 failed 20000002 0: $/in/a.mp3 > nil (" + words(EEXIST) + ")",
                           "1 failed 20000002 0: $/in/b.mp3 > nil (" + words(EEXIST) + ")",
                           "2 failed 20000002 0: nil > nil (" + words(EEXIST) + ")"}));
  EXPECT_EQ(progress(), Lines{"4 3/3 3 100%"});
  EXPECT_EQ(texts(notifications.all(), key::kFileName), Lines{"mac"});
  EXPECT_EQ(files.count(FileCall::OpenForReading), 0u);
  EXPECT_EQ(bytesOf(sandbox.at("mac")), "a file in the way");
  expectItemLine(kToMac, "Create Folder for $/mac is failed", toMac(Array{source("a.mp3")}));
}

TEST_F(MediaCopyFailure, WithoutAFolderOnTheComputerFailsAll) {
  _serviceinfo made = toMac(Array{source("a.mp3")});
  made.destPath = std::nullopt;
  EXPECT_FALSE(run(made));
  EXPECT_EQ(ends(), Lines{"0 failed 20000002 0: $/in/a.mp3 > nil"});
  expectItemLine(kToMac, "Create Folder for (null) is failed", made);
}

TEST_F(MediaCopyFailure, OfANameThatIsNoFilesName) {
  std::vector<std::string> names = {"", ".", "..", "sub/", "sub/.", "sub/..", std::string("a\0b.mp3", 7)};
  Array contents;
  for (const std::string& name : names) contents.append(content(sandbox.file("in/a.mp3", "la"), name));
  EXPECT_FALSE(run(toMac(contents)));
  ASSERT_EQ(items.outcomes().size(), names.size());
  for (const ItemOutcome& outcome : items.outcomes()) {
    EXPECT_EQ(outcome.kind, ItemOutcome::Kind::Failed);
    EXPECT_EQ(outcome.errorNumber, kErrorBadCopyItem);
  }
  EXPECT_EQ(treeOf(sandbox.at("mac")).size(), 0u);
  expectItemLine(kToMac, "Consist of Target Path Name is failed",
                 toMac(Array{content(sandbox.at("in/a.mp3"), "..")}));
}

TEST_F(MediaCopyFailure, OfASourceNamesBothPaths) {
  _serviceinfo made = toMac(Array{content(sandbox.at("in/missing.mp3"), "a.mp3")});
  EXPECT_FALSE(run(made));
  EXPECT_EQ(ends(), Lines{"0 failed 20000008 0: $/in/missing.mp3 > $/mac/a.mp3 (" + words(ENOENT) + ")"});
  expectItemLine(kToMac, "Copy $/in/missing.mp3 to $/mac/a.mp3 failed.", made);
}

TEST_F(MediaCopyFailure, OfASourceThatIsNoReadableFileGoesOnWithTheNext) {
  ASSERT_EQ(::mkfifo(sandbox.at("pipe.mp3").c_str(), 0600), 0);
  const std::string secret = sandbox.file("in/secret.mp3", "la");
  ASSERT_EQ(::chmod(secret.c_str(), 0), 0);
  WithoutRootPowers asAPerson;
  EXPECT_TRUE(run(toDevice(Array{content(sandbox.at("pipe.mp3"), "pipe.mp3"),
                                 content(sandbox.folder("folder.mp3"), "folder.mp3"),
                                 content(secret, "secret.mp3"), source("good.mp3")})));
  EXPECT_EQ(
      ends(),
      (Lines{"0 failed 21000004 0: $/pipe.mp3 > $/internal/Music/pipe.mp3 (" + words(EOPNOTSUPP) + ")",
             "1 failed 21000004 0: $/folder.mp3 > $/internal/Music/folder.mp3 (" + words(EISDIR) + ")",
             "2 failed 21000004 0: $/in/secret.mp3 > $/internal/Music/secret.mp3 (" + words(EACCES) + ")",
             "3 done 8: $/in/good.mp3 > $/internal/Music/good.mp3"}));
}

TEST_F(MediaCopyFailure, OfOneFileDoesNotColourTheNext) {
  // A file that could not be made has no number of its own; it must not show the number of the file before.
  files.failAlways(FileCall::CreateFile, "b.mp3", EROFS);
  EXPECT_TRUE(run(toDevice(Array{content("/missing", "a.mp3"), source("b.mp3"), source("c.mp3")})));
  EXPECT_EQ(ends(), (Lines{"0 failed 20000008 0: /missing > $/internal/Music/a.mp3 (" + words(ENOENT) + ")",
                           "1 failed 20000005 0: $/in/b.mp3 > $/internal/Music/b.mp3 (" + words(EROFS) + ")",
                           "2 done 5: $/in/c.mp3 > $/internal/Music/c.mp3"}));
  EXPECT_EQ(results(), std::vector<uint32_t>{kItemTransferred});
}

TEST_F(MediaCopyFailure, WhenTheDiskFillsInMidCopyGoesOnWithTheNext) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Reserve && path.ends_with("large.mp3")) volume.fillUpTo(10 * 4096);
    return 0;
  });
  const std::string large = sandbox.patternFile("in/large.mp3", 600'000);
  EXPECT_TRUE(run(toDevice(Array{content(large, "large.mp3"), source("b.mp3", "")})));
  EXPECT_EQ(ends(), (Lines{"0 failed 20000005 40960: $/in/large.mp3 > $/internal/Music/large.mp3 (" +
                               words(ENOSPC) + ")",
                           "1 done 0: $/in/b.mp3 > $/internal/Music/b.mp3"}));
  EXPECT_TRUE(log.has("Reason :" + words(ENOSPC)));
}

TEST_F(MediaCopyFailure, OfAVolumeThatIsPulledFailsTheRest) {
  bool pulled = false;
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Write && path.ends_with("b.mp3")) pulled = true;
    return pulled && path.starts_with(internal) ? EIO : 0;
  });
  EXPECT_FALSE(run(toDevice(Array{source("a.mp3"), source("b.mp3"), source("c.mp3"), source("d.jpg")})));
  EXPECT_EQ(ends(), (Lines{"0 done 5: $/in/a.mp3 > $/internal/Music/a.mp3",
                           "1 failed 20000005 0: $/in/b.mp3 > $/internal/Music/b.mp3 (" + words(EIO) + ")",
                           "2 failed 20000002 0: $/in/c.mp3 > nil (" + words(EIO) + ")",
                           "3 failed 20000002 0: $/in/d.jpg > nil (" + words(EIO) + ")"}));
}

TEST_F(MediaCopyFailure, OfASourceVolumeThatVanishesFailsTheRest) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  const std::string first = sandbox.file("internal/a.mp3", "first");
  const std::string second = sandbox.file("internal/b.mp3", "second");
  notifications.onEach([&](const Notification&) { volume.vanish(); });
  EXPECT_FALSE(run(toMac(Array{content(first, "a.mp3"), content(second, "b.mp3")})));
  EXPECT_EQ(ends(), (Lines{"0 done 5: $/internal/a.mp3 > $/mac/a.mp3",
                           "1 failed 20000008 0: $/internal/b.mp3 > $/mac/b.mp3 (" + words(ENOENT) + ")"}));
  EXPECT_EQ(bytesOf(sandbox.at("mac/a.mp3")), "first");
}

}  // namespace
}  // namespace umsservice::testing
