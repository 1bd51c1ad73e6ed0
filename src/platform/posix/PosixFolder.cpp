#include "PosixFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Retry.h"

namespace umsservice {
namespace {

using Action = FileError::Action;

FileType typeOfMode(mode_t mode) {
  if (S_ISREG(mode)) return FileType::Regular;
  if (S_ISDIR(mode)) return FileType::Directory;
  if (S_ISLNK(mode)) return FileType::SymbolicLink;
  return FileType::Other;
}

FileType typeOfEntry(const dirent& entry) {
  switch (entry.d_type) {
    case DT_REG:
      return FileType::Regular;
    case DT_DIR:
      return FileType::Directory;
    case DT_LNK:
      return FileType::SymbolicLink;
    case DT_UNKNOWN:
      return FileType::Unknown;
    default:
      return FileType::Other;
  }
}

class PosixFolder final : public FolderHandle {
 public:
  PosixFolder(DIR* stream, std::string path) : stream_(stream), path_(std::move(path)) {}

  FileResult<std::vector<DirectoryEntry>> list() override {
    std::vector<DirectoryEntry> entries;
    entries.reserve(64);
    for (;;) {
      errno = 0;
      const dirent* entry = ::readdir(stream_.get());
      if (!entry) break;
      if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
      entries.push_back({entry->d_name, typeOfEntry(*entry)});
    }
    if (errno != 0) return FileError{errno, Action::Reading, path_};
    return entries;
  }

  FileResult<FileAttributes> attributes(const std::string& name) override {
    struct stat status {};
    if (!isUsablePath(name)) return FileError{EINVAL, Action::Reading, path_ + "/" + name};
    if (retried([&] { return ::fstatat(::dirfd(stream_.get()), name.c_str(), &status, 0); }) != 0)
      return FileError{errno, Action::Reading, path_ + "/" + name};
    return attributesOf(status);
  }

 private:
  const std::unique_ptr<DIR, CloseFolder> stream_;
  const std::string path_;
};

}  // namespace

FileAttributes attributesOf(const struct stat& status) {
  FileAttributes attributes;
  attributes.type = typeOfMode(status.st_mode);
  attributes.size = static_cast<uint64_t>(status.st_size);
  attributes.device = static_cast<uint64_t>(status.st_dev);
  attributes.inode = static_cast<uint64_t>(status.st_ino);
  attributes.modified = static_cast<int64_t>(status.st_mtime);
  constexpr uint64_t kStatusBlock = 512;
  attributes.allocated = static_cast<uint64_t>(status.st_blocks) * kStatusBlock;
  return attributes;
}

/// A path with a NUL byte would silently name something else.
bool isUsablePath(const std::string& path) {
  return path.find('\0') == std::string::npos;
}

FileResult<std::unique_ptr<FolderHandle>> openPosixFolder(const std::string& path) {
  if (!isUsablePath(path)) return FileError{EINVAL, Action::Reading, path};
  int descriptor =
      retried([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK); });
  if (descriptor < 0) return FileError{errno, Action::Reading, path};
  DIR* stream = ::fdopendir(descriptor);
  if (!stream) {
    FileError error{errno, Action::Reading, path};
    ::close(descriptor);
    return error;
  }
  return std::unique_ptr<FolderHandle>(std::make_unique<PosixFolder>(stream, path));
}

}  // namespace umsservice
