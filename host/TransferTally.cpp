#include "TransferTally.h"

#include <algorithm>
#include <numeric>

namespace umsctl {

using umsservice::ItemOutcome;

TransferTally::TransferTally(std::vector<uint64_t> sizes)
    : sizes_(std::move(sizes)),
      totalBytes_(std::accumulate(sizes_.begin(), sizes_.end(), uint64_t{0})),
      requestBytes_(totalBytes_) {}

void TransferTally::beginRequest(std::vector<size_t> positions) {
  positions_ = std::move(positions);
  requestBytes_ = 0;
  for (size_t position : positions_) requestBytes_ += sizeOf(position);
  countedOfRequest_ = 0;
  reportedBytes_ = 0;
  inHand_ = 0;
}

void TransferTally::setPercent(uint32_t percent) {
  // In steps of a hundredth, so that the product stays a number for lists of any size.
  uint64_t sent = requestBytes_ / 100 * percent + requestBytes_ % 100 * percent / 100;
  setBytes(sent > reportedBytes_ ? sent - reportedBytes_ : 0);
}

void TransferTally::setBytes(uint64_t bytes) {
  inHand_ = std::max(inHand_, std::min(bytes, sizeInHand()));
}

uint64_t TransferTally::sizeInHand() const {
  if (positions_.empty()) return sizeOf(counted_);
  return countedOfRequest_ < positions_.size() ? sizeOf(positions_[countedOfRequest_]) : 0;
}

void TransferTally::itemCounted(const ItemOutcome& outcome) {
  uint64_t size = sizeOf(outcome.index);
  ++counted_;
  ++countedOfRequest_;
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
