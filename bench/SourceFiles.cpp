#include "SourceFiles.h"

namespace umsservice::bench {
namespace {

void addBelow(FileSystem& files, const std::string& source, const std::string& way,
              std::vector<SourceFile>& found) {
  auto entries = files.list(source + "/" + way);
  if (!entries) return;
  for (const DirectoryEntry& entry : *entries) {
    const std::string name = way + entry.name;
    if (entry.type == FileType::Directory) {
      addBelow(files, source, name + "/", found);
    } else {
      found.push_back({source + "/" + name, name});
    }
  }
}

}  // namespace

std::vector<SourceFile> sourceFiles(FileSystem& files, const std::string& source) {
  std::vector<SourceFile> found;
  if (files.isFolder(source)) {
    addBelow(files, source, "", found);
  } else {
    found.push_back({source, source.substr(source.rfind('/') + 1)});
  }
  return found;
}

}  // namespace umsservice::bench
