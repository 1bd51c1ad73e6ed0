#include <algorithm>
#include <span>

#include "Mutex.h"
#include "umsservice/Value.h"

namespace umsservice {
namespace {

/// Its elements are copied when they change while a reader holds them, not when somebody begins to read.
class MemoryArray final : public ArrayStorage {
 public:
  explicit MemoryArray(std::vector<Value> values)
      : values_(std::make_shared<std::vector<Value>>(std::move(values))) {}

  size_t count() const override {
    MutexLock lock(mutex_);
    return values_->size();
  }
  Value at(size_t index) const override {
    MutexLock lock(mutex_);
    return index < values_->size() ? (*values_)[index] : Value();
  }
  void append(Value value) override {
    Values before;  // outlives the lock: releasing a value may run a host's code
    MutexLock lock(mutex_);
    own(before).push_back(std::move(value));
  }
  bool edit(const std::function<bool(std::vector<Value>&)>& change) override {
    Values changed;  // outlives the lock, as above
    MutexLock lock(mutex_);
    changed = std::make_shared<std::vector<Value>>(*values_);
    if (!change(*changed)) return false;
    values_.swap(changed);
    isShared_ = false;
    return true;
  }
  void removeAt(size_t index) override {
    Values before;
    Value removed;
    MutexLock lock(mutex_);
    if (index >= values_->size()) return;
    auto& values = own(before);
    removed = std::move(values[index]);
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(index));
  }
  void assign(std::vector<Value> values) override {
    auto assigned = std::make_shared<std::vector<Value>>(std::move(values));
    MutexLock lock(mutex_);  // given back before the old values are
    values_.swap(assigned);
    isShared_ = false;
  }
  std::vector<Value> snapshot() const override {
    MutexLock lock(mutex_);
    return *values_;
  }
  std::shared_ptr<const std::vector<Value>> elements() const override {
    MutexLock lock(mutex_);
    isShared_ = true;
    return values_;
  }

 private:
  using Values = std::shared_ptr<std::vector<Value>>;

  /// The elements to be changed; what readers hold stays as it is, and goes to `before`.
  std::vector<Value>& own(Values& before) REQUIRES(mutex_) {
    if (isShared_) {
      before = std::make_shared<std::vector<Value>>(*values_);
      values_.swap(before);
      isShared_ = false;
    }
    return *values_;
  }

  mutable Mutex mutex_;
  Values values_ GUARDED_BY(mutex_);
  mutable bool isShared_ GUARDED_BY(mutex_) = false;  ///< a reader may hold the elements
};

using Entry = std::pair<std::string, Value>;

/// Entries in the order of their keys. Dictionaries here have a handful of keys: one piece of memory beats a
/// tree, in the hundreds of thousands that a listing makes.
class MemoryDictionary final : public DictionaryStorage {
 public:
  MemoryDictionary() = default;
  /// The last of several entries with one key counts, and nil values are left out. Pointers are what is
  /// sorted: a listing makes a dictionary for each of very many files.
  explicit MemoryDictionary(std::span<const Entry> entries) {
    std::vector<const Entry*> sorted;
    sorted.reserve(entries.size());
    for (const Entry& entry : entries) {
      auto behind = std::upper_bound(sorted.begin(), sorted.end(), &entry,
                                     [](auto* left, auto* right) { return left->first < right->first; });
      if (behind != sorted.begin() && (*std::prev(behind))->first == entry.first) {
        *std::prev(behind) = &entry;
      } else {
        sorted.insert(behind, &entry);
      }
    }
    entries_.reserve(sorted.size());
    for (const Entry* entry : sorted) {
      if (!entry->second.isNil()) entries_.push_back(*entry);
    }
  }
  /// Takes entries over that are arranged so already.
  explicit MemoryDictionary(std::vector<Entry>&& entries) : entries_(std::move(entries)) {}

  static bool areArranged(const std::vector<Entry>& entries) {
    auto isOutOfPlace = [](const Entry& left, const Entry& right) { return left.first >= right.first; };
    auto isNil = [](const Entry& entry) { return entry.second.isNil(); };
    return std::adjacent_find(entries.begin(), entries.end(), isOutOfPlace) == entries.end() &&
           std::none_of(entries.begin(), entries.end(), isNil);
  }

  Value get(std::string_view key) const override {
    MutexLock lock(mutex_);
    auto found = position(key);
    return found != entries_.end() && found->first == key ? found->second : Value();
  }
  void set(std::string_view key, Value value) override {
    MutexLock lock(mutex_);
    auto found = entries_.begin() + (position(key) - entries_.cbegin());
    const bool isThere = found != entries_.end() && found->first == key;
    if (isThere) {
      std::swap(found->second, value);
      if (found->second.isNil()) entries_.erase(found);
    } else if (!value.isNil()) {
      entries_.emplace(found, std::string(key), std::move(value));
    }
  }
  std::vector<std::string> keys() const override {
    MutexLock lock(mutex_);
    std::vector<std::string> names;
    names.reserve(entries_.size());
    for (const Entry& entry : entries_) names.push_back(entry.first);
    return names;
  }
  /// The entries, with room for the one or two more that a copy is mostly made for: a vector that is full
  /// would double.
  std::vector<Entry> entries() const {
    std::vector<Entry> copy;
    MutexLock lock(mutex_);
    copy.reserve(entries_.size() + 2);
    copy.insert(copy.end(), entries_.begin(), entries_.end());
    return copy;
  }

 private:
  std::vector<Entry>::const_iterator position(std::string_view key) const REQUIRES(mutex_) {
    return std::lower_bound(entries_.begin(), entries_.end(), key,
                            [](const Entry& entry, std::string_view wanted) { return entry.first < wanted; });
  }

  mutable Mutex mutex_;
  std::vector<Entry> entries_ GUARDED_BY(mutex_);
};

}  // namespace

Array::Array() : Array(std::vector<Value>()) {}
Array::Array(std::initializer_list<Value> values) : Array(std::vector<Value>(values)) {}
Array::Array(std::vector<Value> values) : storage_(std::make_shared<MemoryArray>(std::move(values))) {}

Dictionary::Dictionary() : storage_(std::make_shared<MemoryDictionary>()) {}

Dictionary::Dictionary(std::initializer_list<std::pair<std::string, Value>> entries)
    : storage_(std::make_shared<MemoryDictionary>(std::span(entries.begin(), entries.size()))) {}

Dictionary::Dictionary(std::vector<std::pair<std::string, Value>> entries)
    : storage_(MemoryDictionary::areArranged(entries)
                   ? std::make_shared<MemoryDictionary>(std::move(entries))
                   : std::make_shared<MemoryDictionary>(std::span<const Entry>(entries))) {}

Dictionary Dictionary::mutableCopy() const {
  if (auto copy = storage_->mutableCopy()) return Dictionary(std::move(copy));
  if (auto* own = dynamic_cast<const MemoryDictionary*>(storage_.get())) {
    return Dictionary(std::make_shared<MemoryDictionary>(own->entries()));
  }
  std::vector<Entry> entries;
  for (std::string& name : keys()) {
    Value value = get(name);
    entries.emplace_back(std::move(name), std::move(value));
  }
  return Dictionary(std::move(entries));
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
