#include "WrappedFileSystem.h"

#include <algorithm>

namespace umsservice::testing {
namespace {

FileError faultAt(int number, FileError::Action action, const std::string& path) {
  return FileError{number, action, path};
}

class FaultyHandle final : public FileHandle {
 public:
  FaultyHandle(FaultyFileSystem& files, std::unique_ptr<FileHandle> real, std::string path)
      : files_(files), real_(std::move(real)), path_(std::move(path)) {}

  FileResult<size_t> read(void* buffer, size_t size) override {
    if (int number = files_.faultOf(FileCall::Read, path_))
      return faultAt(number, FileError::Action::Reading, path_);
    return real_->read(buffer, size);
  }
  WriteOutcome write(const void* buffer, size_t size) override {
    int number = files_.faultOf(FileCall::Write, path_);
    if (number == 0) return real_->write(buffer, size);
    WriteOutcome outcome = real_->write(buffer, std::min(size, files_.writtenBeforeFault()));
    outcome.error = faultAt(number, FileError::Action::Writing, path_);
    return outcome;
  }
  bool reserve(uint64_t size) override {
    return files_.faultOf(FileCall::Reserve, path_) == 0 && real_->reserve(size);
  }
  FileStatus truncate(uint64_t size) override {
    if (int number = files_.faultOf(FileCall::Truncate, path_))
      return faultAt(number, FileError::Action::Writing, path_);
    return real_->truncate(size);
  }
  FileStatus sync() override {
    if (int number = files_.faultOf(FileCall::Sync, path_))
      return faultAt(number, FileError::Action::Writing, path_);
    return real_->sync();
  }
  FileStatus close() override {
    FileStatus closed = real_->close();
    if (int number = files_.faultOf(FileCall::Close, path_))
      return faultAt(number, FileError::Action::Writing, path_);
    return closed;
  }

 private:
  FaultyFileSystem& files_;
  const std::unique_ptr<FileHandle> real_;
  const std::string path_;
};

FileResult<std::unique_ptr<FileHandle>> wrapped(FaultyFileSystem& files,
                                                FileResult<std::unique_ptr<FileHandle>> opened,
                                                const std::string& path) {
  if (!opened) return opened.error();
  return std::unique_ptr<FileHandle>(std::make_unique<FaultyHandle>(files, std::move(*opened), path));
}

}  // namespace

void FaultyFileSystem::setFault(Fault fault) {
  std::lock_guard lock(mutex_);
  fault_ = std::move(fault);
}

void FaultyFileSystem::failNth(FileCall call, int n, int systemNumber) {
  setFault([call, systemNumber, left = n](FileCall made, const std::string&) mutable {
    return made == call && --left == 0 ? systemNumber : 0;
  });
}

void FaultyFileSystem::failAlways(FileCall call, const std::string& pathEnd, int systemNumber) {
  setFault([=](FileCall made, const std::string& path) {
    return made == call && path.ends_with(pathEnd) ? systemNumber : 0;
  });
}

size_t FaultyFileSystem::count(FileCall call) const {
  std::lock_guard lock(mutex_);
  return static_cast<size_t>(std::count(calls_.begin(), calls_.end(), call));
}

int FaultyFileSystem::faultOf(FileCall call, const std::string& path) {
  std::lock_guard lock(mutex_);
  calls_.push_back(call);
  return fault_ ? fault_(call, path) : 0;
}

FileResult<FileAttributes> FaultyFileSystem::attributes(const std::string& path) {
  if (int number = faultOf(FileCall::Attributes, path))
    return faultAt(number, FileError::Action::Reading, path);
  return real_->attributes(path);
}

FileResult<FileAttributes> FaultyFileSystem::linkAttributes(const std::string& path) {
  if (int number = faultOf(FileCall::LinkAttributes, path))
    return faultAt(number, FileError::Action::Reading, path);
  return real_->linkAttributes(path);
}

FileResult<VolumeSpace> FaultyFileSystem::space(const std::string& path) {
  if (int number = faultOf(FileCall::Space, path)) return faultAt(number, FileError::Action::Reading, path);
  return real_->space(path);
}

FileResult<std::vector<DirectoryEntry>> FaultyFileSystem::list(const std::string& folder) {
  if (int number = faultOf(FileCall::List, folder))
    return faultAt(number, FileError::Action::Reading, folder);
  return real_->list(folder);
}

FileStatus FaultyFileSystem::createFolders(const std::string& folder) {
  if (int number = faultOf(FileCall::CreateFolders, folder))
    return faultAt(number, FileError::Action::Writing, folder);
  return real_->createFolders(folder);
}

FileResult<std::unique_ptr<FileHandle>> FaultyFileSystem::createFile(const std::string& path) {
  if (int number = faultOf(FileCall::CreateFile, path))
    return faultAt(number, FileError::Action::Writing, path);
  return wrapped(*this, real_->createFile(path), path);
}

FileResult<std::unique_ptr<FileHandle>> FaultyFileSystem::createNewFile(const std::string& path) {
  if (int number = faultOf(FileCall::CreateFile, path))
    return faultAt(number, FileError::Action::Writing, path);
  return wrapped(*this, real_->createNewFile(path), path);
}

FileResult<std::unique_ptr<FileHandle>> FaultyFileSystem::openForReading(const std::string& path) {
  if (int number = faultOf(FileCall::OpenForReading, path))
    return faultAt(number, FileError::Action::Reading, path);
  return wrapped(*this, real_->openForReading(path), path);
}

FileStatus FaultyFileSystem::move(const std::string& from, const std::string& to) {
  if (int number = faultOf(FileCall::Move, from)) return faultAt(number, FileError::Action::Writing, from);
  return real_->move(from, to);
}

FileStatus FaultyFileSystem::replace(const std::string& from, const std::string& to) {
  if (int number = faultOf(FileCall::Replace, to)) return faultAt(number, FileError::Action::Writing, to);
  return real_->replace(from, to);
}

FileStatus FaultyFileSystem::remove(const std::string& path) {
  if (int number = faultOf(FileCall::Remove, path)) return faultAt(number, FileError::Action::Writing, path);
  return real_->remove(path);
}

FileStatus FaultyFileSystem::syncVolume(const std::string& path) {
  if (int number = faultOf(FileCall::SyncVolume, path))
    return faultAt(number, FileError::Action::Writing, path);
  return real_->syncVolume(path);
}

std::string MappedFileSystem::real(const std::string& path) const {
  if (!path.starts_with(shownAs_)) return path;
  std::string rest = path.substr(shownAs_.size());
  return rest.empty() || rest.front() == '/' ? folder_ + rest : path;
}

}  // namespace umsservice::testing
