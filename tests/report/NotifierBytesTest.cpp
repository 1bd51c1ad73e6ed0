#include "NotifierTest.h"

namespace umsservice::testing {
namespace {

using NotifierBytes = NotifierTest;

TEST_F(NotifierBytes, ALargeFileIsReportedAfterEachMillionBytesAndAtItsEnd) {
  constexpr uint64_t kSize = 10'000'000;
  constexpr uint64_t kStep = 64 * 1024;
  auto notifier = notifierOf(1, kSize);
  notifier->setMaxSendBytes(kSize);
  std::vector<uint32_t> expected;
  uint64_t last = 0;
  for (uint64_t sent = kStep;; sent += kStep) {
    sent = std::min(sent, kSize);
    notifier->addCurrentSendBytesEx(sent);
    if (sent - last > 1'000'000 || sent == kSize) {
      expected.push_back(static_cast<uint32_t>(sent * 100 / kSize));
      last = sent;
    }
    if (sent == kSize) break;
  }
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), expected);
  EXPECT_EQ(expected.size(), 10u);
  EXPECT_EQ(expected.back(), 100u);
}

TEST_F(NotifierBytes, AMillionBytesAreNotYetEnoughAndOneMoreIs) {
  auto notifier = notifierOf(1, 4'000'000);
  notifier->setMaxSendBytes(4'000'000);
  notifier->addCurrentSendBytesEx(1'000'000);
  EXPECT_EQ(progress().size(), 0u);
  EXPECT_EQ(notifier->prevTransferFileSize(), 0u);
  notifier->addCurrentSendBytesEx(1'000'001);
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{25}));
  EXPECT_EQ(notifier->prevTransferFileSize(), 1'000'001u);
}

TEST_F(NotifierBytes, EveryFileIsReportedAtItsEndHoweverSmall) {
  auto notifier = notifierOf(3, 1000);
  for (uint64_t size : {100u, 300u, 600u}) {
    notifier->setMaxSendBytes(size);
    notifier->addCurrentSendBytesEx(size / 2);
    notifier->addCurrentSendBytesEx(size);
    EXPECT_EQ(notifier->prevSendBytes(), 0u);
  }
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{10, 40, 100}));
}

TEST_F(NotifierBytes, CountsDifferencesOfTheRunningCount) {
  auto notifier = notifierOf(1, 1000);
  notifier->setMaxSendBytes(900);
  for (uint64_t sent : {100u, 250u, 250u, 400u}) notifier->addCurrentSendBytesEx(sent);
  EXPECT_EQ(notifier->currentTransferSize(), 400u);
  EXPECT_EQ(notifier->prevSendBytes(), 400u);
}

TEST_F(NotifierBytes, ASmallerRunningCountBeginsANewFile) {
  auto notifier = notifierOf(2, 1000);
  notifier->setMaxSendBytes(900);
  notifier->addCurrentSendBytesEx(500);
  notifier->addCurrentSendBytesEx(200);
  EXPECT_EQ(notifier->currentTransferSize(), 700u);
  EXPECT_EQ(notifier->prevSendBytes(), 200u);
}

TEST_F(NotifierBytes, WithoutATotalNothingIsPostedButBytesAreCounted) {
  auto notifier = notifierOf(1, 0);
  notifier->setMaxSendBytes(5'000'000);
  notifier->addCurrentSendBytesEx(2'000'000);
  notifier->addCurrentSendBytesEx(5'000'000);
  EXPECT_EQ(progress().size(), 0u);
  EXPECT_EQ(notifier->currentTransferSize(), 5'000'000u);
  EXPECT_EQ(notifier->prevTransferFileSize(), 0u);
  EXPECT_EQ(notifier->prevSendBytes(), 0u);
}

TEST_F(NotifierBytes, PercentsOfVeryLargeRequestsDoNotWrap) {
  constexpr uint64_t kTera = 1ull << 40;
  auto notifier = notifierOf(1, 64 * kTera);
  notifier->setMaxSendBytes(64 * kTera);
  notifier->addCurrentSendBytesEx(16 * kTera);
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{25}));
}

TEST_F(NotifierBytes, ThirtyTwoBitCountsWorkTheSame) {
  auto notifier = notifierOf(1, 1000);
  notifier->setMaxSendBytes(1000);
  notifier->addCurrentSendBytes(400);
  EXPECT_EQ(progress().size(), 0u);
  notifier->addCurrentSendBytes(1000);
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{100}));
  EXPECT_EQ(notifier->prevSendBytes(), 0u);
}

TEST_F(NotifierBytes, AThirtyTwoBitCountNeverCompletesAFileOfMoreThanFourGigabytes) {
  auto notifier = notifierOf(1, 1ull << 33);
  notifier->setMaxSendBytes((1ull << 32) + 1000);
  notifier->addCurrentSendBytes(1000);
  EXPECT_EQ(progress().size(), 0u);
  EXPECT_EQ(notifier->prevSendBytes(), 1000u);
}

}  // namespace
}  // namespace umsservice::testing
