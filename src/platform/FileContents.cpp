#include "FileContents.h"

#include <cerrno>
#include <cstdio>
#include <random>

namespace umsservice {
namespace {

/// A hidden file beside a path that nobody else uses.
std::string neighbourOf(const std::string& path) {
  std::random_device random;
  char name[32];
  std::snprintf(name, sizeof name, ".%08x%08x.new", random(), random());
  return path.substr(0, path.rfind('/') + 1) + name;
}

FileStatus writeAll(FileHandle& handle, std::string_view bytes) {
  WriteOutcome written = handle.write(bytes.data(), bytes.size());
  if (written.error) return *written.error;
  FileStatus kept = handle.sync();
  FileStatus closed = handle.close();
  return kept ? closed : kept;
}

}  // namespace

FileResult<Data> readContents(FileSystem& files, const std::string& path, uint64_t limit) {
  auto handle = files.openForReading(path);
  if (!handle) return handle.error();
  return readContents(**handle, path, limit);
}

FileResult<Data> readContents(FileHandle& handle, const std::string& path, uint64_t limit) {
  constexpr size_t kBlock = 65536;
  Data contents;
  for (;;) {
    size_t filled = contents.size();
    contents.resize(filled + kBlock);
    auto length = handle.read(contents.data() + filled, kBlock);
    if (!length) return length.error();
    contents.resize(filled + *length);
    if (contents.size() > limit) return FileError{EFBIG, FileError::Action::Reading, path};
    if (*length == 0) return contents;
  }
}

FileStatus replaceContents(FileSystem& files, const std::string& path, std::string_view bytes) {
  const std::string neighbour = neighbourOf(path);
  auto handle = files.createFile(neighbour);
  if (!handle) return handle.error();
  FileStatus done = writeAll(**handle, bytes);
  handle->reset();  // some systems keep an open file from being removed
  if (done) done = files.replace(neighbour, path);
  if (!done) (void)files.remove(neighbour);
  return done;
}

}  // namespace umsservice
