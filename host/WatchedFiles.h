/// The files of a command that looks at many of them in one call of the service. Before each look an
/// interrupt is noticed: the command ends there, with the `Refusal` of `Errand::stopIfCancelled`. Meanwhile
/// the person sees that it goes on.
///
/// For commands that copy nothing; what changes files is not stopped in the middle. Shared by a command and
/// its device, used by the main thread.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Errand.h"
#include "PhaseLine.h"
#include "umsservice/FileSystem.h"

namespace umsctl {

class WatchedFiles final : public umsservice::FileSystem {
 public:
  /// The errand outlives it.
  explicit WatchedFiles(const Errand& errand);

  /// While it lives, the person is told how many folders have been read, as "Looking for music  12". Leaves
  /// no line behind.
  class Phase;

  /// Full paths of files that have got new names since the last call: what a damaged index had in it.
  std::vector<std::string> takeSetAside() { return std::exchange(setAside_, {}); }

  umsservice::FileResult<umsservice::FileAttributes> attributes(const std::string& path) override;
  umsservice::FileResult<umsservice::FileAttributes> linkAttributes(const std::string& path) override;
  umsservice::FileResult<umsservice::VolumeSpace> space(const std::string& path) override;
  umsservice::FileResult<std::vector<umsservice::DirectoryEntry>> list(const std::string& folder) override;
  umsservice::FileResult<std::unique_ptr<umsservice::FolderHandle>> openFolder(
      const std::string& folder) override;
  umsservice::FileStatus createFolders(const std::string& folder) override;
  umsservice::FileResult<std::unique_ptr<umsservice::FileHandle>> createFile(
      const std::string& path) override;
  umsservice::FileResult<std::unique_ptr<umsservice::FileHandle>> createNewFile(
      const std::string& path) override;
  umsservice::FileResult<std::unique_ptr<umsservice::FileHandle>> openForReading(
      const std::string& path) override;
  umsservice::FileResult<std::unique_ptr<umsservice::FileHandle>> openSeen(const std::string& path) override;
  umsservice::FileStatus move(const std::string& from, const std::string& to) override;
  umsservice::FileStatus replace(const std::string& from, const std::string& to) override;
  umsservice::FileStatus remove(const std::string& path) override;
  umsservice::FileStatus syncVolume(const std::string& path) override;

 private:
  class Folder;

  void setPhase(const char* what);  ///< null for none
  void look(size_t folders = 0);

  const Errand& errand_;
  const std::shared_ptr<umsservice::FileSystem> real_;
  PhaseLine line_;
  const char* what_ = nullptr;
  size_t folders_ = 0;
  std::vector<std::string> setAside_;
};

class WatchedFiles::Phase {
 public:
  Phase(WatchedFiles& files, const char* what) : files_(files) { files_.setPhase(what); }
  ~Phase() { files_.setPhase(nullptr); }
  Phase(const Phase&) = delete;
  Phase& operator=(const Phase&) = delete;

 private:
  WatchedFiles& files_;
};

}  // namespace umsctl
