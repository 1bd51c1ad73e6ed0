/// How far a transfer is: turns what the service reports (a percentage now and then, the outcome of each
/// item) into bytes of the whole list. Used by one thread at a time; see `ProgressDisplay`.
#pragma once

#include <cstdint>
#include <vector>

#include "umsservice/ItemObserver.h"

namespace umsctl {

class TransferTally {
 public:
  /// The size of each item of the list; 0 where it is not known.
  explicit TransferTally(std::vector<uint64_t> sizes);

  /// The service has sent so many percent of all bytes.
  void setPercent(uint32_t percent);
  /// An item has ended, one way or another.
  void itemCounted(const umsservice::ItemOutcome& outcome);

  size_t items() const { return sizes_.size(); }
  size_t counted() const { return counted_; }
  uint64_t totalBytes() const { return totalBytes_; }
  /// Bytes that lie behind: those of all counted items, copied or not, and of the item in hand.
  uint64_t passedBytes() const { return countedBytes_ + inHand_; }
  /// Bytes that were really moved; what a rate is made of.
  uint64_t movedBytes() const { return movedBytes_ + inHand_; }
  /// 0 to 1; by items where the sizes say nothing.
  double fraction() const;

 private:
  uint64_t sizeOf(size_t index) const { return index < sizes_.size() ? sizes_[index] : 0; }

  const std::vector<uint64_t> sizes_;
  const uint64_t totalBytes_;
  size_t counted_ = 0;
  uint64_t countedBytes_ = 0;   ///< sizes of the counted items
  uint64_t reportedBytes_ = 0;  ///< what the service itself counts as sent for them
  uint64_t movedBytes_ = 0;
  uint64_t inHand_ = 0;  ///< of the item that is being copied
};

}  // namespace umsctl
