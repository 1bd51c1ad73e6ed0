#include "StrayParts.h"

#include "Paths.h"

namespace umsctl {

using umsservice::FileAttributes;
using umsservice::FileError;
using umsservice::FileType;
using umsservice::ItemOutcome;

void StrayParts::expect(size_t index, uint32_t mediaType) {
  for (const Device::Volume& volume : device_.volumes()) {
    auto folder = device_.service().defaultUmsMediaPath(volume.index, mediaType);
    if (!folder) continue;
    Place place{volume.path + "/" + *folder + "/" + lastComponent(contents_.paths[index]), {}};
    if (auto found = device_.files().linkAttributes(place.path)) place.before = *found;
    places_[index].push_back(std::move(place));
  }
}

std::optional<FileError> StrayParts::removeAfter(const ItemOutcome& outcome) {
  if (outcome.kind == ItemOutcome::Kind::Done && outcome.destPath) placed_.insert(*outcome.destPath);
  std::optional<FileError> failure;
  for (const Place& place : places_[outcome.index]) {
    if (placed_.count(place.path) > 0 || !isStray(place, contents_.sizes[outcome.index])) continue;
    auto removed = device_.files().remove(place.path);
    if (!removed) failure = removed.error();
  }
  return failure;
}

bool StrayParts::isStray(const Place& place, uint64_t wholeSize) const {
  constexpr uint64_t kUnit = 4096;  // a copy that breaks off is cut to whole units
  auto found = device_.files().linkAttributes(place.path);
  if (!found || found->type != FileType::Regular) return false;
  if (found->size >= wholeSize || found->size % kUnit != 0) return false;
  return !place.before || place.before->inode != found->inode || place.before->size != found->size;
}

}  // namespace umsctl
