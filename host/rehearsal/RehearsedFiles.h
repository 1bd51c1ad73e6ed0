/// The files of a dry run: what is read is the running system's, what is changed is only noted down, and seen
/// by whoever looks afterwards. So a command can go all its way, with every rule of the service, and touch
/// nothing.
///
/// Bytes of a copied file are not moved, only counted. Room on each file system shrinks and grows with what
/// is noted, and a volume can be full. Shared by the `Errand` and its devices; safe from any thread.
/// `RehearsedTree` keeps the notes, `RehearsedHandles` the open files.
#pragma once

#include "rehearsal/RehearsedTree.h"
#include "umsservice/FileSystem.h"

namespace umsctl {

class RehearsedFiles final : public umsservice::FileSystem {
 public:
  explicit RehearsedFiles(std::shared_ptr<umsservice::FileSystem> real);

  /// Whether a noted file stands where another one was: a real one, or one of this run.
  bool hasReplaced(const std::string& path);
  /// Room on the file system of a path that may not be there yet; nothing where nobody knows.
  RehearsedSpace spaceOf(const std::string& path);

  umsservice::FileResult<umsservice::FileAttributes> attributes(const std::string& path) override;
  umsservice::FileResult<umsservice::FileAttributes> linkAttributes(const std::string& path) override;
  umsservice::FileResult<umsservice::VolumeSpace> space(const std::string& path) override;
  umsservice::FileResult<std::vector<umsservice::DirectoryEntry>> list(const std::string& folder) override;
  umsservice::FileStatus createFolders(const std::string& folder) override;
  umsservice::FileResult<std::unique_ptr<umsservice::FileHandle>> createFile(
      const std::string& path) override;
  umsservice::FileResult<std::unique_ptr<umsservice::FileHandle>> createNewFile(
      const std::string& path) override;
  umsservice::FileResult<std::unique_ptr<umsservice::FileHandle>> openForReading(
      const std::string& path) override;
  umsservice::FileStatus move(const std::string& from, const std::string& to) override;
  umsservice::FileStatus replace(const std::string& from, const std::string& to) override;
  umsservice::FileStatus remove(const std::string& path) override;
  umsservice::FileStatus syncVolume(const std::string& path) override;

 private:
  /// Whether the folder of an item is there and may be written to.
  umsservice::FileStatus mayChange(const std::string& path);
  umsservice::FileResult<std::unique_ptr<umsservice::FileHandle>> create(const std::string& path,
                                                                         bool mayExist);
  umsservice::FileStatus moveTo(const std::string& from, const std::string& to, bool mayExist);

  const std::shared_ptr<umsservice::FileSystem> real_;
  const std::shared_ptr<RehearsedTree> tree_;
};

}  // namespace umsctl
