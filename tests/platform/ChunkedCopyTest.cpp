#include <cerrno>

#include "ChunkedCopyRun.h"

namespace umsservice::testing {
namespace {

using ChunkedCopies = ChunkedCopyTest;

uint64_t unitsOf(uint64_t size) {
  return (size + kCopyUnit - 1) / kCopyUnit;
}

class ChunkedCopiesOfEverySize : public ChunkedCopyTest,
                                 public ::testing::WithParamInterface<std::tuple<uint64_t, bool>> {};

TEST_P(ChunkedCopiesOfEverySize, AskBeforeAndReportAfterEachUnitAndCopyEveryByte) {
  const uint64_t size = std::get<0>(GetParam());
  insideSystem = std::get<1>(GetParam());
  run(size);
  EXPECT_EQ(result.end, End::Complete);
  EXPECT_FALSE(result.error);
  expectPrefix(size, bytesOf(source));
  std::vector<std::string> expected;
  for (uint64_t unit = 1; unit <= unitsOf(size); ++unit) {
    expected.push_back("?");
    expected.push_back(std::to_string(std::min(unit * kCopyUnit, size)));
  }
  EXPECT_EQ(events, expected);
}

INSTANTIATE_TEST_SUITE_P(Bytes, ChunkedCopiesOfEverySize,
                         ::testing::Combine(::testing::Values(0, 1, 4095, 4096, 4097, kBlock - 1, kBlock,
                                                              kBlock + 1, (1 << 20) + 3),
                                            ::testing::Bool()));

class ChunkedCopiesStopped : public ChunkedCopyTest,
                             public ::testing::WithParamInterface<std::tuple<size_t, bool>> {
 protected:
  static constexpr uint64_t kSize = (1 << 20) + 3;
};

TEST_P(ChunkedCopiesStopped, BeforeAUnitLeaveExactlyTheUnitsBeforeIt) {
  std::tie(stopBeforeUnit, insideSystem) = GetParam();
  run(kSize);
  EXPECT_EQ(result.end, End::Stopped);
  EXPECT_FALSE(result.error);
  expectPrefix((stopBeforeUnit - 1) * kCopyUnit, bytesOf(source));
  EXPECT_EQ(asks, stopBeforeUnit);
  EXPECT_EQ(reports.size(), stopBeforeUnit - 1);
}

TEST_P(ChunkedCopiesStopped, AfterAUnitLeaveExactlyTheUnitsUpToIt) {
  std::tie(stopAfterUnit, insideSystem) = GetParam();
  run(kSize);
  EXPECT_EQ(result.end, End::Stopped);
  EXPECT_FALSE(result.error);
  expectPrefix(std::min(stopAfterUnit * kCopyUnit, kSize), bytesOf(source));
  EXPECT_EQ(asks, stopAfterUnit);
  EXPECT_EQ(reports.size(), stopAfterUnit);
}

// 64 units are one block: the first and last units of blocks are where a stop meets the physical reads.
INSTANTIATE_TEST_SUITE_P(AtUnit, ChunkedCopiesStopped,
                         ::testing::Combine(::testing::Values(1, 2, 63, 64, 65, 66, 128, 129, 256, 257),
                                            ::testing::Bool()));

TEST_F(ChunkedCopies, OfAnEmptyFileNeitherAskNorReadNorWrite) {
  stopBeforeUnit = 1;
  run(0);
  EXPECT_EQ(result.end, End::Complete);
  EXPECT_TRUE(events.empty());
  EXPECT_EQ(files.count(FileCall::Read), 0u);
  EXPECT_EQ(files.count(FileCall::Write), 0u);
}

TEST_F(ChunkedCopies, StoppedBeforeTheFirstUnitReadNothing) {
  stopBeforeUnit = 1;
  run(kBlock);
  EXPECT_EQ(files.count(FileCall::Read), 0u);
  EXPECT_EQ(files.count(FileCall::Write), 0u);
}

TEST_F(ChunkedCopies, MoveManyUnitsWithEachSystemCall) {
  run(4 * kBlock);
  EXPECT_EQ(reports.size(), 256u);
  EXPECT_EQ(files.count(FileCall::Read), 4u);
  EXPECT_EQ(files.count(FileCall::Write), 4u);
  EXPECT_EQ(files.count(FileCall::Truncate), 0u);
}

TEST_F(ChunkedCopies, SetRoomAsideForALargeFileAndAskForMoreWhereItEnds) {
  const bool isGiven = (*posixFileSystem()->createFile(sandbox.at("probe")))->reserve(kBlock);
  const uint64_t size = kRoom + kRoom / 2;
  onReport = [&](uint64_t copied) {
    if (copied == kCopyUnit || copied == kRoom) EXPECT_EQ(files.count(FileCall::Reserve), 1u);
  };
  run(size);
  EXPECT_EQ(result.end, End::Complete);
  EXPECT_EQ(files.count(FileCall::Reserve), isGiven ? 2u : 1u);
  expectPrefix(size, bytesOf(source));
  EXPECT_LT(bytesOnDisk(copy), size + kBlock) << "no more than it needs";
}

TEST_F(ChunkedCopies, SetNoRoomAsideForAFileOfOneBlock) {
  run(kBlock);
  EXPECT_EQ(files.count(FileCall::Reserve), 0u);
}

TEST_F(ChunkedCopies, AskOnceForRoomThatTheSystemDoesNotGive) {
  files.failAlways(FileCall::Reserve, "copy", EOPNOTSUPP);
  run(2 * kRoom);
  EXPECT_EQ(result.end, End::Complete);
  EXPECT_EQ(files.count(FileCall::Reserve), 1u);
  expectPrefix(2 * kRoom, bytesOf(source));
}

TEST_F(ChunkedCopies, GiveTheRoomBackThatAStopLeavesOver) {
  for (bool inside : {false, true}) {
    insideSystem = inside;
    asks = 0;
    stopBeforeUnit = kBlock / kCopyUnit + 1;  // where nothing written is to be cut off
    run(kRoom);
    EXPECT_EQ(result.end, End::Stopped);
    expectPrefix(kBlock, bytesOf(source));
    EXPECT_LT(bytesOnDisk(copy), 2 * kBlock);
  }
}

TEST_F(ChunkedCopies, StopAtTheSizeTheyWereGivenWhenTheSourceGrows) {
  const uint64_t size = kBlock + 100;
  std::string whole = bytesOf(sandbox.patternFile("source", size));
  onReport = [&](uint64_t copied) {
    if (copied == kCopyUnit) sandbox.file("source", whole + std::string(kBlock, 'x'));
  };
  run(size);
  EXPECT_EQ(result.end, End::Complete);
  expectPrefix(size, whole);
}

TEST_F(ChunkedCopies, CopyOnlyTheBeginningOfALongerSource) {
  std::string whole = bytesOf(sandbox.patternFile("source", 3 * kCopyUnit));
  run(kCopyUnit + 1);
  EXPECT_EQ(result.end, End::Complete);
  expectPrefix(kCopyUnit + 1, whole);
}

TEST_F(ChunkedCopies, InsideTheSystemFailAtTheEndOfASourceThatHasShrunk) {
  std::string whole = bytesOf(sandbox.patternFile("source", 2 * kBlock + 5000));
  insideSystem = true;
  run(3 * kBlock);
  EXPECT_EQ(result.end, End::Failed);
  EXPECT_EQ(result.error.value().systemNumber, ENODATA);
  expectPrefix(whole.size(), whole);
}

/// A file that the system fills itself only up to a size that fits nothing.
class PartlyInside final : public FileHandle {
 public:
  PartlyInside(std::unique_ptr<FileHandle> real, size_t limit) : real_(std::move(real)), left_(limit) {}
  FileResult<size_t> read(void* buffer, size_t size) override { return real_->read(buffer, size); }
  WriteOutcome write(const void* buffer, size_t size) override { return real_->write(buffer, size); }
  size_t copyFrom(FileHandle& source, size_t size) override {
    size_t moved = real_->copyFrom(source, std::min({size, left_, size_t{3000}}));
    left_ -= moved;
    return moved;
  }
  FileStatus truncate(uint64_t size) override { return real_->truncate(size); }
  FileStatus sync() override { return real_->sync(); }
  FileStatus close() override { return real_->close(); }

 private:
  const std::unique_ptr<FileHandle> real_;
  size_t left_;
};

TEST_F(ChunkedCopies, ReadAndWriteWhatTheSystemDoesNotMoveItself) {
  const uint64_t size = 2 * kBlock + 77;
  for (size_t limit : {size_t{0}, size_t{1}, size_t{5000}, size_t{kBlock + 10'000}}) {
    std::string whole = bytesOf(sandbox.patternFile("source", size));
    auto from = posixFileSystem()->openForReading(source);
    PartlyInside to(std::move(*posixFileSystem()->createFile(copy)), limit);
    std::vector<uint64_t> counts;
    result = copyInChunks(
        **from, to, size, [] { return true; },
        [&](uint64_t copied) {
          counts.push_back(copied);
          return true;
        });
    EXPECT_EQ(result.end, End::Complete);
    expectPrefix(size, whole);
    EXPECT_EQ(counts.size(), unitsOf(size)) << limit;
  }
}

/// Gives out a file in pieces of a size that fits nothing, and may end early.
class Trickle final : public FileHandle {
 public:
  explicit Trickle(uint64_t size) : left_(size) {}
  FileResult<size_t> read(void* buffer, size_t size) override {
    size_t length = static_cast<size_t>(std::min<uint64_t>({size, 1000, left_}));
    std::fill_n(static_cast<char*>(buffer), length, 'x');
    left_ -= length;
    return length;
  }
  WriteOutcome write(const void*, size_t size) override { return {size, {}}; }
  FileStatus truncate(uint64_t) override { return Done{}; }
  FileStatus sync() override { return Done{}; }
  FileStatus close() override { return Done{}; }

 private:
  uint64_t left_;
};

TEST_F(ChunkedCopies, AccountInWholeUnitsWhenTheSystemReadsLess) {
  Trickle from(10000);
  auto to = files.createFile(copy);
  std::vector<uint64_t> counts;
  auto done = copyInChunks(
      from, **to, 10000, [] { return true; },
      [&](uint64_t copied) {
        counts.push_back(copied);
        return true;
      });
  EXPECT_EQ(done.end, End::Complete);
  EXPECT_EQ(counts, (std::vector<uint64_t>{4096, 8192, 10000}));
  EXPECT_EQ(bytesOf(copy), std::string(10000, 'x'));
}

/// An endless source and a sink that remember which memory they were given.
class Memory final : public FileHandle {
 public:
  FileResult<size_t> read(void* buffer, size_t size) override {
    see(buffer, size);
    return size;
  }
  WriteOutcome write(const void* buffer, size_t size) override {
    see(buffer, size);
    return {size, {}};
  }
  FileStatus truncate(uint64_t) override { return Done{}; }
  FileStatus sync() override { return Done{}; }
  FileStatus close() override { return Done{}; }
  /// Bytes from the lowest to the highest address seen.
  uintptr_t span() const { return high_ - low_; }

 private:
  void see(const void* buffer, size_t size) {
    auto address = reinterpret_cast<uintptr_t>(buffer);
    low_ = std::min(low_, address);
    high_ = std::max(high_, address + size);
  }
  uintptr_t low_ = UINTPTR_MAX;
  uintptr_t high_ = 0;
};

TEST_F(ChunkedCopies, NeedTheSameSmallMemoryForFilesOfAnySize) {
  Memory memory;
  const uint64_t size = (uint64_t{1} << 30) + 5;
  auto done = copyInChunks(
      memory, memory, size, [] { return true; }, [](uint64_t) { return true; });
  EXPECT_EQ(done.end, End::Complete);
  EXPECT_EQ(done.copied, size);
  EXPECT_LE(memory.span(), kBlock);
}

}  // namespace
}  // namespace umsservice::testing
