// The process that shows how much of a copy is the file system's: every call on files that the service makes
// for each of many, in its order, and nothing between them.
//
//   ums_bench_calls SOURCE DEVICE    the files below the folder SOURCE keep their folders on the device
#include <cstdio>

#include "SourceFiles.h"
#include "umsservice/Environment.h"

namespace {

using namespace umsservice;

std::unique_ptr<FileHandle> made(FileSystem& files, const std::string& path, const std::string& folder) {
  auto file = files.createNewFile(path);
  if (!file && files.createFolders(folder)) file = files.createNewFile(path);
  return file ? std::move(*file) : nullptr;
}

bool copyOne(const Environment& system, const std::string& source, const std::string& music,
             const std::string& destination) {
  FileSystem& files = *system.fileSystem;
  auto lookAtDebugLevel = [&] { (void)system.debugLevelSource->debugLevel(); };
  const std::string folder = destination.substr(0, destination.rfind('/'));
  if (!files.isFolder(music)) return false;
  lookAtDebugLevel();
  lookAtDebugLevel();
  auto attributes = files.attributes(source);
  lookAtDebugLevel();
  auto space = files.space(folder);
  auto to = made(files, destination, folder);
  auto from = files.openSeen(source);
  if (!attributes || !to || !from) return false;
  if (to->copyFrom(**from, attributes->size) != attributes->size) return false;
  const bool isClosed = static_cast<bool>(to->close());
  from->reset();
  lookAtDebugLevel();
  return isClosed;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s SOURCE DEVICE\n", argv[0]);
    return 2;
  }
  const Environment system = Environment::forRunningSystem();
  const std::string music = argv[2] + std::string("/Music");
  const auto sources = bench::sourceFiles(*system.fileSystem, argv[1]);
  for (const bench::SourceFile& source : sources)
    (void)system.fileSystem->attributes(source.path);  // for the size of them all
  for (const bench::SourceFile& source : sources) {
    if (!copyOne(system, source.path, music, music + "/" + source.name)) return 1;
  }
}
