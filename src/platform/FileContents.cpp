#include "FileContents.h"

#include <cerrno>

namespace umsservice {

FileResult<Data> readContents(FileSystem& files, const std::string& path, uint64_t limit) {
  constexpr size_t kBlock = 65536;
  auto handle = files.openForReading(path);
  if (!handle) return handle.error();
  Data contents;
  for (;;) {
    size_t filled = contents.size();
    contents.resize(filled + kBlock);
    auto length = (*handle)->read(contents.data() + filled, kBlock);
    if (!length) return length.error();
    contents.resize(filled + *length);
    if (contents.size() > limit) return FileError{EFBIG, FileError::Action::Reading, path};
    if (*length == 0) return contents;
  }
}

}  // namespace umsservice
