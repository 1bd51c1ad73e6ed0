/// A folder as an open descriptor, and what POSIX tells of items in the words of the seam.
#pragma once

#include <sys/stat.h>

#include "umsservice/FileSystem.h"

namespace umsservice {

FileAttributes attributesOf(const struct stat& status);

/// A path with a NUL byte would silently name something else.
bool isUsablePath(const std::string& path);

FileResult<std::unique_ptr<FolderHandle>> openPosixFolder(const std::string& path);

}  // namespace umsservice
