#include "Outcomes.h"

#include <algorithm>

#include "UnfinishedCopy.h"

namespace umsctl {

using umsservice::ItemOutcome;

void Outcomes::beginRequest(std::vector<size_t> positions, std::function<void()> allCounted) {
  std::lock_guard lock(mutex_);
  positions_ = std::move(positions);
  countedOfRequest_ = 0;
  allCounted_ = std::move(allCounted);
}

void Outcomes::itemCounted(const ItemOutcome& counted) {
  ItemOutcome outcome = counted;
  {
    std::lock_guard lock(mutex_);
    if (outcome.index < positions_.size()) outcome.index = positions_[outcome.index];
  }
  // Now, not at the end: a later item of the same name must find the place free.
  auto leftover = removeUnfinishedCopy(*files_, outcome);
  auto another = cleaner_ ? cleaner_(outcome) : std::nullopt;
  std::function<void()> allCounted;
  {
    std::lock_guard lock(mutex_);
    if (leftover) leftovers_.push_back(*leftover);
    if (another) leftovers_.push_back(*another);
    outcomes_.push_back(outcome);
    if (++countedOfRequest_ == positions_.size()) allCounted = allCounted_;
  }
  if (listener_) listener_(outcome);
  if (allCounted) allCounted();
}

void Outcomes::amend(const ItemOutcome& outcome) {
  std::lock_guard lock(mutex_);
  for (ItemOutcome& known : outcomes_) {
    if (known.index == outcome.index) known = outcome;
  }
}

std::vector<ItemOutcome> Outcomes::all() const {
  std::lock_guard lock(mutex_);
  auto sorted = outcomes_;
  std::stable_sort(sorted.begin(), sorted.end(), [](const ItemOutcome& left, const ItemOutcome& right) {
    return left.index < right.index;
  });
  return sorted;
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
