#include "NotifierTest.h"
#include "umsservice/MediaResult.h"
#include "umsservice/RequestResult.h"
#include "umsservice/TransferProgress.h"

namespace umsservice::testing {
namespace {

using TypedProgress = NotifierTest;
using TypedMediaResult = NotifierTest;

TEST_F(TypedProgress, HasWhatTheNotifierPosted) {
  auto notifier = notifierOf(3, 0);
  notifier->setFilePath("/card/Movies/harbour.mp4");
  notifier->setCurrentTransferStatus(kTransferRunning);
  notifier->addFailTransferFileCount(1);
  notifier->sendTransferEvent(100, 42);
  auto read = TransferProgress::read(progress().back());
  ASSERT_TRUE(read);
  EXPECT_EQ(read->serviceID, 7u);
  EXPECT_EQ(read->mediaType, kMediaVideo);
  EXPECT_EQ(read->current, 2u);
  EXPECT_EQ(read->max, 3u);
  EXPECT_EQ(read->fail, 1u);
  EXPECT_EQ(read->transferStatus, kTransferRunning);
  EXPECT_EQ(read->currentProgress, 42u);
  EXPECT_EQ(read->maxProgress, 100u);
  EXPECT_EQ(read->locationID, "source");
  EXPECT_EQ(read->fileName, "harbour.mp4");
  EXPECT_EQ(read->deviceName, "Pocket One");
  EXPECT_FALSE(read->isEnd());
}

TEST_F(TypedProgress, IsAtItsEndWhenTheLastFileIsCountedAndWhenCancelled) {
  auto notifier = notifierOf(1, 0);
  notifier->incCurrentTransferFileCount();
  EXPECT_EQ(TransferProgress::read(progress().back())->transferStatus, kTransferFinished);
  EXPECT_TRUE(TransferProgress::read(progress().back())->isEnd());
  notifier->cancelFileTransfer();
  EXPECT_EQ(TransferProgress::read(progress().back())->transferStatus, kTransferCancelled);
  EXPECT_TRUE(TransferProgress::read(progress().back())->isEnd());
}

TEST_F(TypedProgress, OfARequestThatNeverRanIsZeroWhereTheDictionaryIsSilent) {
  auto read = TransferProgress::read(Dictionary{{"ServiceID", 9u},
                                                {"MediaNotiType", 2u},
                                                {"Current", 0u},
                                                {"Max", 0u},
                                                {"TransferStatus", 3u},
                                                {"LocationId", "usb-1"}});
  EXPECT_EQ(read.serviceID, 9u);
  EXPECT_EQ(read.mediaType, kMediaImage);
  EXPECT_TRUE(read.isEnd());
  EXPECT_EQ(read.maxProgress, 0u);
  EXPECT_EQ(read.locationID, "usb-1");
  EXPECT_EQ(read.fileName, std::nullopt);
  EXPECT_EQ(read.deviceName, std::nullopt);
}

TEST_F(TypedProgress, TakesValuesOfOtherKindsAsAHostsOwnReadingDoes) {
  auto read = TransferProgress::read(Dictionary{{"ServiceID", "12"},
                                                {"Current", int64_t{1} << 32 | 5},
                                                {"Max", Array{}},
                                                {"Fail", Null{}},
                                                {"MediaNotiType", 77},
                                                {"FileName", 3},
                                                {"MN", Dictionary{}}});
  EXPECT_EQ(read.serviceID, 12u);
  EXPECT_EQ(read.current, 5u);
  EXPECT_EQ(read.max, 0u);
  EXPECT_EQ(read.fail, 0u);
  EXPECT_EQ(static_cast<int32_t>(read.mediaType), 77);
  EXPECT_EQ(read.fileName, std::nullopt);
  EXPECT_EQ(read.deviceName, std::nullopt);
}

TEST_F(TypedMediaResult, HasWhatTheNotifierPostedAndTheTagsApart) {
  auto notifier = notifierOf(1, 0);
  notifier->setMediaInfo(
      Dictionary{{"Title", "Morning"}, {"Duration", 61}, {"FilePath", "of the tag reader"}});
  notifier->setFilePath("/card/Music/a.mp3");
  notifier->setPlaylistName("Evening");
  notifier->setChannelName("Harbour Hour");
  notifier->setPodcastXmlData(Dictionary{{"Title", "Harbour Hour"}});
  notifier->setTransferResult(kErrorVolumeFull);
  notifier->sendResultEvent();
  auto read = MediaResult::read(results().back());
  ASSERT_TRUE(read);
  EXPECT_EQ(read->serviceID, 7u);
  EXPECT_EQ(read->mediaType, kMediaVideo);
  EXPECT_EQ(read->volumeIndex, 2u);
  EXPECT_EQ(read->resultStatus, kErrorVolumeFull);
  EXPECT_FALSE(read->isDone());
  EXPECT_EQ(read->locationID, "destination");
  EXPECT_EQ(read->filePath, "/card/Music/a.mp3");
  EXPECT_EQ(read->playlistName, "Evening");
  EXPECT_EQ(read->deviceName, "Pocket One");
  EXPECT_EQ(read->channelName, "Harbour Hour");
  ASSERT_TRUE(read->podcastXmlInfo);
  EXPECT_EQ(read->podcastXmlInfo->string("Title"), "Harbour Hour");
  EXPECT_EQ(typed(read->tags), (Lines{"Duration: i32 61", "Title: text Morning"}));
}

TEST_F(TypedMediaResult, IsDoneOnlyWithTheSuccessCode) {
  EXPECT_TRUE(MediaResult::read(Dictionary{{"ResultStatus", 0x10000001u}}).isDone());
  EXPECT_FALSE(MediaResult::read(Dictionary{{"ResultStatus", 0u}}).isDone());
  EXPECT_FALSE(MediaResult::read(Dictionary{}).isDone());
}

TEST_F(TypedMediaResult, IsZeroAndAbsentWhereKeysAreMissingOrOfAnotherKind) {
  Dictionary info{{"PodcastXmlInfo", "text"}, {"FilePath", 4}, {"ResultStatus", Dictionary{}}};
  auto read = MediaResult::read(info);
  EXPECT_EQ(read.resultStatus, kErrorNone);
  EXPECT_EQ(read.filePath, std::nullopt);
  EXPECT_EQ(read.podcastXmlInfo, std::nullopt);
  EXPECT_EQ(read.volumeIndex, 0u);
  EXPECT_EQ(read.tags.count(), 0u);
  read.tags.set("Title", "mine");
  EXPECT_FALSE(info.contains("Title"));
}

TEST(TypedRequestResult, ReadsSignedNumbersTheBytesAndThePaths) {
  auto read = RequestResult::read(Dictionary{{"ServiceID", -1},
                                             {"EventType", 1},
                                             {"Status", static_cast<int32_t>(kErrorRenameFailed)},
                                             {"ErrorNumber", 516},
                                             {"DiskSize", uint64_t{1} << 40},
                                             {"VolumeIndex", 0},
                                             {"SourcePath", "/card/a"},
                                             {"DestPath", "/card/b"}});
  EXPECT_EQ(read.serviceID, 0xffffffffu);
  EXPECT_EQ(read.eventType, 1);
  EXPECT_EQ(read.status, kErrorRenameFailed);
  EXPECT_FALSE(read.isDone());
  EXPECT_EQ(read.errorNumber, 516);
  EXPECT_EQ(read.diskSize, uint64_t{1} << 40);
  EXPECT_EQ(read.volumeIndex, 0u);
  EXPECT_EQ(read.sourcePath, "/card/a");
  EXPECT_EQ(read.destPath, "/card/b");
}

TEST(TypedRequestResult, IsZeroAndAbsentWhereKeysAreMissingOrOfAnotherKind) {
  auto read = RequestResult::read(Dictionary{{"DiskSize", Array{}}, {"SourcePath", 1}});
  EXPECT_TRUE(read.isDone());
  EXPECT_EQ(read.serviceID, 0u);
  EXPECT_EQ(read.eventType, 0);
  EXPECT_EQ(read.diskSize, 0u);
  EXPECT_EQ(read.sourcePath, std::nullopt);
  EXPECT_EQ(read.destPath, std::nullopt);
}

TEST(TypedNotifications, AreReadFromTheirOwnNotificationOnly) {
  Notification notification{kTransferProgressNotification, {{"ServiceID", 5}}};
  EXPECT_EQ(TransferProgress::read(notification)->serviceID, 5u);
  EXPECT_FALSE(MediaResult::read(notification));
  EXPECT_FALSE(RequestResult::read(notification));
  notification.name = kUmsResultNotification;
  EXPECT_FALSE(TransferProgress::read(notification));
  EXPECT_EQ(RequestResult::read(notification)->serviceID, 5u);
  notification.name = kMediaResultNotification;
  EXPECT_EQ(MediaResult::read(notification)->serviceID, 5u);
  EXPECT_FALSE(RequestResult::read(notification));
}

}  // namespace
}  // namespace umsservice::testing
