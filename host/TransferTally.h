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

  /// The next request holds only the items at these places, in this order. Before the first call a request
  /// holds the whole list.
  void beginRequest(std::vector<size_t> positions);
  /// The service has sent so many percent of the bytes of the request.
  void setPercent(uint32_t percent);
  /// So many bytes of the item in hand have been moved.
  void setBytes(uint64_t bytes);
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

  uint64_t sizeInHand() const;

  std::vector<uint64_t> sizes_;
  uint64_t totalBytes_;
  std::vector<size_t> positions_;  ///< of the request's items; empty for the whole list
  uint64_t requestBytes_;
  size_t counted_ = 0;
  size_t countedOfRequest_ = 0;
  uint64_t countedBytes_ = 0;   ///< sizes of the counted items
  uint64_t reportedBytes_ = 0;  ///< what the service itself counts as sent in this request
  uint64_t movedBytes_ = 0;
  uint64_t inHand_ = 0;  ///< of the item that is being copied
};

}  // namespace umsctl
