/// Paths relative to a listed folder, close together in memory: a device holds hundreds of thousands.
///
/// Moved, never copied; for one thread until it is complete. Views of its paths are valid as long as it is,
/// wherever it is moved to.
#pragma once

#include <deque>
#include <memory>
#include <string_view>
#include <vector>

#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsservice {

class PathList {
 public:
  PathList() = default;
  PathList(PathList&& other) noexcept { swap(other); }
  PathList& operator=(PathList&& other) noexcept {
    swap(other);
    return *this;
  }

  size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }
  std::string_view operator[](size_t index) const { return entries_[index].path(); }
  /// As it was listed; a link is a link, whatever it leads to.
  FileType typeOf(size_t index) const { return entries_[index].type; }
  /// Adds `folder` and `name`, with nothing between.
  void append(std::string_view folder, std::string_view name, FileType type);

  /// Keeps, in their order, the paths that a test accepts.
  template <typename Accepts>
  void keepIf(Accepts accepts) {
    size_t kept = 0;
    for (const Entry& entry : entries_) {
      if (accepts(entry.path())) entries_[kept++] = entry;
    }
    entries_.resize(kept);
  }

 private:
  struct Entry {
    std::string_view path() const { return {text, length}; }

    const char* text = nullptr;
    uint32_t length = 0;
    FileType type = FileType::Unknown;
  };

  void swap(PathList& other) noexcept;
  char* roomFor(size_t length);

  std::vector<std::unique_ptr<char[]>> blocks_;  ///< of text, which never moves
  size_t roomInBlock_ = 0;                       ///< bytes at the end of the last block
  char* end_ = nullptr;
  std::deque<Entry> entries_;
};

/// The paths as an array of text.
Array arrayOf(PathList paths);

}  // namespace umsservice
