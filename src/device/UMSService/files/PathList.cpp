#include "PathList.h"

#include <algorithm>
#include <utility>

#include "ComputedArray.h"

namespace umsservice {
namespace {

constexpr size_t kBlockSize = size_t{64} * 1024;

class PathArray final : public ComputedArray {
 public:
  explicit PathArray(PathList paths) : ComputedArray(paths.size()), paths_(std::move(paths)) {}

 private:
  Value computed(size_t index) const override { return paths_[index]; }

  const PathList paths_;
};

}  // namespace

void PathList::swap(PathList& other) noexcept {
  std::swap(blocks_, other.blocks_);
  std::swap(roomInBlock_, other.roomInBlock_);
  std::swap(end_, other.end_);
  std::swap(entries_, other.entries_);
}

char* PathList::roomFor(size_t length) {
  if (roomInBlock_ < length) {
    roomInBlock_ = std::max(kBlockSize, length);
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(roomInBlock_));
    end_ = blocks_.back().get();
  }
  roomInBlock_ -= length;
  return std::exchange(end_, end_ + length);
}

void PathList::append(std::string_view folder, std::string_view name, FileType type) {
  const size_t length = folder.size() + name.size();
  char* path = roomFor(length);
  std::copy(name.begin(), name.end(), std::copy(folder.begin(), folder.end(), path));
  entries_.push_back({path, static_cast<uint32_t>(length), type});
}

Array arrayOf(PathList paths) {
  return Array(std::make_shared<PathArray>(std::move(paths)));
}

}  // namespace umsservice
