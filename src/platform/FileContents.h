/// Whole small files in memory.
#pragma once

#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsservice {

/// All bytes of a regular file. A file of more than `limit` bytes is an error, so that an untrusted volume
/// cannot fill the memory.
FileResult<Data> readContents(FileSystem& files, const std::string& path, uint64_t limit);

}  // namespace umsservice
