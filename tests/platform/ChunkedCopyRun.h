/// One chunked copy of a pattern file in a sandbox, with everything that was asked and reported.
#pragma once

#include "ChunkedCopy.h"
#include "Sandbox.h"
#include "WrappedFileSystem.h"

namespace umsservice::testing {

using End = ChunkedCopyResult::End;

/// What the engine reads and writes at once.
inline constexpr uint64_t kBlock = 256 * 1024;
/// The room that the engine sets aside at a time.
inline constexpr uint64_t kRoom = 16 * 1024 * 1024;

class ChunkedCopyTest : public ::testing::Test {
 protected:
  /// Copies "source" (made with `size` bytes when it is not there) to "copy" and keeps the result.
  void run(uint64_t size) {
    if (!exists(source)) sandbox.patternFile("source", size);
    events.clear();
    reports.clear();
    FileSystem& used = insideSystem ? *posixFileSystem() : static_cast<FileSystem&>(files);
    auto from = used.openForReading(source);
    auto to = used.createFile(copy);
    ASSERT_TRUE(from);
    ASSERT_TRUE(to);
    result = copyInChunks(
        **from, **to, size,
        [this] {
          events.push_back("?");
          return ++asks != stopBeforeUnit;
        },
        [this](uint64_t copied) {
          events.push_back(std::to_string(copied));
          reports.push_back(copied);
          if (onReport) onReport(copied);
          return reports.size() != stopAfterUnit;
        });
  }

  /// The copy is exactly the first `size` bytes of the source as it was.
  void expectPrefix(uint64_t size, const std::string& whole) {
    EXPECT_EQ(result.copied, size);
    std::string bytes = bytesOf(copy);
    EXPECT_EQ(bytes.size(), size);
    EXPECT_TRUE(bytes == whole.substr(0, size)) << "the copy is no prefix of the source";
  }

  Sandbox sandbox;
  FaultyFileSystem files;
  std::string source = sandbox.at("source");
  std::string copy = sandbox.at("copy");

  bool insideSystem = false;  ///< whether the system may move the bytes itself
  size_t stopBeforeUnit = 0;  ///< 1-based; 0 never stops
  size_t stopAfterUnit = 0;
  std::function<void(uint64_t)> onReport;

  size_t asks = 0;
  std::vector<std::string> events;
  std::vector<uint64_t> reports;
  ChunkedCopyResult result;
};

}  // namespace umsservice::testing
