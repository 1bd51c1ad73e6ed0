#include "ListedFiles.h"

#include <atomic>

#include "ComputedArray.h"
#include "StringPaths.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

class Listing;

/// The dictionary of one path. It finds its path by its own place within the listing.
class ListedFile final : public DictionaryStorage {
 public:
  ~ListedFile() override { delete changed_.load(); }
  Value get(std::string_view key) const override;
  void set(std::string_view key, Value value) override;
  std::vector<std::string> keys() const override;

 private:
  friend class Listing;
  std::optional<Dictionary> changed() const;

  const Listing* listing_ = nullptr;
  /// Set once, under the listing's lock; owned.
  std::atomic<Dictionary*> changed_ = nullptr;
};

class Listing {
 public:
  Listing(ListedFilesForm form, PathList paths, std::vector<uint64_t> sizes)
      : form_(std::move(form)),
        paths_(std::move(paths)),
        sizes_(std::move(sizes)),
        files_(std::make_unique<ListedFile[]>(paths_.size())) {
    for (size_t i = 0; i < paths_.size(); ++i) files_[i].listing_ = this;
  }

  size_t count() const { return paths_.size(); }
  ListedFile* fileAt(size_t index) const { return &files_[index]; }
  Mutex& mutex() const { return mutex_; }

  Value get(const ListedFile& file, std::string_view key) const {
    const auto index = static_cast<size_t>(&file - files_.get());
    if (key == key::kFilePath) return joinedPath(form_.folder, paths_[index]);
    if (key == key::kFileName) return fileName(paths_[index]);
    if (key == key::kFileSize && !sizes_.empty()) return sizes_[index];
    if (key == key::kDiskIndex && form_.diskIndex) return *form_.diskIndex;
    return Value();
  }

  std::vector<std::string> keys() const {
    std::vector<std::string> keys{key::kFileName, key::kFilePath};
    if (!sizes_.empty()) keys.emplace_back(key::kFileSize);
    if (form_.diskIndex) keys.emplace_back(key::kDiskIndex);
    return keys;
  }

 private:
  std::string fileName(std::string_view path) const {
    switch (form_.fileName) {
      case ListedFilesForm::FileName::Path:
        return std::string(path);
      case ListedFilesForm::FileName::PathOnCard:
        return joinedPath("External", path);
      default:
        return lastPathComponent(path);
    }
  }

  const ListedFilesForm form_;
  const PathList paths_;
  const std::vector<uint64_t> sizes_;
  const std::unique_ptr<ListedFile[]> files_;
  mutable Mutex mutex_;
};

std::optional<Dictionary> ListedFile::changed() const {
  const Dictionary* own = changed_.load(std::memory_order_acquire);
  return own ? std::optional(*own) : std::nullopt;
}

Value ListedFile::get(std::string_view key) const {
  auto own = changed();
  return own ? own->get(key) : listing_->get(*this, key);
}

std::vector<std::string> ListedFile::keys() const {
  auto own = changed();
  return own ? own->keys() : listing_->keys();
}

void ListedFile::set(std::string_view key, Value value) {
  auto own = changed();
  if (!own) {
    MutexLock lock(listing_->mutex());
    own = changed();
    if (!own) {
      auto copy = std::make_unique<Dictionary>();
      for (const std::string& name : listing_->keys()) copy->set(name, listing_->get(*this, name));
      own = *copy;
      changed_.store(copy.release(), std::memory_order_release);
    }
  }
  own->set(key, std::move(value));  // without the lock: the value it replaces may run a host's code
}

class ListedArray final : public ComputedArray {
 public:
  explicit ListedArray(std::shared_ptr<const Listing> listing)
      : ComputedArray(listing->count()), listing_(std::move(listing)) {}

 private:
  Value computed(size_t index) const override {
    return Dictionary(std::shared_ptr<DictionaryStorage>(listing_, listing_->fileAt(index)));
  }

  const std::shared_ptr<const Listing> listing_;
};

}  // namespace

Array listedFiles(ListedFilesForm form, PathList paths, std::vector<uint64_t> sizes) {
  return Array(std::make_shared<ListedArray>(
      std::make_shared<const Listing>(std::move(form), std::move(paths), std::move(sizes))));
}

}  // namespace umsservice
