/// The one engine behind every chunked copy of the system. It moves bytes between two open files and knows
/// nothing of devices.
///
/// Accounting goes in units of 4096 bytes: before each unit the caller is asked whether to go on, after each
/// it hears the running count. Physical reads and writes are larger. Whenever a copy ends early, exactly the
/// units that were accounted for stay in the destination, and no room set aside for more. Memory stays flat
/// for files of any size.
#pragma once

#include <functional>

#include "umsservice/FileSystem.h"

namespace umsservice {

/// The unit of accounting, in bytes.
inline constexpr size_t kCopyUnit = 4096;

/// How a chunked copy ended.
struct ChunkedCopyResult {
  enum class End { Complete, Stopped, Failed };
  End end = End::Complete;
  uint64_t copied = 0;             ///< bytes accounted for
  std::optional<FileError> error;  ///< only for `Failed`
};

/// Copies `size` bytes from the current position of `source` to an empty `destination`. A source that ends
/// before `size` is a failure; one that has grown is copied up to `size`.
ChunkedCopyResult copyInChunks(FileHandle& source, FileHandle& destination, uint64_t size,
                               const std::function<bool()>& mayGoOn,
                               const std::function<bool(uint64_t copied)>& report);

}  // namespace umsservice
