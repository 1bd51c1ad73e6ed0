#include "ChunkedCopy.h"

#include <algorithm>
#include <cerrno>

namespace umsservice {
namespace {

/// Large enough that system calls do not show beside the copying itself.
constexpr size_t kPhysicalBlock = 256 * 1024;

/// Room that is set aside at a time: much, so that a large file is in few pieces on the device, and little
/// enough that nobody who cancels waits for it.
constexpr uint64_t kReserved = 16 * 1024 * 1024;

struct Block {
  size_t length = 0;
  std::optional<FileError> error;  ///< why it is shorter than asked for
};

/// Fills the buffer even when the system hands out the file in smaller pieces.
Block readBlock(FileHandle& source, std::byte* buffer, size_t size) {
  Block block;
  while (block.length < size) {
    auto length = source.read(buffer + block.length, size - block.length);
    if (!length) {
      block.error = length.error();
      return block;
    }
    if (*length == 0) {
      block.error = FileError{ENODATA, FileError::Action::Reading, {}};
      return block;
    }
    block.length += *length;
  }
  return block;
}

class Walk {
 public:
  Walk(uint64_t size, const std::function<bool()>& mayGoOn, const std::function<bool(uint64_t)>& report)
      : size_(size), mayGoOn_(mayGoOn), report_(report) {}

  ChunkedCopyResult run(FileHandle& source, FileHandle& destination) {
    try {
      while (result_.end == ChunkedCopyResult::End::Complete && result_.copied < size_ && asked()) {
        reserveRoom(destination);
        copyBlock(source, destination, blockAt(result_.copied));
      }
    } catch (...) {  // out of a handler of the host's
      cutToAccounted(destination);
      throw;
    }
    cutToAccounted(destination);
    return result_;
  }

 private:
  void cutToAccounted(FileHandle& destination) const {
    if (std::max(written_, reserved_) > result_.copied) (void)destination.truncate(result_.copied);
  }

  /// A file of one block is in one piece anyway. What could not be set aside as a whole may be so in part.
  void reserveRoom(FileHandle& destination) {
    if (!systemReserves_ || size_ <= kPhysicalBlock || written_ < reserved_) return;
    const uint64_t wanted = std::min(size_ - written_, kReserved);
    systemReserves_ = destination.reserve(wanted);
    reserved_ = written_ + wanted;
  }

  size_t blockAt(uint64_t position) const {
    return static_cast<size_t>(std::min<uint64_t>(size_ - position, kPhysicalBlock));
  }

  void copyBlock(FileHandle& source, FileHandle& destination, size_t wanted) {
    const size_t moved = moveInside(source, destination, wanted);
    Block block;
    WriteOutcome outcome;
    if (moved < wanted) {
      if (!buffer_) buffer_ = std::make_unique_for_overwrite<std::byte[]>(blockAt(0));
      block = readBlock(source, buffer_.get(), wanted - moved);
      if (block.length > 0) outcome = destination.write(buffer_.get(), block.length);
    }
    written_ += moved + outcome.written;
    account(moved + block.length, moved + outcome.written);
    if (result_.end != ChunkedCopyResult::End::Complete) return;
    if (outcome.error) {
      fail(*outcome.error);
    } else if (block.error) {
      fail(*block.error);
    }
  }

  /// Lets the system move the bytes itself, which is half the work where it can. What it does not move,
  /// because the source ends or for any failure, is left to reading and writing, which tell why.
  size_t moveInside(FileHandle& source, FileHandle& destination, size_t wanted) {
    size_t moved = 0;
    while (systemMoves_ && moved < wanted) {
      size_t length = destination.copyFrom(source, wanted - moved);
      systemMoves_ = length > 0;
      moved += length;
    }
    return moved;
  }

  /// Walks a written block unit by unit. A unit that was only partly written is not accounted for.
  void account(size_t length, size_t written) {
    size_t walked = 0;
    while (walked < length) {
      size_t unit = std::min(kCopyUnit, length - walked);
      if (walked + unit > written) return;
      if (walked > 0 && !asked()) return;
      walked += unit;
      result_.copied += unit;
      if (!report_(result_.copied)) {
        result_.end = ChunkedCopyResult::End::Stopped;
        return;
      }
    }
  }

  bool asked() {
    if (mayGoOn_()) return true;
    result_.end = ChunkedCopyResult::End::Stopped;
    return false;
  }

  void fail(const FileError& error) {
    result_.end = ChunkedCopyResult::End::Failed;
    result_.error = error;
  }

  const uint64_t size_;
  const std::function<bool()>& mayGoOn_;
  const std::function<bool(uint64_t)>& report_;
  uint64_t written_ = 0;
  uint64_t reserved_ = 0;    ///< the end of the room that was asked for
  bool systemMoves_ = true;  ///< until it does not
  bool systemReserves_ = true;
  std::unique_ptr<std::byte[]> buffer_;
  ChunkedCopyResult result_;
};

}  // namespace

ChunkedCopyResult copyInChunks(FileHandle& source, FileHandle& destination, uint64_t size,
                               const std::function<bool()>& mayGoOn,
                               const std::function<bool(uint64_t copied)>& report) {
  return Walk(size, mayGoOn, report).run(source, destination);
}

}  // namespace umsservice
