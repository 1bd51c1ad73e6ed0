#include "EpisodeList.h"

#include "ComputedArray.h"

namespace umsservice {

/// The entries of one episode; never changed once made.
class EpisodeList::Entries {
 public:
  using Table = std::map<std::string, Value, std::less<>>;

  explicit Entries(Table table) : table_(std::move(table)) {}
  const Table& table() const { return table_; }

 private:
  const Table table_;
};

/// All entries in order. Only ever grows, so that an array needs no more than a length to know its part.
class EpisodeList::SharedList {
 public:
  using Item = std::shared_ptr<const Entries>;

  void append(Item item) {
    MutexLock lock(mutex_);
    items_.push_back(std::move(item));
  }
  Item at(size_t index) const {
    MutexLock lock(mutex_);
    return items_[index];
  }
  std::shared_ptr<SharedList> without(size_t index) const {
    auto copy = std::make_shared<SharedList>();
    MutexLock lock(mutex_);
    MutexLock copyLock(copy->mutex_);
    copy->items_ = items_;
    copy->items_.erase(copy->items_.begin() + static_cast<std::ptrdiff_t>(index));
    return copy;
  }

 private:
  mutable Mutex mutex_;
  std::vector<Item> items_ GUARDED_BY(mutex_);
};

/// A dictionary over shared entries; the first change gives it entries of its own.
class EpisodeList::OwnEpisode final : public DictionaryStorage {
 public:
  explicit OwnEpisode(SharedList::Item entries) : entries_(std::move(entries)) {}

  Value get(std::string_view key) const override {
    MutexLock lock(mutex_);
    auto found = entries_->table().find(key);
    return found == entries_->table().end() ? Value() : found->second;
  }
  void set(std::string_view key, Value value) override {
    SharedList::Item before;  // outlives the lock: releasing a value may run a host's code
    MutexLock lock(mutex_);
    Entries::Table changed = entries_->table();
    if (value.isNil()) {
      auto found = changed.find(key);
      if (found != changed.end()) changed.erase(found);
    } else {
      changed.insert_or_assign(std::string(key), std::move(value));
    }
    before = std::move(entries_);
    entries_ = std::make_shared<Entries>(std::move(changed));
  }
  std::vector<std::string> keys() const override {
    MutexLock lock(mutex_);
    std::vector<std::string> names;
    for (const auto& [name, value] : entries_->table()) names.push_back(name);
    return names;
  }

 private:
  mutable Mutex mutex_;
  SharedList::Item entries_ GUARDED_BY(mutex_);
};

/// An array over the first episodes of a shared list. An element becomes a dictionary of the array's own when
/// it is first looked at.
class EpisodeList::Snapshot final : public ComputedArray {
 public:
  Snapshot(std::shared_ptr<const SharedList> list, size_t count)
      : ComputedArray(count), list_(std::move(list)) {}

 private:
  Value computed(size_t index) const override {
    MutexLock lock(mutex_);
    Value& element = lookedAt_[index];
    if (element.isNil()) element = Dictionary(std::make_shared<OwnEpisode>(list_->at(index)));
    return element;
  }

  const std::shared_ptr<const SharedList> list_;
  mutable Mutex mutex_;
  mutable std::map<size_t, Value> lookedAt_ GUARDED_BY(mutex_);
};

EpisodeList::EpisodeList() : shared_(std::make_shared<SharedList>()) {}

void EpisodeList::append(const Dictionary& episode) {
  Entries::Table table;
  for (const std::string& name : episode.keys()) table.emplace(name, episode.get(name));
  shared_->append(std::make_shared<const Entries>(std::move(table)));
  ++count_;
}

void EpisodeList::removeAt(size_t index) {
  if (index >= count_) return;
  shared_ = shared_->without(index);
  --count_;
}

Array EpisodeList::snapshot() const {
  return Array(std::make_shared<Snapshot>(shared_, count_));
}

}  // namespace umsservice
