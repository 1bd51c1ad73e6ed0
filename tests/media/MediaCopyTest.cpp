#include "MediaRunTest.h"

namespace umsservice::testing {
namespace {

using MediaCopy = MediaRunTest;

TEST_F(MediaCopy, PutsEachFileIntoTheFolderOfItsOwnTypeAndCountsAnUnknownOneAsFailed) {
  std::string song = sandbox.file("in/song.mp3", "la la la");
  std::string photo = sandbox.file("in/photo.JPG", "smile");
  std::string notes = sandbox.file("in/notes.txt", "milk");
  Array contents{content(song, "song.mp3"), content(photo, "photo.JPG"), content(notes, "notes.txt")};
  ASSERT_TRUE(service->copyContentsMacToDevice(7, contents, kMediaMusic, 0));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));

  EXPECT_EQ(bytesOf(internal + "/Music/song.mp3"), "la la la");
  EXPECT_EQ(bytesOf(internal + "/DCIM/Camera/photo.JPG"), "smile");
  EXPECT_EQ(treeOf(internal), (std::vector<std::string>{"DCIM/", "DCIM/Camera/", "DCIM/Camera/photo.JPG",
                                                        "Music/", "Music/song.mp3"}));
  auto outcomes = items.outcomes();
  ASSERT_EQ(outcomes.size(), 3u);
  EXPECT_EQ(outcomes[2].kind, ItemOutcome::Kind::Failed);
  EXPECT_EQ(outcomes[2].errorNumber, kErrorUnknownMediaType);
  auto results = notifications.named(kMediaResultNotification);
  EXPECT_EQ(numbers(results, key::kResultStatus),
            (std::vector<uint32_t>{kItemTransferred, kItemTransferred}));
}

TEST_F(MediaCopy, ToADeviceTellsTheHostEveryStepInOrder) {
  Array contents{source("song.mp3", "la la la"), source("photo.JPG", "smile")};
  ASSERT_TRUE(service->copyContentsMacToDevice(7, contents, kMediaMusic, 0));
  ASSERT_TRUE(notifications.waitFor(kUmsResultNotification));
  EXPECT_EQ(
      told(),
      (Lines{"QDORVEL_NOTI_TRANSFER_PROGRESS: Current=1u CurrentProgress=61u Fail=0u FileName=\"song.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=2u MaxProgress=100u MediaNotiType=1u "
             "ServiceID=7u TransferStatus=2u",
             "QDORVEL_NOTI_MEDIA_TRASFER_RESULT: FilePath=\"$/internal/Music/song.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" MediaNotiType=1u ResultStatus=268435457u "
             "ServiceID=7u VolumeIndex=0u",
             "QDORVEL_NOTI_TRANSFER_PROGRESS: Current=2u CurrentProgress=100u Fail=0u FileName=\"photo.JPG\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=2u MaxProgress=100u MediaNotiType=2u "
             "ServiceID=7u TransferStatus=2u",
             "QDORVEL_NOTI_MEDIA_TRASFER_RESULT: FilePath=\"$/internal/DCIM/Camera/photo.JPG\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" MediaNotiType=2u ResultStatus=268435457u "
             "ServiceID=7u VolumeIndex=0u",
             "QDORVEL_NOTI_TRANSFER_PROGRESS: Current=2u CurrentProgress=100u Fail=0u FileName=\"photo.JPG\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=2u MaxProgress=100u MediaNotiType=2u "
             "ServiceID=7u TransferStatus=4u",
             "QDORVEL_NOTI_UMS_RESULT: DestPath=\"$/internal/Music\" DiskSize=0U ErrorNumber=0i EventType=1i "
             "ServiceID=7i Status=0i VolumeIndex=0i"}));
  EXPECT_EQ(ends(), (Lines{"0 done 8: $/in/song.mp3 > $/internal/Music/song.mp3",
                           "1 done 5: $/in/photo.JPG > $/internal/DCIM/Camera/photo.JPG"}));
}

TEST_F(MediaCopy, ToTheComputerTellsTheHostEveryStepInOrder) {
  Array contents{source("song.mp3", "la la la"), source("notes.txt", "milk")};
  ASSERT_TRUE(service->copyContentsDeviceToMac(7, contents, sandbox.at("mac/new"), kMediaMusic, "Evening"));
  ASSERT_TRUE(items.waitFor(2));
  EXPECT_EQ(
      told(),
      (Lines{"QDORVEL_NOTI_TRANSFER_PROGRESS: Current=1u CurrentProgress=66u Fail=0u FileName=\"song.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=2u MaxProgress=100u MediaNotiType=1u "
             "ServiceID=7u TransferStatus=2u",
             "QDORVEL_NOTI_MEDIA_TRASFER_RESULT: FilePath=\"$/mac/new/song.mp3\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" MediaNotiType=1u PlaylistName=\"Evening\" "
             "ResultStatus=268435457u ServiceID=7u VolumeIndex=0u",
             "QDORVEL_NOTI_TRANSFER_PROGRESS: Current=2u CurrentProgress=100u Fail=0u FileName=\"notes.txt\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=2u MaxProgress=100u MediaNotiType=1u "
             "ServiceID=7u TransferStatus=2u",
             "QDORVEL_NOTI_MEDIA_TRASFER_RESULT: FilePath=\"$/mac/new/notes.txt\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" MediaNotiType=1u PlaylistName=\"Evening\" "
             "ResultStatus=268435457u ServiceID=7u VolumeIndex=0u",
             "QDORVEL_NOTI_TRANSFER_PROGRESS: Current=2u CurrentProgress=100u Fail=0u FileName=\"notes.txt\" "
             "LocationId=\"location-1\" MN=\"Pocket One\" Max=2u MaxProgress=100u MediaNotiType=1u "
             "ServiceID=7u TransferStatus=4u"}));
  EXPECT_EQ(bytesOf(sandbox.at("mac/new/notes.txt")), "milk");
}

TEST_F(MediaCopy, ToADeviceChoosesTheFolderByTheIndexOfTheVolume) {
  // Index 1 asks the profile for the internal folder, although it is the card.
  surroundings.profile->musicInternal = "/Inside";
  surroundings.profile->musicExternal = "/Outside";
  EXPECT_TRUE(run(toDevice(Array{source("a.mp3")}, 1)));
  EXPECT_TRUE(run(toDevice(Array{source("b.mp3")}, 0)));
  EXPECT_EQ(bytesOf(card + "/Inside/a.mp3"), "a.mp3");
  EXPECT_EQ(bytesOf(internal + "/Outside/b.mp3"), "b.mp3");
  EXPECT_EQ(numbers(notifications.named(kMediaResultNotification), key::kVolumeIndex),
            (std::vector<uint32_t>{1, 0}));
}

TEST_F(MediaCopy, UsesTheNameThatIsGivenUnchanged) {
  const std::string odd = " a:b*c?\"<>|\xc3\xa9\xff.mp3";
  EXPECT_TRUE(run(toDevice(Array{content(sandbox.file("in/x.mp3", "la"), odd)})));
  EXPECT_EQ(bytesOf(internal + "/Music/" + odd), "la");
}

TEST_F(MediaCopy, ClassifiesByTheNewNameAndNotByTheSource) {
  EXPECT_TRUE(run(toDevice(Array{content(sandbox.file("in/track", "la"), "track.MP3")})));
  EXPECT_EQ(bytesOf(internal + "/Music/track.MP3"), "la");
}

TEST_F(MediaCopy, OfNothingIsASuccessToADeviceAndNoneToTheComputer) {
  EXPECT_TRUE(run(toDevice(Array())));
  EXPECT_FALSE(run(toMac(Array())));
  EXPECT_EQ(items.outcomes().size(), 0u);
}

TEST_F(MediaCopy, ToTheComputerSendsNoRequestResult) {
  EXPECT_TRUE(run(toMac(Array{source("a.mp3")})));
  EXPECT_EQ(notifications.count(kUmsResultNotification), 0u);
}

TEST_F(MediaCopy, AnswersWithTheLastFileStep) {
  EXPECT_TRUE(run(toDevice(Array{content("/missing", "a.mp3"), source("b.mp3")})));
  EXPECT_FALSE(run(toDevice(Array{source("c.mp3"), content("/missing", "d.mp3")})));
  // An item that is refused before any step on a file changes nothing.
  EXPECT_TRUE(run(toDevice(Array{source("e.mp3"), source("f.txt")})));
  EXPECT_EQ(numbers(notifications.named(kUmsResultNotification), key::kStatus),
            (std::vector<uint32_t>{0, kErrorOperationFailed, 0}));
}

TEST_F(MediaCopy, TakesAPlaylistNameToADeviceToo) {
  _serviceinfo made = toDevice(Array{source("a.mp3")});
  made.playlistName = "Evening";
  EXPECT_TRUE(run(made));
  EXPECT_EQ(texts(notifications.named(kMediaResultNotification), key::kPlaylistName), Lines{"Evening"});
}

TEST_F(MediaCopy, LeavesOutWhatTheServiceDoesNotKnow) {
  service = std::make_shared<UMSService>(surroundings.environment);
  service->addDiskInformation(disk(1, internal));
  EXPECT_TRUE(run(toDevice(Array{source("a.mp3")})));
  for (const Notification& notification : notifications.all()) {
    EXPECT_FALSE(notification.userInfo.contains(key::kLocationId));
    EXPECT_FALSE(notification.userInfo.contains(key::kDeviceName));
    EXPECT_FALSE(notification.userInfo.contains(key::kPlaylistName));
  }
}

TEST_F(MediaCopy, OfAnEmptyFileIsDone) {
  EXPECT_TRUE(run(toDevice(Array{source("empty.mp3", "")})));
  EXPECT_EQ(bytesOf(internal + "/Music/empty.mp3"), "");
  EXPECT_EQ(ends(), Lines{"0 done 0: $/in/empty.mp3 > $/internal/Music/empty.mp3"});
  EXPECT_EQ(progress(), Lines{"4 1/1 0 100%"});
}

TEST_F(MediaCopy, RefusesPodcastsOnTheWayToTheComputer) {
  _serviceinfo made = toMac(Array{source("a.mp3")});
  made.mediaType = kMediaPodcast;
  expectLine(surroundings, 3, "-[UMSService doCopyMediaContents:]",
             "Media Type is not podcast. Media Type = 4",
             [&] { EXPECT_FALSE(service->doCopyMediaContents(made)); });
  EXPECT_FALSE(exists(sandbox.at("mac")));
  EXPECT_EQ(notifications.all().size(), 0u);
}

TEST_F(MediaCopy, SaysWhatItIsAboutToCopyToADevice) {
  expectLine(surroundings, 6, "-[UMSService doCopyMediaContentsForAnyMediaType:]",
             "Contents File Path = $/in/a.mp3, Name = a.mp3", [&] { run(toDevice(Array{source("a.mp3")})); });
}

TEST_F(MediaCopy, CarriesTheSubtitlesOfAVideoRequest) {
  sandbox.file("in/trip.smi", "spoken");
  _serviceinfo made = toDevice(Array{source("trip.mp4")});
  made.mediaType = kMediaVideo;
  EXPECT_TRUE(run(made));
  EXPECT_EQ(bytesOf(internal + "/DCIM/Camera/trip.smi"), "spoken");
  made = toMac(Array{source("trip.mp4")});
  made.mediaType = kMediaVideo;
  EXPECT_TRUE(run(made));
  EXPECT_EQ(bytesOf(sandbox.at("mac/trip.smi")), "spoken");
  EXPECT_EQ(items.outcomes().size(), 2u);
}

TEST_F(MediaCopy, CarriesNoSubtitlesInARequestOfAnotherType) {
  sandbox.file("in/trip.smi", "spoken");
  EXPECT_TRUE(run(toDevice(Array{source("trip.mp4")})));
  EXPECT_EQ(treeOf(internal + "/DCIM/Camera"), Lines{"trip.mp4"});
}

TEST_F(MediaCopy, CountsAVideoAsDoneWhenOnlyItsSubtitlesFail) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 1 << 20);
  volume.fillUpTo(2 * 4096);
  sandbox.patternFile("in/trip.smi", 4097);
  _serviceinfo made = toDevice(Array{source("trip.mp4", std::string(4096, 'v'))});
  made.mediaType = kMediaVideo;
  EXPECT_TRUE(run(made));
  EXPECT_EQ(results(), std::vector<uint32_t>{kItemTransferred});
  EXPECT_FALSE(exists(internal + "/DCIM/Camera/trip.smi"));
}

}  // namespace
}  // namespace umsservice::testing
