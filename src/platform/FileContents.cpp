#include "FileContents.h"

#include <cerrno>
#include <cstdio>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>

#include "posix/SystemMemory.h"

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

/// Half of the memory: a file of holes costs a device nothing, and what is handed out before it is used
/// would end the host when it is.
uint64_t longestContents() {
  const uint64_t memory = systemMemoryBytes();
  return memory > 0 ? memory / 2 : std::numeric_limits<uint64_t>::max();
}

constexpr size_t kBlock = 65536;

FileResult<Data> readOnto(Data contents, FileHandle& handle, const std::string& path, uint64_t limit) {
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

}  // namespace

FileResult<Data> readContents(FileSystem& files, const std::string& path, uint64_t limit) {
  auto handle = files.openForReading(path);
  if (!handle) return handle.error();
  return readContents(**handle, path, limit);
}

FileResult<Data> readContents(FileHandle& handle, const std::string& path, uint64_t limit) {
  return readOnto({}, handle, path, limit);
}

FileResult<Data> readWholeFile(FileSystem& files, FileHandle& handle, const std::string& path) {
  const uint64_t limit = longestContents();
  auto attributes = files.attributes(path);
  const uint64_t expected = attributes ? attributes->size : 0;
  if (expected > limit) return FileError{EFBIG, FileError::Action::Reading, path};
  try {
    Data contents;
    contents.reserve(expected + kBlock);  // growing step by step would hold a large file twice
    return readOnto(std::move(contents), handle, path, limit);
  } catch (const std::bad_alloc&) {
    return FileError{ENOMEM, FileError::Action::Reading, path};
  } catch (const std::length_error&) {
    return FileError{ENOMEM, FileError::Action::Reading, path};
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
