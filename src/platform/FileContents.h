/// Whole small files in memory.
#pragma once

#include <string_view>

#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsservice {

/// All bytes of a regular file. A file of more than `limit` bytes is an error, so that an untrusted volume
/// cannot fill the memory.
FileResult<Data> readContents(FileSystem& files, const std::string& path, uint64_t limit);
/// The same from an open file, to its end; `path` only names it in errors.
FileResult<Data> readContents(FileHandle& handle, const std::string& path, uint64_t limit);
/// The same for a file of any size that the memory can hold; one that it cannot is an error, a large one
/// before its first byte is read.
FileResult<Data> readWholeFile(FileSystem& files, FileHandle& handle, const std::string& path);

/// Puts a file of exactly these bytes under a name, replacing one that is there: whole or not at all. The
/// bytes are written to a hidden neighbour first; after a failure that is gone and what was there stays.
FileStatus replaceContents(FileSystem& files, const std::string& path, std::string_view bytes);

}  // namespace umsservice
