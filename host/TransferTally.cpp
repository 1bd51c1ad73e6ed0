#include "TransferTally.h"

#include <algorithm>
#include <numeric>

namespace umsctl {

using umsservice::ItemOutcome;

TransferTally::TransferTally(std::vector<uint64_t> sizes)
    : sizes_(std::move(sizes)), totalBytes_(std::accumulate(sizes_.begin(), sizes_.end(), uint64_t{0})) {}

void TransferTally::setPercent(uint32_t percent) {
  // In steps of a hundredth, so that the product stays a number for lists of any size.
  uint64_t sent = totalBytes_ / 100 * percent + totalBytes_ % 100 * percent / 100;
  uint64_t ofThisItem = sent > reportedBytes_ ? sent - reportedBytes_ : 0;
  inHand_ = std::max(inHand_, std::min(ofThisItem, sizeOf(counted_)));
}

void TransferTally::itemCounted(const ItemOutcome& outcome) {
  uint64_t size = sizeOf(outcome.index);
  ++counted_;
  countedBytes_ += size;
  // A skipped item is sent as far as the service is concerned.
  reportedBytes_ += outcome.kind == ItemOutcome::Kind::Skipped ? size : outcome.bytes;
  movedBytes_ += outcome.bytes;
  inHand_ = 0;
}

double TransferTally::fraction() const {
  if (items() == 0) return 1;
  double whole = totalBytes_ > 0 ? static_cast<double>(totalBytes_) : static_cast<double>(items());
  double passed = totalBytes_ > 0 ? static_cast<double>(passedBytes()) : static_cast<double>(counted_);
  return std::min(1.0, passed / whole);
}

}  // namespace umsctl
