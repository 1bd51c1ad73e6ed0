#include "PosixFileHandle.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

#include "CopyRange.h"
#include "ReserveRange.h"
#include "Retry.h"

namespace umsservice {
namespace {

uint64_t processFileSizeLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
    return std::numeric_limits<uint64_t>::max();
  return limit.rlim_cur;
}

}  // namespace

PosixFileHandle::PosixFileHandle(int descriptor, std::string path)
    : descriptor_(descriptor), path_(std::move(path)) {}

PosixFileHandle::~PosixFileHandle() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

FileResult<size_t> PosixFileHandle::read(void* buffer, size_t size) {
  ssize_t length = retried([&] { return ::read(descriptor_, buffer, size); });
  if (length < 0) return failure(FileError::Action::Reading, errno);
  return static_cast<size_t>(length);
}

uint64_t PosixFileHandle::room() {
  if (!sizeLimit_) sizeLimit_ = processFileSizeLimit();
  return *sizeLimit_ - std::min(*sizeLimit_, position_);
}

WriteOutcome PosixFileHandle::write(const void* buffer, size_t size) {
  WriteOutcome outcome;
  while (outcome.written < size) {
    size_t part = static_cast<size_t>(std::min<uint64_t>(size - outcome.written, room()));
    if (part == 0) {
      outcome.error = failure(FileError::Action::Writing, EFBIG);
      return outcome;
    }
    const char* from = static_cast<const char*>(buffer) + outcome.written;
    ssize_t length = retried([&] { return ::write(descriptor_, from, part); });
    if (length <= 0) {
      outcome.error = failure(FileError::Action::Writing, length < 0 ? errno : EIO);
      return outcome;
    }
    outcome.written += static_cast<size_t>(length);
    position_ += static_cast<uint64_t>(length);
  }
  return outcome;
}

size_t PosixFileHandle::copyFrom(FileHandle& source, size_t size) {
  auto* file = dynamic_cast<PosixFileHandle*>(&source);
  auto part = static_cast<size_t>(std::min<uint64_t>(size, room()));
  if (!file || part == 0) return 0;
  ssize_t length = retried([&] { return copyRange(file->descriptor_, descriptor_, part); });
  if (length <= 0) return 0;
  position_ += static_cast<uint64_t>(length);
  return static_cast<size_t>(length);
}

bool PosixFileHandle::reserve(uint64_t size) {
  return size <= room() && retried([&] { return reserveRange(descriptor_, position_, size); }) == 0;
}

FileStatus PosixFileHandle::truncate(uint64_t size) {
  if (!sizeLimit_) sizeLimit_ = processFileSizeLimit();
  if (size > *sizeLimit_) return failure(FileError::Action::Writing, EFBIG);
  if (retried([&] { return ::ftruncate(descriptor_, static_cast<off_t>(size)); }) != 0) {
    return failure(FileError::Action::Writing, errno);
  }
  position_ = std::min(position_, size);
  if (::lseek(descriptor_, static_cast<off_t>(position_), SEEK_SET) < 0)
    return failure(FileError::Action::Writing, errno);
  return Done{};
}

FileStatus PosixFileHandle::sync() {
  if (retried([&] { return ::fsync(descriptor_); }) != 0) return failure(FileError::Action::Writing, errno);
  return Done{};
}

FileStatus PosixFileHandle::close() {
  if (descriptor_ < 0) return Done{};
  int descriptor = std::exchange(descriptor_, -1);
  // The descriptor is gone even when a signal interrupts the call, so it is never closed twice.
  if (::close(descriptor) != 0 && errno != EINTR) return failure(FileError::Action::Writing, errno);
  return Done{};
}

}  // namespace umsservice
