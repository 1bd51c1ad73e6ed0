/// An open descriptor of the running system. Used by one thread at a time.
#pragma once

#include "umsservice/FileSystem.h"

namespace umsservice {

class PosixFileHandle final : public FileHandle {
 public:
  /// Takes over an open descriptor.
  PosixFileHandle(int descriptor, std::string path);
  ~PosixFileHandle() override;
  PosixFileHandle(const PosixFileHandle&) = delete;
  PosixFileHandle& operator=(const PosixFileHandle&) = delete;

  FileResult<size_t> read(void* buffer, size_t size) override;
  WriteOutcome write(const void* buffer, size_t size) override;
  size_t copyFrom(FileHandle& source, size_t size) override;
  bool reserve(uint64_t size) override;
  FileStatus truncate(uint64_t size) override;
  FileStatus sync() override;
  FileStatus close() override;

 private:
  /// Bytes that may still be written; writing at the limit itself would raise SIGXFSZ in the host's process.
  uint64_t room();
  FileError failure(FileError::Action action, int number) const { return FileError{number, action, path_}; }

  int descriptor_;
  const std::string path_;
  std::optional<uint64_t> sizeLimit_;  ///< the process's limit on file sizes, in bytes; asked when needed
  uint64_t position_ = 0;
};

}  // namespace umsservice
