#include "NotifierTest.h"

namespace umsservice::testing {
namespace {

using NotifierCounting = NotifierTest;

TEST_F(NotifierCounting, BeginsWithTheFirstFileAndAGoodResult) {
  auto notifier = notifierOf(3, 900);
  EXPECT_EQ(notifier->srcLocationID(), "source");
  EXPECT_EQ(notifier->destLocationID(), "destination");
  EXPECT_EQ(notifier->serviceID(), 7u);
  EXPECT_EQ(notifier->mediaType(), uint32_t{kMediaVideo});
  EXPECT_EQ(notifier->deviceName(), "Pocket One");
  EXPECT_EQ(notifier->storageIndex(), 2u);
  EXPECT_EQ(notifier->maxTransferFileCount(), 3u);
  EXPECT_EQ(notifier->maxTransferSize(), 900u);
  EXPECT_EQ(notifier->currentTransferFileCount(), 1u);
  EXPECT_EQ(notifier->failTransferFileCount(), 0u);
  EXPECT_EQ(notifier->transferResult(), 0x10000001u);
  EXPECT_EQ(notifier->currentTransferStatus(), 0);
}

TEST_F(NotifierCounting, BeginsEmptyWithoutInformation) {
  OVUmsDeviceNotifier notifier(surroundings.environment);
  EXPECT_EQ(notifier.currentTransferFileCount(), 1u);
  EXPECT_EQ(notifier.transferResult(), 0x10000001u);
  for (const MaybeString& text : {notifier.srcLocationID(), notifier.destLocationID(), notifier.filePath(),
                                  notifier.deviceName(), notifier.playlistName(), notifier.channelName()})
    EXPECT_FALSE(text.has_value());
  EXPECT_FALSE(notifier.mediaInfo().has_value());
  for (uint64_t number :
       {uint64_t{notifier.serviceID()}, uint64_t{notifier.storageIndex()}, uint64_t{notifier.mediaType()},
        uint64_t{notifier.maxTransferFileCount()}, uint64_t{notifier.failTransferFileCount()},
        notifier.currentTransferSize(), notifier.maxTransferSize(), notifier.maxSendBytes(),
        notifier.prevTransferFileSize(), notifier.prevSendBytes()})
    EXPECT_EQ(number, 0u);
  EXPECT_EQ(notifier.currentTransferStatus(), 0);
}

TEST_F(NotifierCounting, ThreeGoodFilesAreCountedAndTheThirdEndsTheRequest) {
  auto notifier = notifierOf(3, 0);
  for (uint32_t file = 1; file <= 3; ++file) {
    EXPECT_EQ(notifier->currentTransferFileCount(), file);
    notifier->sendTransferEvent(100, 50);
    notifier->incCurrentTransferFileCount();
  }
  EXPECT_EQ(told(), (Lines{"1/3 failed 0 status 0 at 50 of 100", "result 0x10000001",
                           "2/3 failed 0 status 0 at 50 of 100", "result 0x10000001",
                           "3/3 failed 0 status 0 at 50 of 100", "result 0x10000001",
                           "3/3 failed 0 status 4 at 100 of 100"}));
  EXPECT_EQ(notifier->currentTransferStatus(), 4);
}

TEST_F(NotifierCounting, AFileBeyondTheLastHasItsResultAndNothingElse) {
  auto notifier = notifierOf(3, 0);
  notifier->setCurrentTransferFileCount(4);
  notifier->incCurrentTransferFileCount();
  EXPECT_EQ(told(), (Lines{"result 0x10000001"}));
  EXPECT_EQ(notifier->currentTransferFileCount(), 4u);
}

TEST_F(NotifierCounting, AFailedFileHasNoResultAndTheSecondToLastEndsTheRequestAlready) {
  auto notifier = notifierOf(3, 0);
  notifier->incFailTransferFileCount();
  EXPECT_EQ(told(), Lines());
  EXPECT_EQ(notifier->currentTransferFileCount(), 2u);
  notifier->incFailTransferFileCount();
  EXPECT_EQ(told(), (Lines{"3/3 failed 2 status 4 at 100 of 100"}));
  notifier->incFailTransferFileCount();
  EXPECT_EQ(told(), (Lines{"3/3 failed 2 status 4 at 100 of 100", "3/3 failed 3 status 4 at 100 of 100"}));
}

TEST_F(NotifierCounting, TheOnlyFileFailing) {
  auto notifier = notifierOf(1, 0);
  notifier->incFailTransferFileCount();
  EXPECT_EQ(told(), (Lines{"1/1 failed 1 status 4 at 100 of 100"}));
}

TEST_F(NotifierCounting, ManyFilesDoneAtOnceStopAtTheMaximum) {
  auto notifier = notifierOf(5, 0);
  notifier->addCurrentTransferFileCount(2);
  EXPECT_EQ(told(), Lines());
  EXPECT_EQ(notifier->currentTransferFileCount(), 3u);
  notifier->addCurrentTransferFileCount(9);
  EXPECT_EQ(told(), (Lines{"5/5 failed 0 status 4 at 100 of 100"}));
  notifier->addCurrentTransferFileCount(0xffffffff);
  EXPECT_EQ(notifier->currentTransferFileCount(), 5u);
  EXPECT_EQ(told().size(), 2u);
}

TEST_F(NotifierCounting, ManyFilesFailingAtOnceEndTheRequestOnlyWhenTheyAreExactlyTheRest) {
  auto rest = notifierOf(5, 0);
  rest->addFailTransferFileCount(5);
  EXPECT_EQ(told(), (Lines{"5/5 failed 5 status 4 at 100 of 100"}));
  notifications.clear();
  for (uint32_t count : {1u, 4u, 6u}) {
    auto notifier = notifierOf(5, 0);
    notifier->addFailTransferFileCount(count);
    EXPECT_EQ(notifier->failTransferFileCount(), count);
    EXPECT_EQ(notifier->currentTransferFileCount(), 1 + count);
    EXPECT_EQ(notifier->currentTransferStatus(), 0);
  }
  EXPECT_EQ(told(), Lines());
}

TEST_F(NotifierCounting, FailuresOfTheRestAfterGoodFiles) {
  auto notifier = notifierOf(10, 0);
  notifier->incCurrentTransferFileCount();
  notifier->incCurrentTransferFileCount();
  notifications.clear();
  notifier->addFailTransferFileCount(8);
  EXPECT_EQ(told(), (Lines{"10/10 failed 8 status 4 at 100 of 100"}));
}

TEST_F(NotifierCounting, CancellingPostsStatusThreeAtHundredPercent) {
  auto notifier = notifierOf(3, 0);
  notifier->setFilePath("/card/Music/a.mp3");
  notifier->cancelFileTransfer();
  EXPECT_EQ(told(), (Lines{"1/3 failed 0 status 3 at 100 of 100"}));
  EXPECT_EQ(notifier->currentTransferStatus(), 3);
}

TEST_F(NotifierCounting, DeletingPostsTheShareOfFiles) {
  auto notifier = notifierOf(3, 0);
  for (uint32_t current : {1u, 2u, 3u}) {
    notifier->setCurrentTransferFileCount(current);
    notifier->deleteFileTransfer();
  }
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{33, 66, 100}));
}

TEST_F(NotifierCounting, DeletingOfVeryManyFilesKeepsThePercent) {
  auto notifier = notifierOf(100'000'000, 0);
  notifier->setCurrentTransferFileCount(50'000'000);
  notifier->deleteFileTransfer();
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{50}));
}

TEST_F(NotifierCounting, DeletingWithoutFilesPostsNothing) {
  notifierOf(0, 0)->deleteFileTransfer();
  EXPECT_EQ(told(), Lines());
}

TEST_F(NotifierCounting, TracesItsMakingAndItsCancellationAtLevelSeven) {
  const char* init =
      "-[OVUmsDeviceNotifier initWithInformations:destLocationID:serviceID:mediaType:deviceName:storageIndex:"
      "maxTransferFileCount:maxTransferSize:]";
  for (const char* message : {"ENTER", "EXIT"}) {
    expectLine(surroundings, 7, init, message, [this] { notifierOf(1, 0); });
    expectLine(surroundings, 7, "-[OVUmsDeviceNotifier init]", message,
               [this] { OVUmsDeviceNotifier notifier(surroundings.environment); });
    expectLine(surroundings, 7, "-[OVUmsDeviceNotifier cancelFileTransfer]", message,
               [this] { notifierOf(1, 0)->cancelFileTransfer(); });
  }
}

TEST_F(NotifierCounting, WritesItsLinesInItsOwnFile) {
  notifierOf(1, 0);
  EXPECT_TRUE(surroundings.log->lines().at(0).starts_with(
      "[OVUmsDeviceNotifier.cpp:-[OVUmsDeviceNotifier initWithInformations:"));
}

}  // namespace
}  // namespace umsservice::testing
