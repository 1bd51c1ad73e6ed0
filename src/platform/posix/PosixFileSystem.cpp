#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "ExclusiveRename.h"
#include "PosixFileHandle.h"
#include "PosixFolder.h"
#include "RemoveTree.h"
#include "Retry.h"
#include "SyncVolume.h"
#include "umsservice/FileSystem.h"

namespace umsservice {
namespace {

using Action = FileError::Action;

/// Why an item of that type is not opened; 0 for a regular file.
int refusalOf(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return 0;
  if (S_ISLNK(status.st_mode)) return ELOOP;
  return S_ISDIR(status.st_mode) ? EISDIR : EOPNOTSUPP;
}

constexpr int kCareful = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// Opens what is there, without ever waiting for a peer, and keeps the descriptor only when it is a regular
/// file.
FileResult<std::unique_ptr<FileHandle>> openSeenRegular(const std::string& path, int flags, Action action) {
  struct stat status {};
  int descriptor = retried([&] { return ::open(path.c_str(), flags | kCareful); });
  if (descriptor < 0) return FileError{errno, action, path};
  auto handle = std::make_unique<PosixFileHandle>(descriptor, path);
  if (::fstat(descriptor, &status) != 0) return FileError{errno, action, path};
  if (refusalOf(status) != 0) return FileError{refusalOf(status), action, path};
  return std::unique_ptr<FileHandle>(std::move(handle));
}

/// Looks before it opens: opening is enough to make some devices act.
FileResult<std::unique_ptr<FileHandle>> openRegular(const std::string& path, int flags, Action action) {
  if (!isUsablePath(path)) return FileError{EINVAL, action, path};
  struct stat status {};
  int follow = (flags & O_NOFOLLOW) != 0 ? AT_SYMLINK_NOFOLLOW : 0;
  if (::fstatat(AT_FDCWD, path.c_str(), &status, follow) != 0) return FileError{errno, action, path};
  if (refusalOf(status) != 0) return FileError{refusalOf(status), action, path};
  return openSeenRegular(path, flags, action);
}

class PosixFileSystem final : public FileSystem {
 public:
  FileResult<FileAttributes> attributes(const std::string& path) override { return status(path, ::stat); }

  FileResult<FileAttributes> linkAttributes(const std::string& path) override {
    return status(path, ::lstat);
  }

  FileResult<VolumeSpace> space(const std::string& path) override {
    if (!isUsablePath(path)) return FileError{EINVAL, Action::Reading, path};
    struct statvfs volume {};
    if (retried([&] { return ::statvfs(path.c_str(), &volume); }) != 0)
      return FileError{errno, Action::Reading, path};
    uint64_t unit = volume.f_frsize;
    return VolumeSpace{unit * volume.f_blocks, unit * volume.f_bavail};
  }

  FileResult<std::vector<DirectoryEntry>> list(const std::string& folder) override {
    auto opened = openPosixFolder(folder);
    if (!opened) return opened.error();
    return (*opened)->list();
  }

  FileResult<std::unique_ptr<FolderHandle>> openFolder(const std::string& folder) override {
    return openPosixFolder(folder);
  }

  FileStatus createFolders(const std::string& folder) override {
    if (!isUsablePath(folder) || folder.empty()) return FileError{EINVAL, Action::Writing, folder};
    if (makeFolder(folder)) return Done{};
    if (errno != ENOENT) return FileError{errno, Action::Writing, folder};
    for (size_t at = folder.find('/', 1); at != std::string::npos; at = folder.find('/', at + 1)) {
      std::string ancestor = folder.substr(0, at);
      if (!makeFolder(ancestor)) return FileError{errno, Action::Writing, ancestor};
    }
    if (!makeFolder(folder)) return FileError{errno, Action::Writing, folder};
    return Done{};
  }

  FileResult<std::unique_ptr<FileHandle>> createFile(const std::string& path) override {
    auto created = createNewFile(path);
    if (created || created.error().systemNumber != EEXIST) return created;
    return openRegular(path, O_WRONLY | O_TRUNC | O_NOFOLLOW, Action::Writing);
  }

  FileResult<std::unique_ptr<FileHandle>> createNewFile(const std::string& path) override {
    if (!isUsablePath(path)) return FileError{EINVAL, Action::Writing, path};
    // What this call itself makes is a regular file for certain; nothing more needs to be looked at.
    constexpr int kNewFile = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | kCareful;
    int descriptor = retried([&] { return ::open(path.c_str(), kNewFile, 0666); });
    if (descriptor < 0) return FileError{errno, Action::Writing, path};
    return std::unique_ptr<FileHandle>(std::make_unique<PosixFileHandle>(descriptor, path));
  }

  FileResult<std::unique_ptr<FileHandle>> openForReading(const std::string& path) override {
    return openRegular(path, O_RDONLY, Action::Reading);
  }

  FileResult<std::unique_ptr<FileHandle>> openSeen(const std::string& path) override {
    if (!isUsablePath(path)) return FileError{EINVAL, Action::Reading, path};
    return openSeenRegular(path, O_RDONLY, Action::Reading);
  }

  FileStatus move(const std::string& from, const std::string& to) override {
    if (!isUsablePath(from) || !isUsablePath(to)) return FileError{EINVAL, Action::Writing, from};
    if (renameWithoutReplacing(from.c_str(), to.c_str()) == 0) return Done{};
    int reason = errno;
    return FileError{reason, Action::Writing, reason == EEXIST ? to : from};
  }

  FileStatus replace(const std::string& from, const std::string& to) override {
    if (!isUsablePath(from) || !isUsablePath(to)) return FileError{EINVAL, Action::Writing, to};
    struct stat status {};
    // The system would put a folder in the place of an empty one.
    if (::lstat(from.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
      return FileError{EISDIR, Action::Writing, to};
    if (::rename(from.c_str(), to.c_str()) != 0) return FileError{errno, Action::Writing, to};
    syncFolderOf(to);
    return Done{};
  }

  FileStatus remove(const std::string& path) override {
    if (!isUsablePath(path)) return FileError{EINVAL, Action::Writing, path};
    std::string item = path;
    while (item.size() > 1 && item.ends_with('/')) item.pop_back();  // "link/" would lead into the folder
    int reason = removeTree(item);
    if (reason != 0) return FileError{reason, Action::Writing, path};
    return Done{};
  }

  FileStatus syncVolume(const std::string& path) override {
    if (!isUsablePath(path)) return FileError{EINVAL, Action::Writing, path};
    int descriptor = retried([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); });
    if (descriptor < 0) return FileError{errno, Action::Writing, path};
    FileStatus synced = Done{};
    if (syncVolumeOf(descriptor) != 0) synced = FileError{errno, Action::Writing, path};
    ::close(descriptor);
    return synced;
  }

 private:
  /// As far as the file system can: some cannot sync a folder by itself, and the rename has happened anyway.
  static void syncFolderOf(const std::string& path) {
    std::string folder = path.substr(0, path.rfind('/') + 1);
    int descriptor = retried(
        [&] { return ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (descriptor < 0) return;
    retried([&] { return ::fsync(descriptor); });
    ::close(descriptor);
  }

  template <typename Call>
  static FileResult<FileAttributes> status(const std::string& path, Call call) {
    if (!isUsablePath(path)) return FileError{EINVAL, Action::Reading, path};
    struct stat status {};
    if (retried([&] { return call(path.c_str(), &status); }) != 0)
      return FileError{errno, Action::Reading, path};
    return attributesOf(status);
  }

  /// True when the folder is there afterwards; otherwise `errno` says why not.
  static bool makeFolder(const std::string& folder) {
    if (::mkdir(folder.c_str(), 0777) == 0) return true;
    int reason = errno;
    struct stat status {};
    if (reason != ENOENT && ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return true;
    errno = reason;
    return false;
  }
};

}  // namespace

std::shared_ptr<FileSystem> posixFileSystem() {
  static const auto files = std::make_shared<PosixFileSystem>();
  return files;
}

}  // namespace umsservice
