/// The file-system seam: every call that the library makes on files goes through these two classes.
///
/// The real implementation is `posixFileSystem()`; a host or a test may wrap it. Calls are made from the
/// host's threads and from worker threads at once, so an implementation must be safe from any thread; a
/// `FileHandle` is used by one thread at a time. Paths are UTF-8 bytes, "/"-separated, and may hold any
/// byte but NUL. No call blocks on a FIFO or a device node, and none raises a signal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "umsservice/Export.h"

namespace umsservice {

/// Why a call on files failed.
struct UMS_EXPORT FileError {
  /// What was being done; the same cause has another code on reading than on writing.
  enum class Action { Reading, Writing };

  /// The system's own number (`errno`).
  int systemNumber = 0;
  Action action = Action::Reading;
  std::string path;

  /// The system's own text for the number, for example "No space left on device".
  std::string words() const;
  /// The code of the platform's file manager, as notifications carry it under "ErrorNumber": 4, 256, 257,
  /// 260, 512, 513, 514, 516, 640 or 642.
  uint32_t code() const;
  /// Code, words and path in one line, as log lines show an error.
  std::string description() const;
};

/// A value, or the reason why there is none.
template <typename T>
class [[nodiscard]] FileResult {
 public:
  FileResult(T value) : held_(std::in_place_index<0>, std::move(value)) {}
  FileResult(FileError error) : held_(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return held_.index() == 0; }
  T& operator*() { return std::get<0>(held_); }
  const T& operator*() const { return std::get<0>(held_); }
  T* operator->() { return &std::get<0>(held_); }
  const T* operator->() const { return &std::get<0>(held_); }
  /// Only when there is no value.
  const FileError& error() const { return std::get<1>(held_); }

 private:
  std::variant<T, FileError> held_;
};

/// The result of a call that gives nothing but success.
struct Done {};
using FileStatus = FileResult<Done>;

enum class FileType { Unknown, Regular, Directory, SymbolicLink, Other };

/// What is known of one item.
struct FileAttributes {
  FileType type = FileType::Unknown;
  uint64_t size = 0;       ///< bytes
  uint64_t device = 0;     ///< number of the file system that holds the item
  uint64_t inode = 0;      ///< number of the item within its file system
  int64_t modified = 0;    ///< seconds since 1970
  uint64_t allocated = 0;  ///< bytes that the item takes up on its volume; 0 where that is not known
};

/// Bytes of a file system.
struct VolumeSpace {
  uint64_t total = 0;
  uint64_t free = 0;  ///< what an unprivileged user may still write
};

/// One entry of a folder. `Unknown` where the file system does not tell the type while listing.
struct DirectoryEntry {
  std::string name;
  FileType type = FileType::Unknown;
};

/// How far a write got. Without an error, everything was written.
struct WriteOutcome {
  size_t written = 0;  ///< bytes that reached the file
  std::optional<FileError> error;
};

/// An open file; destruction closes it.
class UMS_EXPORT FileHandle {
 public:
  virtual ~FileHandle() = default;
  /// Reads at most `size` bytes from the current position; 0 means the end of the file.
  virtual FileResult<size_t> read(void* buffer, size_t size) = 0;
  /// Writes all of `size` bytes at the current position, or says how many were written before the failure.
  virtual WriteOutcome write(const void* buffer, size_t size) = 0;
  /// Copies at most `size` bytes from the current position of `source` to the current position of this file
  /// without handing them through the process, where the system can; both positions advance. 0 when it
  /// cannot, when the source has ended and when it fails: reading and writing then tell why.
  virtual size_t copyFrom(FileHandle& source, size_t size) {
    (void)source, (void)size;
    return 0;
  }
  /// Sets room for `size` bytes aside, from the current position on, so that they come to lie together. The
  /// file does not get longer by it; room that is not written to stays with it until `truncate`. False where
  /// the system cannot, which changes nothing for what is written.
  virtual bool reserve(uint64_t size) {
    (void)size;
    return false;
  }
  /// Cuts the file to `size` bytes.
  virtual FileStatus truncate(uint64_t size) = 0;
  /// Asks the device to keep what was written.
  virtual FileStatus sync() = 0;
  /// Closes now and reports what the system says; a second close does nothing.
  virtual FileStatus close() = 0;
};

/// An open folder, for questions about many of its entries: the system need not walk its path for each.
class FolderHandle {
 public:
  virtual ~FolderHandle() = default;
  /// The entries, as `FileSystem::list` gives them; to be asked for once.
  virtual FileResult<std::vector<DirectoryEntry>> list() = 0;
  /// Attributes of the item that an entry leads to; links are followed.
  virtual FileResult<FileAttributes> attributes(const std::string& name) = 0;
};

/// The operations on paths.
class UMS_EXPORT FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Attributes of the item that a path leads to; links are followed.
  virtual FileResult<FileAttributes> attributes(const std::string& path) = 0;
  /// Attributes of the item itself; a link is not followed.
  virtual FileResult<FileAttributes> linkAttributes(const std::string& path) = 0;
  /// Space of the file system that holds an existing path.
  virtual FileResult<VolumeSpace> space(const std::string& path) = 0;
  /// The entries of a folder without "." and "..", in the order in which the file system gives them.
  virtual FileResult<std::vector<DirectoryEntry>> list(const std::string& folder) = 0;
  /// Opens a folder. Where a file system has no way of its own, the handle asks `list` and `attributes`; it
  /// must not outlive the file system.
  virtual FileResult<std::unique_ptr<FolderHandle>> openFolder(const std::string& folder);
  /// Makes a folder and every missing folder above it. An existing folder is success; a file is not.
  virtual FileStatus createFolders(const std::string& folder) = 0;
  /// Makes an empty file, or empties an existing one, and opens it for writing. Never writes through a
  /// symbolic link and never opens anything but a regular file.
  virtual FileResult<std::unique_ptr<FileHandle>> createFile(const std::string& path) = 0;
  /// Makes an empty file and opens it for writing. An item that already has the name, a link that leads
  /// nowhere included, is left alone and the call fails with EEXIST.
  virtual FileResult<std::unique_ptr<FileHandle>> createNewFile(const std::string& path) = 0;
  /// Opens a regular file for reading from its first byte; anything else cannot be opened.
  virtual FileResult<std::unique_ptr<FileHandle>> openForReading(const std::string& path) = 0;
  /// The same for a path that `attributes` has just called a regular file: it need not be looked at again
  /// before it is opened, only afterwards.
  virtual FileResult<std::unique_ptr<FileHandle>> openSeen(const std::string& path) {
    return openForReading(path);
  }
  /// Renames an item; an item that already has the new name is left alone and the call fails.
  virtual FileStatus move(const std::string& from, const std::string& to) = 0;
  /// Renames a file; one that already has the new name is replaced in the same step, and a link of that name
  /// is replaced itself. Asks the device to keep the new name. A folder is never replaced.
  virtual FileStatus replace(const std::string& from, const std::string& to) = 0;
  /// Removes an item; a folder goes with everything in it. Links are removed, not followed.
  virtual FileStatus remove(const std::string& path) = 0;
  /// Asks the device that holds an existing path to keep everything that was written to it.
  virtual FileStatus syncVolume(const std::string& path) = 0;

  /// Whether a path leads to an item; a link counts as what it leads to.
  bool exists(const std::string& path) { return static_cast<bool>(attributes(path)); }
  /// Whether a path leads to a folder.
  bool isFolder(const std::string& path) {
    auto found = attributes(path);
    return found && found->type == FileType::Directory;
  }
};

/// The running system's files.
UMS_EXPORT std::shared_ptr<FileSystem> posixFileSystem();

}  // namespace umsservice
