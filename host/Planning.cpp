#include "Planning.h"

#include <numeric>

#include "ConflictPolicy.h"
#include "Paths.h"

namespace umsctl {
namespace {

using umsservice::FileSystem;
using umsservice::ItemOutcome;
using Kind = ItemOutcome::Kind;

/// Of the nearest folder above that is there.
uint64_t freeSpaceNear(FileSystem& files, std::string path) {
  path = withoutTrailingSlashes(path);
  while (path.size() > 1 && !files.exists(path)) path = path.substr(0, std::max<size_t>(path.rfind('/'), 1));
  auto space = files.space(path);
  return space ? space->free : 0;
}

VolumeRoom roomOf(const Errand& errand, const WrittenPlace& place) {
  VolumeRoom room;
  if (place.volume) room.index = place.volume->index;
  room.kind = place.volume ? place.volume->kind : "computer";
  room.path = place.volume ? place.volume->path : withoutTrailingSlashes(place.path);
  if (const auto& rehearsal = errand.rehearsal()) {
    const RehearsedSpace space = rehearsal->spaceOf(room.path);
    room.freeBefore = space.before.free;
    room.freeAfter = space.after.free;
  } else {
    room.freeBefore = freeSpaceNear(*errand.files(), room.path);
  }
  return room;
}

bool isSameFile(FileSystem& files, const ItemOutcome& outcome) {
  auto source = files.attributes(outcome.path.value_or(""));
  auto there = files.attributes(outcome.destPath.value_or(""));
  return source && there && source->device == there->device && source->inode == there->inode;
}

}  // namespace

Plan planOf(const Errand& errand, const std::vector<uint64_t>& sizes, const std::vector<WrittenPlace>& places,
            std::vector<Clash> clashes) {
  Plan plan;
  plan.items = sizes.size();
  plan.bytes = std::accumulate(sizes.begin(), sizes.end(), uint64_t{0});
  for (const WrittenPlace& place : places) plan.volumes.push_back(roomOf(errand, place));
  plan.clashes = std::move(clashes);
  return plan;
}

std::optional<ClashAction> clashOf(const Errand& errand, const ItemOutcome& outcome) {
  if (!errand.rehearsal()) return std::nullopt;
  if (outcome.kind == Kind::Done) {
    bool isReplaced = outcome.destPath && errand.rehearsal()->hasReplaced(*outcome.destPath);
    return isReplaced ? std::optional(ClashAction::Replace) : std::nullopt;
  }
  if (outcome.kind != Kind::Skipped) return std::nullopt;
  // A file that is there itself stays without a question.
  bool wouldAsk = ConflictPolicy::resolved(errand.wishes().onConflict) == OnConflict::Ask &&
                  !isSameFile(*errand.files(), outcome);
  return wouldAsk ? ClashAction::Ask : ClashAction::Skip;
}

}  // namespace umsctl
