/// The real file system as it is: a test overrides the calls that are to go another way.
#pragma once

#include "umsservice/FileSystem.h"

namespace umsservice::testing {

class PassingFileSystem : public FileSystem {
 public:
  explicit PassingFileSystem(std::shared_ptr<FileSystem> real) : real_(std::move(real)) {}

  FileResult<FileAttributes> attributes(const std::string& path) override { return real_->attributes(path); }
  FileResult<FileAttributes> linkAttributes(const std::string& path) override {
    return real_->linkAttributes(path);
  }
  FileResult<VolumeSpace> space(const std::string& path) override { return real_->space(path); }
  FileResult<std::vector<DirectoryEntry>> list(const std::string& folder) override {
    return real_->list(folder);
  }
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
