#include "WatchedFiles.h"

namespace umsctl {

using namespace umsservice;

class WatchedFiles::Folder final : public FolderHandle {
 public:
  Folder(WatchedFiles& files, std::unique_ptr<FolderHandle> real) : files_(files), real_(std::move(real)) {}

  FileResult<std::vector<DirectoryEntry>> list() override { return real_->list(); }
  FileResult<FileAttributes> attributes(const std::string& name) override {
    files_.look();
    return real_->attributes(name);
  }

 private:
  WatchedFiles& files_;
  const std::unique_ptr<FolderHandle> real_;
};

WatchedFiles::WatchedFiles(const Errand& errand)
    : errand_(errand), real_(errand.files()), line_(errand.wishes()) {}

void WatchedFiles::setPhase(const char* what) {
  line_.erase();
  what_ = what;
  folders_ = 0;
}

void WatchedFiles::look(size_t folders) {
  errand_.stopIfCancelled();
  folders_ += folders;
  if (what_) line_.step(what_, folders_);
}

FileResult<FileAttributes> WatchedFiles::attributes(const std::string& path) {
  look();
  return real_->attributes(path);
}

FileResult<FileAttributes> WatchedFiles::linkAttributes(const std::string& path) {
  look();
  return real_->linkAttributes(path);
}

FileResult<VolumeSpace> WatchedFiles::space(const std::string& path) {
  return real_->space(path);
}

FileResult<std::vector<DirectoryEntry>> WatchedFiles::list(const std::string& folder) {
  look(1);
  return real_->list(folder);
}

FileResult<std::unique_ptr<FolderHandle>> WatchedFiles::openFolder(const std::string& folder) {
  look(1);
  auto opened = real_->openFolder(folder);
  if (!opened) return opened;
  return std::unique_ptr<FolderHandle>(std::make_unique<Folder>(*this, std::move(*opened)));
}

FileStatus WatchedFiles::createFolders(const std::string& folder) {
  return real_->createFolders(folder);
}

FileResult<std::unique_ptr<FileHandle>> WatchedFiles::createFile(const std::string& path) {
  return real_->createFile(path);
}

FileResult<std::unique_ptr<FileHandle>> WatchedFiles::createNewFile(const std::string& path) {
  return real_->createNewFile(path);
}

FileResult<std::unique_ptr<FileHandle>> WatchedFiles::openForReading(const std::string& path) {
  look();
  return real_->openForReading(path);
}

FileResult<std::unique_ptr<FileHandle>> WatchedFiles::openSeen(const std::string& path) {
  look();
  return real_->openSeen(path);
}

FileStatus WatchedFiles::move(const std::string& from, const std::string& to) {
  auto moved = real_->move(from, to);
  if (!moved) return moved;
  const bool isBack = !setAside_.empty() && setAside_.back() == from;
  if (isBack) {
    setAside_.pop_back();
  } else {
    setAside_.push_back(to);
  }
  return moved;
}

FileStatus WatchedFiles::replace(const std::string& from, const std::string& to) {
  return real_->replace(from, to);
}

FileStatus WatchedFiles::remove(const std::string& path) {
  return real_->remove(path);
}

FileStatus WatchedFiles::syncVolume(const std::string& path) {
  return real_->syncVolume(path);
}

}  // namespace umsctl
