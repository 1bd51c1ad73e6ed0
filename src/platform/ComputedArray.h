/// An array whose elements are made when somebody asks for them: a listing of a whole device costs memory for
/// the paths, and not for a container of values for each.
///
/// Safe from any thread. A derived class gives the elements, which never change; from the first change on the
/// array keeps elements of its own.
#pragma once

#include <atomic>

#include "Mutex.h"
#include "umsservice/Value.h"

namespace umsservice {

class ComputedArray : public ArrayStorage {
 public:
  explicit ComputedArray(size_t count) : computedCount_(count) {}

  size_t count() const override;
  Value at(size_t index) const override;
  void append(Value value) override;
  bool edit(const std::function<bool(std::vector<Value>&)>& change) override;
  void removeAt(size_t index) override;
  void assign(std::vector<Value> values) override;
  std::vector<Value> snapshot() const override;
  std::shared_ptr<const std::vector<Value>> elements() const override;

 protected:
  /// The element of an index below the count; the same one, for a container, at every call.
  virtual Value computed(size_t index) const = 0;

 private:
  std::optional<Array> changed() const {
    return hasChanged_.load(std::memory_order_acquire) ? ownIfAny() : std::nullopt;
  }
  std::optional<Array> ownIfAny() const;
  std::vector<Value> allComputed() const;
  Array own();

  const size_t computedCount_;
  std::atomic<bool> hasChanged_{false};  ///< readers of an array that never changes need no lock
  mutable Mutex mutex_;
  std::optional<Array> changed_ GUARDED_BY(mutex_);
};

}  // namespace umsservice
