#include <sys/stat.h>
#include <unistd.h>

#include "ScriptedTags.h"
#include "SyncTest.h"

namespace umsservice::testing {
namespace {

using MediaSync = SyncTest;

TEST_F(MediaSync, PutsEveryFileIntoTheDefaultFolderAndTellsEveryStep) {
  add("a.mp3", "la");
  add("b.mp3", "lala");
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/a.mp3", "Music/b.mp3"}));
  EXPECT_EQ(bytesOf(internal + "/Music/b.mp3"), "lala");
  EXPECT_EQ(treeOf(card), Lines{});
  EXPECT_EQ(
      told(),
      (Lines{"progress 1/2 fail 0 status 2 33% a.mp3", "result 0x10000001 volume 0 $/internal/Music/a.mp3",
             "progress 2/2 fail 0 status 2 100% b.mp3", "result 0x10000001 volume 0 $/internal/Music/b.mp3",
             "progress 2/2 fail 0 status 4 100% b.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 done 0x00000000 2 bytes to $/internal/Music/a.mp3",
                           "1 done 0x00000000 4 bytes to $/internal/Music/b.mp3"}));
}

TEST_F(MediaSync, SendsTheKeysThatAHostKnows) {
  add("a.mp3");
  ASSERT_TRUE(run());
  EXPECT_EQ(typed(notifications.named(kTransferProgressNotification).at(0).userInfo),
            (Lines{"Current: u32 1", "CurrentProgress: u32 100", "Fail: u32 0", "FileName: text a.mp3",
                   "LocationId: text location-1", "MN: text Pocket One", "Max: u32 1", "MaxProgress: u32 100",
                   "MediaNotiType: u32 1", "ServiceID: u32 7", "TransferStatus: u32 2"}));
  EXPECT_EQ(typed(notifications.named(kMediaResultNotification).at(0).userInfo),
            (Lines{"FilePath: text " + internal + "/Music/a.mp3", "LocationId: text location-1",
                   "MN: text Pocket One", "MediaNotiType: u32 1", "ResultStatus: u32 268435457",
                   "ServiceID: u32 7", "VolumeIndex: u32 0"}));
}

TEST_F(MediaSync, BeginsOnTheCardWhenAskedTo) {
  request.isStartInternal = 0;
  add("a.mp3");
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/a.mp3"}));
  EXPECT_EQ(told().at(1), "result 0x10000001 volume 1 $/card/Music/a.mp3");
}

TEST_F(MediaSync, UsesTheFolderOfTheRequestsMediaTypeForEveryFile) {
  request.mediaType = kMediaVideo;
  add("a.mp3");
  add("clip.mp4");
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(internal), (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/a.mp3", "DCIM/Camera/clip.mp4"}));
}

TEST_F(MediaSync, AsksTheProfileByTheIndexOfTheVolume) {
  surroundings.profile->musicInternal = "/Songs";
  surroundings.profile->musicExternal = "Card/Songs";
  add("a.mp3");
  EXPECT_TRUE(run());
  request.isStartInternal = 0;
  EXPECT_TRUE(run());
  EXPECT_TRUE(exists(internal + "/Songs/a.mp3"));
  EXPECT_TRUE(exists(card + "/Card/Songs/a.mp3"));
}

TEST_F(MediaSync, RemovesNothingFromTheDeviceAndLeavesCompanionsBehind) {
  request.mediaType = kMediaVideo;
  sandbox.file("internal/DCIM/Camera/old.mp4", "old");
  sandbox.file("in/clip.smi", "subtitles");
  add("clip.mp4");
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(internal),
            (Lines{"DCIM/", "DCIM/Camera/", "DCIM/Camera/clip.mp4", "DCIM/Camera/old.mp4"}));
}

TEST_F(MediaSync, CarriesThePlaylistNameOfNoRequest) {
  request.playlistName = "Evening";
  add("a.mp3");
  EXPECT_TRUE(run());
  EXPECT_FALSE(notifications.named(kMediaResultNotification).at(0).userInfo.contains(key::kPlaylistName));
}

TEST_F(MediaSync, ThroughTheQueueSendsNoRequestResult) {
  add("a.mp3");
  ASSERT_TRUE(service->syncContents(kRequest, request.contents, kMediaMusic, true));
  ASSERT_TRUE(items.waitFor(1));
  ASSERT_TRUE(log.waitFor("Try Wait"));
  service.reset();  // waits for the worker
  EXPECT_EQ(notifications.count(kUmsResultNotification), 0u);
  EXPECT_TRUE(exists(internal + "/Music/a.mp3"));
}

TEST_F(MediaSync, GivesEachFileItsOwnTagsAndNoOthers) {
  surroundings.environment.mediaInfoFactory = std::make_shared<ScriptedTags>([](const std::string& path) {
    return path.ends_with("a.mp3") ? MaybeDictionary(Dictionary{{"Title", "One"}}) : std::nullopt;
  });
  service = surroundings.makeService();
  service->addDiskInformation(disk(1, internal));
  add("a.mp3");
  add("b.mp3");
  EXPECT_TRUE(run());
  EXPECT_EQ(texts(notifications.named(kMediaResultNotification), "Title"), (Lines{"One", "(none)"}));
}

TEST_F(MediaSync, RefusesPodcastsWithoutAWordToTheHost) {
  request.mediaType = kMediaPodcast;
  add("a.mp3");
  expectLine(surroundings, 3, kSyncMethod, "Media Type is not podcast. Media Type = 4",
             [&] { EXPECT_FALSE(run()); });
  EXPECT_EQ(told(), Lines{});
  EXPECT_EQ(ends(), Lines{});
}

TEST_F(MediaSync, WithoutAVolumeOfTheKindCountsOneFailureForTheWholeList) {
  service = surroundings.makeService();
  service->addDiskInformation(disk(3, card));  // neither internal memory nor a card that is known as one
  add("a.mp3");
  add("b.mp3");
  add("c.mp3");
  expectLine(surroundings, 3, kSyncMethod, "Get Volume Path is failed.", [&] { EXPECT_FALSE(run()); });
  EXPECT_EQ(told(), Lines{});  // the second of three files is now in hand: nothing to tell
  EXPECT_EQ(items.outcomes().size(), 6u);
  EXPECT_EQ(items.outcomes().at(0).kind, ItemOutcome::Kind::Failed);
}

TEST_F(MediaSync, WithoutAVolumeTellsTheEndOfAListOfOne) {
  service = surroundings.makeService();
  add("a.mp3");
  EXPECT_FALSE(run());
  EXPECT_EQ(told(), Lines{"progress 1/1 fail 1 status 4 100% (none)"});
}

TEST_F(MediaSync, WithoutADefaultFolderCountsTheWholeListAsFailed) {
  request.mediaType = 5;
  add("a.mp3");
  add("b.mp3");
  EXPECT_FALSE(run());
  EXPECT_EQ(told(), Lines{"progress 2/2 fail 2 status 4 100% (none)"});
  EXPECT_EQ(ends(),
            (Lines{"0 failed 0x23000004 0 bytes to (none)", "1 failed 0x23000004 0 bytes to (none)"}));
  expectLine(surroundings, 3, kSyncMethod, "Consist of Media Default Path is failed.", [&] { run(); });
}

TEST_F(MediaSync, WhoseFolderCannotBeMadeCountsTheWholeListAsFailed) {
  sandbox.file("internal/Music", "a file of that name");
  add("a.mp3");
  add("b.mp3");
  EXPECT_FALSE(run());
  EXPECT_EQ(told(), Lines{"progress 2/2 fail 2 status 4 100% Music"});
  EXPECT_EQ(ends(),
            (Lines{"0 failed 0x20000002 0 bytes to (none)", "1 failed 0x20000002 0 bytes to (none)"}));
  EXPECT_EQ(items.outcomes().at(0).reason, "File exists");
  EXPECT_EQ(treeOf(card), Lines{});
  expectLine(surroundings, 1, kSyncMethod, "Create Folder for Music is failed", [&] { run(); });
}

TEST_F(MediaSync, CountsBadItemsAsFailedAndGoesOn) {
  const std::string good = sandbox.file("in/good.mp3", "la");
  request.contents = Array{Null{},
                           Dictionary{{key::kFileName, "x.mp3"}},
                           Dictionary{{key::kFilePath, good}},
                           Dictionary{{key::kFilePath, good}, {key::kFileName, 3}},
                           content(good, ""),
                           content(good, ".."),
                           content(good, "good.mp3")};
  EXPECT_TRUE(run());
  Lines expected;
  for (int i = 0; i < 6; ++i) expected.push_back(std::to_string(i) + " failed 0x23000004 0 bytes to (none)");
  expected.push_back("6 done 0x00000000 2 bytes to $/internal/Music/good.mp3");
  EXPECT_EQ(ends(), expected);
  EXPECT_EQ(treeOf(internal), (Lines{"Music/", "Music/good.mp3"}));
  // The failure of the file before the last already announces the end.
  EXPECT_EQ(told(),
            (Lines{"progress 7/7 fail 6 status 4 100% (none)", "progress 7/7 fail 6 status 4 20% good.mp3",
                   "result 0x10000001 volume 0 $/internal/Music/good.mp3",
                   "progress 7/7 fail 6 status 4 100% good.mp3"}));
}

TEST_F(MediaSync, SaysWhatIsWrongWithAnItem) {
  request.contents = Array{Null{}};
  expectLine(surroundings, 1, kSyncMethod, "Contents data is nil. Next data search", [&] { run(); });
  request.contents = Array{Dictionary{{key::kFileName, "x.mp3"}}};
  expectLine(surroundings, 1, kSyncMethod,
             "Get contents information is failed. filePath = (null), name = x.mp3", [&] { run(); });
  request.contents = Array{Dictionary{{key::kFilePath, "/x"}}};
  expectLine(surroundings, 1, kSyncMethod, "Get contents information is failed. filePath = /x, name = (null)",
             [&] { run(); });
  request.contents = Array{content("/x", ".")};
  expectLine(surroundings, 1, kSyncMethod, "Consist of Target Path Name is failed", [&] { run(); });
}

TEST_F(MediaSync, UsesTheNameUnchanged) {
  const std::string odd = " a:b*c?\xff.mp3";
  add(sandbox.file("in/a.mp3", "la"), odd, nullptr);
  EXPECT_TRUE(run());
  EXPECT_EQ(bytesOf(internal + "/Music/" + odd), "la");
}

TEST_F(MediaSync, TellsTheHostADoneFileAndTheObserverAFailedOneWhereNoFileCanBeMade) {
  files.failAlways(FileCall::CreateFile, "a.mp3", EROFS);
  add("a.mp3");
  EXPECT_FALSE(run());  // a file that cannot be made has no number, and 0 is good news for hosts
  EXPECT_EQ(told(), (Lines{"result 0x10000001 volume 1 $/internal/Music/a.mp3",
                           "progress 1/1 fail 0 status 4 100% a.mp3"}));
  EXPECT_EQ(ends(), Lines{"0 failed 0x20000005 0 bytes to $/internal/Music/a.mp3"});
  EXPECT_EQ(items.outcomes().at(0).reason, "Read-only file system");
}

TEST_F(MediaSync, FailsSourcesThatAreNoFilesAndNeverWaitsForThem) {
  add(sandbox.folder("in/folder.mp3"), "folder.mp3", nullptr);
  ASSERT_EQ(::mkfifo(sandbox.at("in/fifo.mp3").c_str(), 0666), 0);
  add(sandbox.at("in/fifo.mp3"), "fifo.mp3", nullptr);
  ASSERT_EQ(::symlink("loop.mp3", sandbox.at("in/loop.mp3").c_str()), 0);
  add(sandbox.at("in/loop.mp3"), "loop.mp3", nullptr);
  EXPECT_FALSE(run());
  EXPECT_EQ(ends(), (Lines{"0 failed 0x21000004 0 bytes to $/internal/Music/folder.mp3",
                           "1 failed 0x21000004 0 bytes to $/internal/Music/fifo.mp3",
                           "2 failed 0x20000008 0 bytes to $/internal/Music/loop.mp3"}));
}

TEST_F(MediaSync, OfAFileThatGrowsTakesTheSizeItBeganWith) {
  const std::string from = add(sandbox.patternFile("in/a.mp3", 10'000), "a.mp3", nullptr);
  const std::string before = bytesOf(from);
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::Read) sandbox.patternFile("in/a.mp3", 50'000);
    return 0;
  });
  EXPECT_TRUE(run());
  EXPECT_EQ(bytesOf(internal + "/Music/a.mp3"), before);
}

TEST_F(MediaSync, OfAFileThatShrinksFailsThatFileAndGoesOn) {
  const std::string from = add(sandbox.patternFile("in/a.mp3", 600'000), "a.mp3", nullptr);
  add("b.mp3");
  files.setFault([&, cut = false](FileCall call, const std::string&) mutable {
    if (call == FileCall::Read && !std::exchange(cut, true)) sandbox.patternFile("in/a.mp3", 300'000);
    return 0;
  });
  service->removeDiskInformation(service->diskInfoFromIndex(1));  // one volume: nothing to fall over to
  EXPECT_TRUE(run());
  EXPECT_EQ(ends().at(0), "0 failed 0x20000005 300000 bytes to $/internal/Music/a.mp3");
  EXPECT_EQ(ends().at(1), "1 done 0x00000000 5 bytes to $/internal/Music/b.mp3");
}

}  // namespace
}  // namespace umsservice::testing
