#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "FileContents.h"
#include "Sandbox.h"
#include "WrappedFileSystem.h"

namespace umsservice::testing {
namespace {

class FileContents : public ::testing::Test {
 protected:
  Sandbox sandbox;
  FaultyFileSystem files;
};

std::string text(const Data& bytes) {
  return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

TEST_F(FileContents, AreEveryByteOfAFileUpToTheLimit) {
  for (uint64_t size : {0u, 1u, 65535u, 65536u, 65537u, 200000u}) {
    std::string path = sandbox.patternFile("file", size);
    auto contents = readContents(files, path, size);
    ASSERT_TRUE(contents) << size;
    EXPECT_TRUE(text(*contents) == bytesOf(path)) << size;
  }
}

TEST_F(FileContents, AreRefusedWhenThereIsOneByteMoreThanTheLimit) {
  for (uint64_t limit : {0u, 1u, 65535u, 65536u, 100000u}) {
    auto contents = readContents(files, sandbox.patternFile("file", limit + 1), limit);
    ASSERT_FALSE(contents) << limit;
    EXPECT_EQ(contents.error().systemNumber, EFBIG);
    EXPECT_EQ(contents.error().path, sandbox.at("file"));
  }
}

TEST_F(FileContents, OfAHugeFileAreRefusedWithoutReadingItAll) {
  std::string path = sandbox.file("huge", "");
  ASSERT_EQ(truncate(path.c_str(), off_t{1} << 40), 0);
  ASSERT_FALSE(readContents(files, path, 1 << 20));
  EXPECT_LT(files.count(FileCall::Read), 100u);
}

TEST_F(FileContents, OfAFileThatGrowsWhileItIsReadStayWithinTheLimit) {
  std::string path = sandbox.patternFile("file", 1000);
  off_t size = 1000;
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::Read) size += 50000;
    return truncate(path.c_str(), size) == 0 ? 0 : EIO;
  });
  auto contents = readContents(files, path, 300000);
  ASSERT_FALSE(contents);
  EXPECT_EQ(contents.error().systemNumber, EFBIG);
}

TEST_F(FileContents, AreThoseFromAnOpenFilesPositionToItsEnd) {
  auto handle = files.openForReading(sandbox.file("file", "0123456789"));
  char four[4];
  ASSERT_EQ(*(*handle)->read(four, sizeof four), 4u);
  auto rest = readContents(**handle, "name", 6);
  ASSERT_TRUE(rest);
  EXPECT_EQ(text(*rest), "456789");
}

TEST_F(FileContents, ComeWithTheReasonWhenThereAreNone) {
  ASSERT_EQ(mkfifo(sandbox.at("pipe").c_str(), 0666), 0);
  EXPECT_EQ(readContents(files, sandbox.at("missing"), 10).error().systemNumber, ENOENT);
  EXPECT_EQ(readContents(files, sandbox.path(), 10).error().systemNumber, EISDIR);
  EXPECT_EQ(readContents(files, sandbox.at("pipe"), 10).error().systemNumber, EOPNOTSUPP);
  std::string path = sandbox.patternFile("file", 100000);
  files.failNth(FileCall::Read, 2, EIO);
  EXPECT_EQ(readContents(files, path, 1 << 20).error().systemNumber, EIO);
}

}  // namespace
}  // namespace umsservice::testing
