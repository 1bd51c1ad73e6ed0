#include <sys/stat.h>
#include <unistd.h>

#include <new>

#include "TransferTest.h"

namespace umsservice::testing {
namespace {

/// What only one of the two directions does, and whole files as data.
class DirectTransferWrite : public TransferTest {
 protected:
  /// A file with holes, one unit and some bytes longer than 32 bits can say.
  Dictionary hugeFile() const {
    const std::string path = sandbox.file("in/huge.mp4", "");
    EXPECT_EQ(::truncate(path.c_str(), static_cast<off_t>(kHuge)), 0);
    return Dictionary{{key::kFilePath, path}};
  }

  static constexpr uint64_t kHuge = (uint64_t{1} << 32) + 5000;
};

TEST_F(DirectTransferWrite, FitsWhenTheStatedSizeIsExactlyTheFreeSpace) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(card, 1 << 20);
  Dictionary from = file("a.mp3", "la");
  from.set(key::kFileSize, volume.freeBytes());
  EXPECT_TRUE(write(from, card + "/a.mp3"));
  from.set(key::kFileSize, volume.freeBytes() + 1);
  EXPECT_FALSE(write(from, card + "/b.mp3"));
  EXPECT_EQ(error, kErrorWriteVolumeFull);
  EXPECT_FALSE(exists(card + "/b.mp3"));
}

TEST_F(DirectTransferWrite, LooksAtTheSpaceBeforeAnythingElse) {
  sandbox.file("out/a.mp3", "old");
  Dictionary from{{key::kFilePath, sandbox.at("missing")}, {key::kFileSize, uint64_t{1} << 60}};
  EXPECT_FALSE(write(from, sandbox.at("out/a.mp3"), true));
  EXPECT_EQ(error, kErrorWriteVolumeFull);
  EXPECT_EQ(bytesOf(sandbox.at("out/a.mp3")), "old");
}

TEST_F(DirectTransferWrite, TakesTheStatedSizeFromTextToo) {
  Dictionary from = file("a.mp3", "la");
  from.set(key::kFileSize, "999999999999999999");
  EXPECT_FALSE(write(from, sandbox.at("out/a.mp3")));
  EXPECT_EQ(error, kErrorWriteVolumeFull);
}

TEST_F(DirectTransferWrite, OfAFileFromTheDeviceIsNotHeldAgainstTheSpace) {
  Dictionary from = file("a.mp3", "la");
  from.set(key::kFileSize, uint64_t{1} << 60);
  EXPECT_TRUE(read(from, sandbox.at("out/a.mp3")));
}

TEST_F(DirectTransferWrite, CutsSizesTo32BitsInItsReports) {
  callback->onReport = [] { return false; };
  EXPECT_FALSE(write(hugeFile(), sandbox.at("out/huge.mp4")));
  EXPECT_FALSE(read(hugeFile(), sandbox.at("out/huge-2.mp4")));
  ASSERT_EQ(callback->reports.size(), 2u);
  for (const auto& report : callback->reports) {
    EXPECT_EQ(report.max, 5000u);
    EXPECT_EQ(report.current, 4096u);
  }
}

TEST_F(DirectTransferWrite, IntoTheDefaultFolderReportsFullSizes) {
  if (service->volumeFreeSpace(internal + "/x") < kHuge) GTEST_SKIP() << "too little space for the test";
  callback->onReport = [] { return false; };
  EXPECT_FALSE(syncWrite(hugeFile()));
  ASSERT_EQ(callback->reports.size(), 1u);
  EXPECT_TRUE(callback->reports[0].full);
  EXPECT_EQ(callback->reports[0].max, kHuge);
}

TEST_F(DirectTransferWrite, ReportsToANotifierThroughAService) {
  OVUmsDeviceNotifier notifier(surroundings.environment, "location-1", "location-1", 7, kMediaMusic,
                               "Pocket One", 0, 1, 2);
  EXPECT_TRUE(service->writeFileToDevice(file("a.mp3", "la"), sandbox.at("out/a.mp3"), 0, 0, false, service,
                                         &notifier, &error));
  EXPECT_EQ(notifier.currentTransferSize(), 2u);
  notifier.cancelFileTransfer();
  EXPECT_FALSE(service->writeFileToDevice(file("b.mp3", "la"), sandbox.at("out/b.mp3"), 0, 0, false, service,
                                          &notifier, &error));
  EXPECT_EQ(error, kErrorStopped);
}

// -------------------------------------------------------------------- whole files as data

constexpr auto kWriteData = "-[UMSService writeFileData:data:]";
constexpr auto kReadData = "-[UMSService readFileData:]";

std::shared_ptr<const Data> dataOf(const std::string& text) {
  auto* bytes = reinterpret_cast<const std::byte*>(text.data());
  return std::make_shared<const Data>(bytes, bytes + text.size());
}

class FileData : public TransferTest {};

TEST_F(FileData, IsWrittenAndReadWhole) {
  const std::string path = sandbox.at("blob");
  for (const std::string& text : {std::string("la"), std::string(), std::string(300'000, 'x')}) {
    EXPECT_TRUE(service->writeFileData(path, dataOf(text)));
    EXPECT_EQ(bytesOf(path), text);
    auto read = service->readFileData(path);
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, *dataOf(text));
  }
}

TEST_F(FileData, ReplacesALongerFile) {
  const std::string path = sandbox.file("blob", "something longer");
  EXPECT_TRUE(service->writeFileData(path, dataOf("la")));
  EXPECT_EQ(bytesOf(path), "la");
}

TEST_F(FileData, OfNothingMakesAnEmptyFile) {
  EXPECT_TRUE(service->writeFileData(sandbox.at("blob"), nullptr));
  EXPECT_TRUE(exists(sandbox.at("blob")));
}

TEST_F(FileData, NeedsAPath) {
  EXPECT_FALSE(service->writeFileData(std::nullopt, dataOf("la")));
  EXPECT_FALSE(service->readFileData(std::nullopt));
  EXPECT_EQ(linesOf(surroundings, kWriteData), Lines{});
  EXPECT_EQ(linesOf(surroundings, kReadData), Lines{});
}

TEST_F(FileData, ThatCannotBeMadeSaysSo) {
  expectLine(surroundings, 3, kWriteData, "createFileAtPath Fail!",
             [&] { EXPECT_FALSE(service->writeFileData(sandbox.at("no/folder"), dataOf("la"))); });
  EXPECT_FALSE(service->writeFileData(sandbox.folder("folder"), dataOf("la")));
}

TEST_F(FileData, NeverOpensAFifo) {
  const std::string fifo = sandbox.at("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0666), 0);
  expectLine(surroundings, 3, kWriteData, "Open file Handle failed! source file handle = (null)",
             [&] { EXPECT_FALSE(service->writeFileData(fifo, dataOf("la"))); });
  expectLine(surroundings, 3, kReadData, "Open file Handle failed! source file handle = (null)",
             [&] { EXPECT_FALSE(service->readFileData(fifo)); });
}

TEST_F(FileData, ThatCannotBeOpenedSaysSo) {
  expectLine(surroundings, 3, kReadData, "Open file Handle failed! source file handle = (null)",
             [&] { EXPECT_FALSE(service->readFileData(sandbox.at("missing"))); });
}

TEST_F(FileData, ThatNoMemoryHoldsIsTheExceptionBeforeItsFirstByteIsRead) {
  const std::string path = sandbox.file("holes", "");
  bool isMade = false;
  for (int bits = 62; !isMade && bits >= 43; --bits) isMade = ::truncate(path.c_str(), off_t{1} << bits) == 0;
  if (!isMade) GTEST_SKIP() << "this file system keeps no file larger than any memory";
  expectLine(surroundings, 3, kReadData, "Name : NSFileHandleOperationException",
             [&] { EXPECT_FALSE(service->readFileData(path)); });
  expectLine(surroundings, 3, kReadData, "Reason :File too large",
             [&] { EXPECT_FALSE(service->readFileData(path)); });
  EXPECT_EQ(files.count(FileCall::Read), 0u);
}

TEST_F(FileData, ThatMemoryRunsOutForIsTheException) {
  const std::string path = sandbox.file("blob", "la");
  files.setFault([](FileCall call, const std::string&) -> int {
    if (call == FileCall::Read) throw std::bad_alloc();
    return 0;
  });
  EXPECT_FALSE(service->readFileData(path));
  EXPECT_EQ(linesOf(surroundings, kReadData),
            (Lines{"Name : NSFileHandleOperationException", "Reason :Cannot allocate memory"}));
}

TEST_F(FileData, NamesTheExceptionAndItsReason) {
  const std::string path = sandbox.file("blob", "la");
  files.failAlways(FileCall::Write, "blob", ENOSPC);
  auto writing = [&] { EXPECT_FALSE(service->writeFileData(path, dataOf("la"))); };
  expectLine(surroundings, 3, kWriteData, "Name : NSFileHandleOperationException", writing);
  expectLine(surroundings, 3, kWriteData, "Reason :No space left on device", writing);
  files.failAlways(FileCall::Read, "blob", EIO);
  auto reading = [&] { EXPECT_FALSE(service->readFileData(path)); };
  expectLine(surroundings, 3, kReadData, "Name : NSFileHandleOperationException", reading);
  expectLine(surroundings, 3, kReadData, "Reason :Input/output error", reading);
  files.failAlways(FileCall::Close, "blob", EIO);
  EXPECT_FALSE(service->writeFileData(path, dataOf("la")));
}

}  // namespace
}  // namespace umsservice::testing
