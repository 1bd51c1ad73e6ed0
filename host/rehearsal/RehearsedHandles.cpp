#include "rehearsal/RehearsedHandles.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace umsctl {

using namespace umsservice;

namespace {

/// More than any index or list has; media is not worth its memory.
constexpr uint64_t kLongestKept = uint64_t{32} << 20;

}  // namespace

uint64_t RehearsedReading::skip(uint64_t bytes) {
  const uint64_t skipped = std::min(bytes, size_ - std::min(size_, position_));
  position_ += skipped;
  return skipped;
}

FileResult<size_t> RehearsedReading::read(void* buffer, size_t size) {
  if (!real_) {
    const size_t start = std::min(bytes_.size(), static_cast<size_t>(position_));
    const size_t length = std::min(size, bytes_.size() - start);
    std::memcpy(buffer, bytes_.data() + start, length);
    position_ += length;
    return length;
  }
  char passed[4096];
  while (realPosition_ < position_) {
    auto length = real_->read(passed, std::min<uint64_t>(sizeof passed, position_ - realPosition_));
    if (!length || *length == 0) return length;
    realPosition_ += *length;
  }
  auto length = real_->read(buffer, size);
  if (length) position_ = realPosition_ += *length;
  return length;
}

WriteOutcome RehearsedReading::write(const void*, size_t) {
  return {0, FileError{EBADF, FileError::Action::Writing, {}}};
}

FileStatus RehearsedReading::truncate(uint64_t) {
  return FileError{EBADF, FileError::Action::Writing, {}};
}

FileStatus RehearsedReading::close() {
  return real_ ? real_->close() : FileStatus(Done{});
}

FileResult<size_t> RehearsedWriting::read(void*, size_t) {
  return FileError{EBADF, FileError::Action::Reading, file_->path};
}

WriteOutcome RehearsedWriting::write(const void* buffer, size_t size) {
  std::lock_guard lock(tree_->mutex);
  WriteOutcome outcome;
  outcome.written = static_cast<size_t>(std::min<uint64_t>(size, tree_->roomFor(*file_)));
  const uint64_t grown = file_->attributes.size + outcome.written;
  if (grown > kLongestKept) file_->bytes.reset();
  if (file_->bytes) file_->bytes->append(static_cast<const char*>(buffer), outcome.written);
  tree_->resize(*file_, grown);
  if (outcome.written < size) outcome.error = FileError{ENOSPC, FileError::Action::Writing, file_->path};
  return outcome;
}

size_t RehearsedWriting::copyFrom(FileHandle& source, size_t size) {
  auto* reading = dynamic_cast<RehearsedReading*>(&source);
  if (!reading) return 0;
  std::lock_guard lock(tree_->mutex);
  const uint64_t copied = reading->skip(std::min<uint64_t>(size, tree_->roomFor(*file_)));
  if (copied > 0) file_->bytes.reset();
  tree_->resize(*file_, file_->attributes.size + copied);
  return static_cast<size_t>(copied);
}

FileStatus RehearsedWriting::truncate(uint64_t size) {
  std::lock_guard lock(tree_->mutex);
  tree_->resize(*file_, size);
  return Done{};
}

}  // namespace umsctl
