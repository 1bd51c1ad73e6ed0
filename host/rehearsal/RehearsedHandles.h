/// The open files of a dry run. See `RehearsedFiles`.
#pragma once

#include "rehearsal/RehearsedTree.h"

namespace umsctl {

/// Reads a real file, or a noted one whose bytes are known. What is only to be copied is not read.
class RehearsedReading final : public umsservice::FileHandle {
 public:
  RehearsedReading(std::unique_ptr<umsservice::FileHandle> real, uint64_t size)
      : real_(std::move(real)), size_(size) {}
  RehearsedReading(std::string bytes, uint64_t size) : bytes_(std::move(bytes)), size_(size) {}

  /// Goes on as if so many bytes had been read; gives how many there were.
  uint64_t skip(uint64_t bytes);

  umsservice::FileResult<size_t> read(void* buffer, size_t size) override;
  umsservice::WriteOutcome write(const void*, size_t) override;
  umsservice::FileStatus truncate(uint64_t) override;
  umsservice::FileStatus sync() override { return umsservice::Done{}; }
  umsservice::FileStatus close() override;

 private:
  const std::unique_ptr<umsservice::FileHandle> real_;  ///< null for a noted file
  const std::string bytes_;
  const uint64_t size_;
  uint64_t position_ = 0;
  uint64_t realPosition_ = 0;
};

/// Writes a noted file.
class RehearsedWriting final : public umsservice::FileHandle {
 public:
  RehearsedWriting(std::shared_ptr<RehearsedTree> tree, std::shared_ptr<RehearsedFile> file)
      : tree_(std::move(tree)), file_(std::move(file)) {}

  umsservice::FileResult<size_t> read(void*, size_t) override;
  umsservice::WriteOutcome write(const void* buffer, size_t size) override;
  size_t copyFrom(umsservice::FileHandle& source, size_t size) override;
  umsservice::FileStatus truncate(uint64_t size) override;
  umsservice::FileStatus sync() override { return umsservice::Done{}; }
  umsservice::FileStatus close() override { return umsservice::Done{}; }

 private:
  const std::shared_ptr<RehearsedTree> tree_;
  const std::shared_ptr<RehearsedFile> file_;
};

}  // namespace umsctl
