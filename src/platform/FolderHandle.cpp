#include "StringPaths.h"
#include "umsservice/FileSystem.h"

namespace umsservice {
namespace {

/// A folder by its path.
class PathFolder final : public FolderHandle {
 public:
  PathFolder(FileSystem& files, std::string path) : files_(files), path_(std::move(path)) {}

  FileResult<std::vector<DirectoryEntry>> list() override { return files_.list(path_); }
  FileResult<FileAttributes> attributes(const std::string& name) override {
    return files_.attributes(joinedPath(path_, name));
  }

 private:
  FileSystem& files_;
  const std::string path_;
};

}  // namespace

FileResult<std::unique_ptr<FolderHandle>> FileSystem::openFolder(const std::string& folder) {
  return std::unique_ptr<FolderHandle>(std::make_unique<PathFolder>(*this, folder));
}

}  // namespace umsservice
