#include <unistd.h>

#include <cerrno>

#include "ChunkedCopyRun.h"

namespace umsservice::testing {
namespace {

using ChunkedCopyFaults = ChunkedCopyTest;

constexpr uint64_t kSize = (1 << 20) + 5000;

TEST_F(ChunkedCopyFaults, KeepWhatWasReadBeforeAFailingReadWhicheverItIs) {
  std::string whole = bytesOf(sandbox.patternFile("source", kSize));
  int n = 1;
  for (;; ++n) {
    ASSERT_LT(n, 100);
    files.failNth(FileCall::Read, n, EIO);
    run(kSize);
    if (result.end == End::Complete) break;
    SCOPED_TRACE("read " + std::to_string(n));
    EXPECT_EQ(result.end, End::Failed);
    ASSERT_TRUE(result.error);
    EXPECT_EQ(result.error->systemNumber, EIO);
    EXPECT_EQ(result.error->action, FileError::Action::Reading);
    EXPECT_EQ(result.error->path, source);
    expectPrefix(static_cast<uint64_t>(n - 1) * kBlock, whole);
  }
  EXPECT_EQ(n, 6);
  expectPrefix(kSize, whole);
}

TEST_F(ChunkedCopyFaults, AccountForWholeUnitsOnlyWhenAWriteFailsPartWay) {
  std::string whole = bytesOf(sandbox.patternFile("source", kSize));
  for (uint64_t written : {0u, 1u, 4095u, 4096u, 4097u, 10000u}) {
    files.setWrittenBeforeFault(written);
    for (int n : {1, 2, 5}) {
      SCOPED_TRACE("write " + std::to_string(n) + " after " + std::to_string(written) + " bytes");
      files.failNth(FileCall::Write, n, EIO);
      run(kSize);
      EXPECT_EQ(result.end, End::Failed);
      ASSERT_TRUE(result.error);
      EXPECT_EQ(result.error->action, FileError::Action::Writing);
      EXPECT_EQ(result.error->path, copy);
      uint64_t before = static_cast<uint64_t>(n - 1) * kBlock;
      bool all = before + written >= kSize;
      expectPrefix(all ? kSize : before + written / kCopyUnit * kCopyUnit, whole);
      EXPECT_EQ(reports.empty() ? 0 : reports.back(), result.copied);
    }
  }
}

TEST_F(ChunkedCopyFaults, AskBeforeEachUnitThatGoesIntoTheCopyAndReportNoOther) {
  files.setWrittenBeforeFault(2 * kCopyUnit + 17);
  files.failNth(FileCall::Write, 1, ENOSPC);
  run(kSize);
  EXPECT_EQ(events, (std::vector<std::string>{"?", "4096", "?", "8192"}));
}

TEST_F(ChunkedCopyFaults, AreStopsWhenTheCallerStopsBeforeTheFailureIsReached) {
  std::string whole = bytesOf(sandbox.patternFile("source", kSize));
  files.setWrittenBeforeFault(10 * kCopyUnit);
  files.failNth(FileCall::Write, 1, EIO);
  stopAfterUnit = 3;
  run(kSize);
  EXPECT_EQ(result.end, End::Stopped);
  EXPECT_FALSE(result.error);
  expectPrefix(3 * kCopyUnit, whole);
}

TEST_F(ChunkedCopyFaults, IncludeASourceThatShrinksWhoseReadPartStays) {
  std::string whole = bytesOf(sandbox.patternFile("source", kSize));
  const uint64_t shorter = kBlock + 3 * kCopyUnit + 7;
  onReport = [&](uint64_t copied) {
    if (copied != kCopyUnit) return;
    ASSERT_EQ(truncate(source.c_str(), static_cast<off_t>(shorter)), 0);
  };
  run(kSize);
  EXPECT_EQ(result.end, End::Failed);
  ASSERT_TRUE(result.error);
  EXPECT_EQ(result.error->action, FileError::Action::Reading);
  EXPECT_FALSE(result.error->words().empty());
  expectPrefix(shorter, whole);
}

TEST_F(ChunkedCopyFaults, IncludeASourceThatWasEmptyAllAlong) {
  sandbox.file("source", "");
  run(kCopyUnit);
  EXPECT_EQ(result.end, End::Failed);
  expectPrefix(0, "");
  EXPECT_EQ(events, std::vector<std::string>{"?"});
  EXPECT_EQ(files.count(FileCall::Write), 0u);
}

TEST_F(ChunkedCopyFaults, DoNotHideAStopWhenTheCopyCannotBeCut) {
  files.failAlways(FileCall::Truncate, "copy", EIO);
  stopAfterUnit = 1;
  run(kSize);
  EXPECT_EQ(result.end, End::Stopped);
  EXPECT_EQ(result.copied, kCopyUnit);
  EXPECT_EQ(files.count(FileCall::Truncate), 1u);
}

TEST_F(ChunkedCopyFaults, OutOfAHandlerPassOnAndLeaveOnlyWhatWasAccountedFor) {
  for (bool inside : {false, true}) {
    insideSystem = inside;
    onReport = [](uint64_t copied) {
      if (copied == 3 * kCopyUnit) throw std::runtime_error("no more");
    };
    EXPECT_THROW(run(kSize), std::runtime_error);
    EXPECT_TRUE(bytesOf(copy) == bytesOf(source).substr(0, 3 * kCopyUnit)) << inside;
  }
}

TEST_F(ChunkedCopyFaults, OfAVolumeThatFillsLeaveWholeUnitsOnIt) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("card"), 4 << 20);
  volume.fillUpTo(100 * 4096);
  copy = sandbox.at("card/copy");
  std::string whole = bytesOf(sandbox.patternFile("source", kSize));
  run(kSize);
  EXPECT_EQ(result.end, End::Failed);
  ASSERT_TRUE(result.error);
  EXPECT_EQ(result.error->systemNumber, ENOSPC);
  EXPECT_EQ(result.copied % kCopyUnit, 0u);
  EXPECT_GT(result.copied, 0u);
  expectPrefix(result.copied, whole);
}

}  // namespace
}  // namespace umsservice::testing
