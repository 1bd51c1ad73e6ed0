/// A folder as an open descriptor, and what POSIX tells of items in the words of the seam.
#pragma once

#include <dirent.h>
#include <sys/stat.h>

#include "umsservice/FileSystem.h"

namespace umsservice {

/// For a pointer that owns an open folder.
struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

FileAttributes attributesOf(const struct stat& status);

/// A path with a NUL byte would silently name something else.
bool isUsablePath(const std::string& path);

FileResult<std::unique_ptr<FolderHandle>> openPosixFolder(const std::string& path);

}  // namespace umsservice
