/// Wrappers around the real file system: one that fails on purpose, one that shows sandbox folders as
/// "/Volumes/...".
#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "umsservice/FileSystem.h"

namespace umsservice::testing {

/// Every operation of the seam, by name.
enum class FileCall {
  Attributes,
  LinkAttributes,
  Space,
  List,
  CreateFolders,
  CreateFile,
  OpenForReading,
  Move,
  Replace,
  Remove,
  SyncVolume,
  Read,
  Write,
  Reserve,
  Truncate,
  Sync,
  Close,
};

/// Passes every call on to the real file system, unless the test's `fault` gives an `errno` for it.
class FaultyFileSystem final : public FileSystem {
 public:
  /// Asked before each call with its path; 0 lets it through. May also block or change files.
  using Fault = std::function<int(FileCall call, const std::string& path)>;

  explicit FaultyFileSystem(std::shared_ptr<FileSystem> real = posixFileSystem()) : real_(std::move(real)) {}

  void setFault(Fault fault);
  /// Fails the n-th (1-based) call of a kind from now on, once.
  void failNth(FileCall call, int n, int systemNumber);
  /// Fails every call of a kind whose path ends like that.
  void failAlways(FileCall call, const std::string& pathEnd, int systemNumber);
  /// How often a kind of call was made.
  size_t count(FileCall call) const;
  /// Bytes that a failing write still writes.
  void setWrittenBeforeFault(size_t bytes) { writtenBeforeFault_ = bytes; }

  FileResult<FileAttributes> attributes(const std::string& path) override;
  FileResult<FileAttributes> linkAttributes(const std::string& path) override;
  FileResult<VolumeSpace> space(const std::string& path) override;
  FileResult<std::vector<DirectoryEntry>> list(const std::string& folder) override;
  FileStatus createFolders(const std::string& folder) override;
  FileResult<std::unique_ptr<FileHandle>> createFile(const std::string& path) override;
  FileResult<std::unique_ptr<FileHandle>> createNewFile(const std::string& path) override;
  FileResult<std::unique_ptr<FileHandle>> openForReading(const std::string& path) override;
  FileStatus move(const std::string& from, const std::string& to) override;
  FileStatus replace(const std::string& from, const std::string& to) override;
  FileStatus remove(const std::string& path) override;
  FileStatus syncVolume(const std::string& path) override;

  /// The error that a call is to give now; 0 for none. Used by the handles too.
  int faultOf(FileCall call, const std::string& path);
  size_t writtenBeforeFault() const { return writtenBeforeFault_; }

 private:
  const std::shared_ptr<FileSystem> real_;
  mutable std::mutex mutex_;
  Fault fault_;
  std::vector<FileCall> calls_;
  size_t writtenBeforeFault_ = 0;
};

/// Shows a folder of the sandbox under another path, for example as "/Volumes".
class MappedFileSystem final : public FileSystem {
 public:
  MappedFileSystem(std::string shownAs, std::string folder,
                   std::shared_ptr<FileSystem> real = posixFileSystem())
      : shownAs_(std::move(shownAs)), folder_(std::move(folder)), real_(std::move(real)) {}

  /// The real path behind a shown one.
  std::string real(const std::string& path) const;

  FileResult<FileAttributes> attributes(const std::string& path) override {
    return real_->attributes(real(path));
  }
  FileResult<FileAttributes> linkAttributes(const std::string& path) override {
    return real_->linkAttributes(real(path));
  }
  FileResult<VolumeSpace> space(const std::string& path) override { return real_->space(real(path)); }
  FileResult<std::vector<DirectoryEntry>> list(const std::string& folder) override {
    return real_->list(real(folder));
  }
  FileStatus createFolders(const std::string& folder) override { return real_->createFolders(real(folder)); }
  FileResult<std::unique_ptr<FileHandle>> createNewFile(const std::string& path) override {
    return real_->createNewFile(real(path));
  }
  FileResult<std::unique_ptr<FileHandle>> createFile(const std::string& path) override {
    return real_->createFile(real(path));
  }
  FileResult<std::unique_ptr<FileHandle>> openForReading(const std::string& path) override {
    return real_->openForReading(real(path));
  }
  FileStatus move(const std::string& from, const std::string& to) override {
    return real_->move(real(from), real(to));
  }
  FileStatus replace(const std::string& from, const std::string& to) override {
    return real_->replace(real(from), real(to));
  }
  FileStatus remove(const std::string& path) override { return real_->remove(real(path)); }
  FileStatus syncVolume(const std::string& path) override { return real_->syncVolume(real(path)); }

 private:
  const std::string shownAs_;
  const std::string folder_;
  const std::shared_ptr<FileSystem> real_;
};

}  // namespace umsservice::testing
