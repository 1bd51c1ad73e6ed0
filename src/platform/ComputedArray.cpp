#include "ComputedArray.h"

namespace umsservice {

std::optional<Array> ComputedArray::ownIfAny() const {
  MutexLock lock(mutex_);
  return changed_;
}

std::vector<Value> ComputedArray::allComputed() const {
  std::vector<Value> values;
  values.reserve(computedCount_);
  for (size_t i = 0; i < computedCount_; ++i) values.push_back(computed(i));
  return values;
}

Array ComputedArray::own() {
  MutexLock lock(mutex_);
  if (!changed_) changed_ = Array(allComputed());
  hasChanged_.store(true, std::memory_order_release);
  return *changed_;
}

size_t ComputedArray::count() const {
  auto own = changed();
  return own ? own->count() : computedCount_;
}

Value ComputedArray::at(size_t index) const {
  if (auto own = changed()) return own->at(index);
  return index < computedCount_ ? computed(index) : Value();
}

void ComputedArray::append(Value value) {
  own().append(std::move(value));
}

bool ComputedArray::edit(const std::function<bool(std::vector<Value>&)>& change) {
  return own().edit(change);
}

void ComputedArray::removeAt(size_t index) {
  own().removeAt(index);
}

void ComputedArray::assign(std::vector<Value> values) {
  own().assign(std::move(values));
}

std::vector<Value> ComputedArray::snapshot() const {
  auto own = changed();
  return own ? own->snapshot() : allComputed();
}

std::shared_ptr<const std::vector<Value>> ComputedArray::elements() const {
  auto own = changed();
  return own ? own->elements() : std::make_shared<const std::vector<Value>>(allComputed());
}

}  // namespace umsservice
