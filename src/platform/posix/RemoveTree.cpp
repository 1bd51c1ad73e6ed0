#include "RemoveTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "PosixFolder.h"
#include "Retry.h"

namespace umsservice {
namespace {

using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

/// A folder on the way down, its descriptor closed while the walk is below it.
struct Level {
  std::string name;  ///< in the folder above
  dev_t device = 0;
  ino_t inode = 0;
  std::vector<std::string> entries;  ///< still to be removed
};

OpenFolder openFolder(int above, const char* name) {
  int descriptor = retried(
      [&] { return ::openat(above, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK); });
  if (descriptor < 0) return nullptr;
  OpenFolder folder(::fdopendir(descriptor));
  if (!folder) {
    int reason = errno;
    ::close(descriptor);
    errno = reason;
  }
  return folder;
}

class TreeRemoval {
 public:
  explicit TreeRemoval(const std::string& path) : path_(path) {}

  /// False with `errno` at the first item that cannot be removed.
  bool run() {
    if (!removeOrEnter(AT_FDCWD, path_)) return false;
    while (!levels_.empty()) {
      if (!(levels_.back().entries.empty() ? leave() : removeNext())) return false;
    }
    return true;
  }

 private:
  bool removeNext() {
    std::string name = std::move(levels_.back().entries.back());
    levels_.back().entries.pop_back();
    // What somebody else removed in the meantime is gone as well.
    return removeOrEnter(::dirfd(folder_.get()), name) || errno == ENOENT;
  }

  bool removeOrEnter(int above, const std::string& name) {
    if (::unlinkat(above, name.c_str(), 0) == 0) return true;
    int reason = errno;
    if (reason != EISDIR && reason != EPERM) return false;  // systems say either of a folder
    if (enter(above, name)) return true;
    if (errno == ENOTDIR || errno == ELOOP) errno = reason;
    return false;
  }

  bool enter(int above, const std::string& name) {
    OpenFolder folder = openFolder(above, name.c_str());
    struct stat status {};
    if (!folder || ::fstat(::dirfd(folder.get()), &status) != 0) return false;
    Level level{name, status.st_dev, status.st_ino, {}};
    if (!readEntries(*folder, level.entries)) return false;
    folder_ = std::move(folder);
    levels_.push_back(std::move(level));
    return true;
  }

  static bool readEntries(DIR& folder, std::vector<std::string>& entries) {
    errno = 0;
    while (const dirent* entry = ::readdir(&folder)) {
      if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
        entries.emplace_back(entry->d_name);
    }
    return errno == 0;
  }

  /// Goes back up from an emptied folder and removes it.
  bool leave() {
    std::string name = std::move(levels_.back().name);
    levels_.pop_back();
    if (levels_.empty()) {
      folder_.reset();
      return ::unlinkat(AT_FDCWD, name.c_str(), AT_REMOVEDIR) == 0;
    }
    OpenFolder above = openFolder(::dirfd(folder_.get()), "..");
    struct stat status {};
    if (!above || ::fstat(::dirfd(above.get()), &status) != 0) return false;
    if (status.st_dev != levels_.back().device || status.st_ino != levels_.back().inode) {
      errno = EBUSY;  // somebody moved the folder away: what is above it now is not ours to remove
      return false;
    }
    folder_ = std::move(above);
    return ::unlinkat(::dirfd(folder_.get()), name.c_str(), AT_REMOVEDIR) == 0;
  }

  const std::string path_;
  std::vector<Level> levels_;
  OpenFolder folder_;  ///< the deepest level
};

}  // namespace

int removeTree(const std::string& path) {
  // The system would refuse these names only after everything below them is gone.
  for (const char* name : {"/", ".", ".."}) {
    if (path == name || path.ends_with(std::string("/") + name)) return EINVAL;
  }
  return TreeRemoval(path).run() ? 0 : errno;
}

}  // namespace umsservice
