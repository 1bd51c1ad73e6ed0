#include "Outcomes.h"

#include <algorithm>

#include "UnfinishedCopy.h"

namespace umsctl {

using umsservice::ItemOutcome;

void Outcomes::itemCounted(const ItemOutcome& outcome) {
  // Now, not at the end: a later item of the same name must find the place free.
  auto leftover = removeUnfinishedCopy(*files_, outcome);
  {
    std::lock_guard lock(mutex_);
    if (leftover) leftovers_.push_back(*leftover);
    outcomes_.push_back(outcome);
  }
  if (listener_) listener_(outcome);
}

std::vector<ItemOutcome> Outcomes::all() const {
  std::lock_guard lock(mutex_);
  return outcomes_;
}

std::vector<umsservice::FileError> Outcomes::leftovers() const {
  std::lock_guard lock(mutex_);
  return leftovers_;
}

size_t Outcomes::count(ItemOutcome::Kind kind) const {
  std::lock_guard lock(mutex_);
  return static_cast<size_t>(std::count_if(outcomes_.begin(), outcomes_.end(),
                                           [kind](const ItemOutcome& item) { return item.kind == kind; }));
}

uint64_t Outcomes::doneBytes() const {
  std::lock_guard lock(mutex_);
  uint64_t bytes = 0;
  for (const ItemOutcome& outcome : outcomes_) {
    if (outcome.kind == ItemOutcome::Kind::Done) bytes += outcome.bytes;
  }
  return bytes;
}

}  // namespace umsctl
