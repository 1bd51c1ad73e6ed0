#include <map>

#include "Mutex.h"
#include "umsservice/Value.h"

namespace umsservice {
namespace {

class MemoryArray final : public ArrayStorage {
 public:
  explicit MemoryArray(std::vector<Value> values) : values_(std::move(values)) {}

  size_t count() const override {
    MutexLock lock(mutex_);
    return values_.size();
  }
  Value at(size_t index) const override {
    MutexLock lock(mutex_);
    return index < values_.size() ? values_[index] : Value();
  }
  void append(Value value) override {
    MutexLock lock(mutex_);
    values_.push_back(std::move(value));
  }
  void removeAt(size_t index) override {
    Value removed;  // outlives the lock: releasing a value may run a host's code
    MutexLock lock(mutex_);
    if (index >= values_.size()) return;
    removed = std::move(values_[index]);
    values_.erase(values_.begin() + static_cast<std::ptrdiff_t>(index));
  }
  void assign(std::vector<Value> values) override {
    MutexLock lock(mutex_);  // given back before the old values are: releasing one may run a host's code
    values_.swap(values);
  }
  std::vector<Value> snapshot() const override {
    MutexLock lock(mutex_);
    return values_;
  }

 private:
  mutable Mutex mutex_;
  std::vector<Value> values_ GUARDED_BY(mutex_);
};

class MemoryDictionary final : public DictionaryStorage {
 public:
  Value get(std::string_view key) const override {
    MutexLock lock(mutex_);
    auto found = entries_.find(key);
    return found == entries_.end() ? Value() : found->second;
  }
  void set(std::string_view key, Value value) override {
    MutexLock lock(mutex_);
    auto found = entries_.find(key);
    if (value.isNil()) {
      if (found == entries_.end()) return;
      std::swap(value, found->second);
      entries_.erase(found);
    } else if (found == entries_.end()) {
      entries_.emplace(key, std::move(value));
    } else {
      std::swap(value, found->second);
    }
  }
  std::vector<std::string> keys() const override {
    MutexLock lock(mutex_);
    std::vector<std::string> names;
    names.reserve(entries_.size());
    for (const auto& [name, value] : entries_) names.push_back(name);
    return names;
  }

 private:
  mutable Mutex mutex_;
  std::map<std::string, Value, std::less<>> entries_ GUARDED_BY(mutex_);
};

}  // namespace

Array::Array() : Array(std::vector<Value>()) {}
Array::Array(std::initializer_list<Value> values) : Array(std::vector<Value>(values)) {}
Array::Array(std::vector<Value> values) : storage_(std::make_shared<MemoryArray>(std::move(values))) {}

Dictionary::Dictionary() : storage_(std::make_shared<MemoryDictionary>()) {}

Dictionary::Dictionary(std::initializer_list<std::pair<std::string, Value>> entries) : Dictionary() {
  for (const auto& [name, value] : entries) set(name, value);
}

Dictionary Dictionary::mutableCopy() const {
  Dictionary copy;
  for (const std::string& name : keys()) copy.set(name, get(name));
  return copy;
}

bool Dictionary::isEqualToDictionary(const Dictionary& other) const {
  if (isSame(other)) return true;
  auto names = keys();
  if (names.size() != other.count()) return false;
  for (const std::string& name : names) {
    if (!other.contains(name) || !get(name).isEqual(other.get(name))) return false;
  }
  return true;
}

}  // namespace umsservice
