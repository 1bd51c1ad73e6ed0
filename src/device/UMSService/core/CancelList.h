/// The service IDs that the host has asked to cancel and that nothing has answered yet.
///
/// Written by the host's threads, asked by the worker after every 4096 bytes; safe from any thread. Asking an
/// empty list takes no lock, and no line is logged while the lock is held. Owned by the service's context.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

#include "Log.h"
#include "Mutex.h"

namespace umsservice {

class CancelList {
 public:
  /// An entry without a number stands for an object that was no number; walks log it and pass it over.
  using Entry = std::optional<uint32_t>;

  explicit CancelList(const Log& log) : log_(log) {}

  void add(Entry serviceID);
  bool isCancelServiceId(uint32_t serviceID) const;
  /// Removes the first entry of that ID; true when there was one.
  bool removeCancelServiceId(uint32_t serviceID);
  /// Removes all entries of that ID: a user may have cancelled more than once, and none of it is meant for a
  /// later request of the same number.
  void removeEvery(uint32_t serviceID);
  /// Removes the first entry without log lines, for a caller with a lock in hand: how many entries without a
  /// number were passed over, to be handed to `logRemovalPassedOver` once the lock is given back.
  size_t takeOut(uint32_t serviceID);
  void logRemovalPassedOver(size_t entries) const;
  /// The entry at a 0-based index; nothing past the present end.
  std::optional<Entry> entryAt(size_t index) const;
  size_t count() const { return count_.load(std::memory_order_acquire); }
  void clear();

 private:
  struct Position {
    std::optional<size_t> index;
    size_t passedOver = 0;  ///< entries without a number before it
  };

  Position positionOf(uint32_t serviceID) const REQUIRES(mutex_);
  Position removeFirst(uint32_t serviceID);
  void logPassedOver(size_t entries, const char* method) const;

  const Log& log_;
  mutable Mutex mutex_;
  std::vector<Entry> cancelServiceId_ GUARDED_BY(mutex_);
  std::atomic<size_t> count_{0};
};

}  // namespace umsservice
