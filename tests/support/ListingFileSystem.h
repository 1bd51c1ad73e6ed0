/// The real file system with folder listings as a test wants them: in a fixed order, with entries twice, or
/// without the types that a file system need not tell.
#pragma once

#include <algorithm>
#include <functional>

#include "umsservice/FileSystem.h"

namespace umsservice::testing {

class ListingFileSystem final : public FileSystem {
 public:
  using Entries = std::vector<DirectoryEntry>;

  explicit ListingFileSystem(std::shared_ptr<FileSystem> real) : real_(std::move(real)) {}

  /// Changes each listing after it was sorted by name.
  std::function<void(const std::string& folder, Entries& entries)> onList;

  FileResult<Entries> list(const std::string& folder) override {
    auto listed = real_->list(folder);
    if (!listed) return listed;
    std::sort(listed->begin(), listed->end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    if (onList) onList(folder, *listed);
    return listed;
  }
  FileResult<FileAttributes> attributes(const std::string& path) override { return real_->attributes(path); }
  FileResult<FileAttributes> linkAttributes(const std::string& path) override {
    return real_->linkAttributes(path);
  }
  FileResult<VolumeSpace> space(const std::string& path) override { return real_->space(path); }
  FileStatus createFolders(const std::string& folder) override { return real_->createFolders(folder); }
  FileResult<std::unique_ptr<FileHandle>> createNewFile(const std::string& path) override {
    return real_->createNewFile(path);
  }
  FileResult<std::unique_ptr<FileHandle>> createFile(const std::string& path) override {
    return real_->createFile(path);
  }
  FileResult<std::unique_ptr<FileHandle>> openForReading(const std::string& path) override {
    return real_->openForReading(path);
  }
  FileStatus move(const std::string& from, const std::string& to) override { return real_->move(from, to); }
  FileStatus replace(const std::string& from, const std::string& to) override {
    return real_->replace(from, to);
  }
  FileStatus remove(const std::string& path) override { return real_->remove(path); }
  FileStatus syncVolume(const std::string& path) override { return real_->syncVolume(path); }

 private:
  const std::shared_ptr<FileSystem> real_;
};

}  // namespace umsservice::testing
