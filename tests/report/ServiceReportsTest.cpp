#include "LogExpectations.h"
#include "ServiceReports.h"
#include "TestDevice.h"
#include "TypedEntries.h"
#include "umsservice/RequestResult.h"
#include "umsservice/TransferProgress.h"

namespace umsservice::testing {
namespace {

constexpr auto kExMethod = "-[UMSService transferProgressInfoEx:maxTransferSize:currentTransferSize:]";

/// A context that travels with a direct transfer and is no notifier.
class OtherContext final : public TransferContext {};

class ServiceReports : public ::testing::Test {
 protected:
  TestSurroundings surroundings;
  ServiceContext context{surroundings.environment, "<service>", "location-1"};
  umsservice::ServiceReports reports{context};
  OVUmsDeviceNotifier notifier{
      surroundings.environment, "source", "destination", 7, 1, "Pocket One", 0, 3, 0};

  Dictionary only(const char* name) const {
    auto posted = surroundings.notifications.all();
    EXPECT_EQ(posted.size(), 1u);
    if (posted.empty()) return Dictionary();
    EXPECT_EQ(posted[0].name, name);
    return posted[0].userInfo;
  }
};

TEST_F(ServiceReports, ARequestsResultCarriesSigned32BitNumbersAndAnUnsigned64BitSize) {
  _serviceinfo request;
  request.serviceID = 0x80000007;
  request.filePath = "/card/old.txt";
  request.destPath = "/card/new.txt";
  reports.sendResultEvent(request, 1, 0x23000001, 516, 0xffffffffc0000000, 2);
  EXPECT_EQ(typed(only("QDORVEL_NOTI_UMS_RESULT")),
            (Lines{"DestPath: text /card/new.txt", "DiskSize: u64 18446744072635809792",
                   "ErrorNumber: i32 516", "EventType: i32 1", "ServiceID: i32 -2147483641",
                   "SourcePath: text /card/old.txt", "Status: i32 587202561", "VolumeIndex: i32 2"}));
}

TEST_F(ServiceReports, ARequestWithoutPathsHasNoPathKeys) {
  _serviceinfo request;
  request.serviceID = 7;
  reports.sendResultEvent(request, 1, 0, 0, 0, 0);
  EXPECT_EQ(typed(only("QDORVEL_NOTI_UMS_RESULT")),
            (Lines{"DiskSize: u64 0", "ErrorNumber: i32 0", "EventType: i32 1", "ServiceID: i32 7",
                   "Status: i32 0", "VolumeIndex: i32 0"}));
}

TEST_F(ServiceReports, ACancelledRequestIsProgressOfStatusThreeWithUnsigned32BitNumbers) {
  reports.sendCancelProgressEvent(0x80000007, "location-9", 2, 0, 0, 3);
  EXPECT_EQ(typed(only("QDORVEL_NOTI_TRANSFER_PROGRESS")),
            (Lines{"Current: u32 0", "LocationId: text location-9", "Max: u32 0", "MediaNotiType: u32 2",
                   "ServiceID: u32 2147483655", "TransferStatus: u32 3"}));
}

TEST_F(ServiceReports, AreReadBackAsStructs) {
  _serviceinfo request;
  request.serviceID = 0x80000007;
  request.filePath = "/card/old.txt";
  reports.sendResultEvent(request, 1, kErrorRenameFailed, 516, 0xffffffffc0000000, 2);
  reports.sendCancelProgressEvent(0x80000008, "location-9", 2, 0, 0, 3);
  auto posted = surroundings.notifications.all();
  ASSERT_EQ(posted.size(), 2u);
  auto result = RequestResult::read(posted[0]);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->serviceID, 0x80000007);
  EXPECT_EQ(result->status, kErrorRenameFailed);
  EXPECT_EQ(result->errorNumber, 516);
  EXPECT_EQ(result->diskSize, 0xffffffffc0000000);
  EXPECT_EQ(result->volumeIndex, 2u);
  EXPECT_EQ(result->sourcePath, "/card/old.txt");
  EXPECT_EQ(result->destPath, std::nullopt);
  auto progress = TransferProgress::read(posted[1]);
  ASSERT_TRUE(progress);
  EXPECT_EQ(progress->serviceID, 0x80000008);
  EXPECT_TRUE(progress->isEnd());
}

TEST_F(ServiceReports, ACancellationPassesOnTheGivenNumbers) {
  reports.sendCancelProgressEvent(7, std::nullopt, 4, 5, 6, 2);
  EXPECT_EQ(typed(only("QDORVEL_NOTI_TRANSFER_PROGRESS")),
            (Lines{"Current: u32 5", "LocationId: text location-1", "Max: u32 6", "MediaNotiType: u32 4",
                   "ServiceID: u32 7", "TransferStatus: u32 2"}));
}

TEST_F(ServiceReports, ACancellationWithoutAnyLocationHasNoLocationKey) {
  context.identity.setLocationID(std::nullopt);
  reports.sendCancelProgressEvent(7, std::nullopt, 1, 0, 0, 3);
  EXPECT_FALSE(only("QDORVEL_NOTI_TRANSFER_PROGRESS").contains("LocationId"));
}

TEST_F(ServiceReports, ProgressWithoutANotifierIsRefused) {
  OtherContext other;
  EXPECT_FALSE(reports.transferProgressInfo(nullptr, 100, 10));
  EXPECT_FALSE(reports.transferProgressInfo(&other, 100, 10));
  EXPECT_EQ(surroundings.log->lines().size(), 2u) << "the notifier's own two";
  expectLine(surroundings, 3, kExMethod, "Progress Object is nil",
             [this] { EXPECT_FALSE(reports.transferProgressInfoEx(nullptr, 100, 10)); });
  expectLine(surroundings, 3, kExMethod, "Progress Object is nil",
             [&] { EXPECT_FALSE(reports.transferProgressInfoEx(&other, 100, 10)); });
}

TEST_F(ServiceReports, ProgressAfterACancellationIsRefusedAndCountsNothing) {
  notifier.setCurrentTransferStatus(kTransferCancelled);
  EXPECT_FALSE(reports.transferProgressInfo(&notifier, 100, 10));
  expectLine(surroundings, 6, kExMethod, "Cancel Transfering",
             [this] { EXPECT_FALSE(reports.transferProgressInfoEx(&notifier, 100, 10)); });
  EXPECT_EQ(notifier.currentTransferSize(), 0u);
  EXPECT_EQ(notifier.prevSendBytes(), 0u);
  EXPECT_EQ(notifier.maxSendBytes(), 0u);
  EXPECT_TRUE(surroundings.notifications.all().empty());
}

TEST_F(ServiceReports, ProgressOfADirectTransferCountsBytesAndLeavesTheFileSizeAlone) {
  EXPECT_TRUE(reports.transferProgressInfo(&notifier, 100, 10));
  EXPECT_TRUE(reports.transferProgressInfo(&notifier, 100, 30));
  EXPECT_EQ(notifier.currentTransferSize(), 30u);
  EXPECT_EQ(notifier.prevSendBytes(), 30u);
  EXPECT_EQ(notifier.maxSendBytes(), 0u);
}

TEST_F(ServiceReports, ProgressWithFullSizesKeepsTheFileSizeUntilTheFileIsComplete) {
  constexpr uint64_t kHuge = 5ull << 32;
  EXPECT_TRUE(reports.transferProgressInfoEx(&notifier, kHuge, 4096));
  EXPECT_EQ(notifier.maxSendBytes(), kHuge);
  EXPECT_TRUE(reports.transferProgressInfoEx(&notifier, kHuge, kHuge));
  EXPECT_EQ(notifier.maxSendBytes(), 0u);
  EXPECT_EQ(notifier.currentTransferSize(), kHuge);
  EXPECT_EQ(notifier.prevSendBytes(), 0u);
}

TEST_F(ServiceReports, ProgressKeepsAFileSizeThatIsAlreadyThere) {
  notifier.setMaxSendBytes(500);
  EXPECT_TRUE(reports.transferProgressInfoEx(&notifier, 100, 10));
  EXPECT_EQ(notifier.maxSendBytes(), 500u);
  EXPECT_TRUE(reports.transferProgressInfoEx(&notifier, 100, 100));
  EXPECT_EQ(notifier.maxSendBytes(), 0u);
}

TEST_F(ServiceReports, ProgressOfANewFileBeginsAgain) {
  EXPECT_TRUE(reports.transferProgressInfoEx(&notifier, 100, 100));
  EXPECT_TRUE(reports.transferProgressInfoEx(&notifier, 50, 20));
  EXPECT_EQ(notifier.currentTransferSize(), 120u);
  EXPECT_EQ(notifier.maxSendBytes(), 50u);
}

}  // namespace
}  // namespace umsservice::testing
