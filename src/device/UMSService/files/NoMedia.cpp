#include "NoMedia.h"

#include <algorithm>

#include "CaseFolding.h"
#include "ComputedArray.h"
#include "StringPaths.h"

namespace umsservice {
namespace {

std::vector<std::string> textsOf(const MaybeArray& list) {
  std::vector<std::string> texts;
  if (!list) return texts;
  const auto elements = list->elements();
  for (const Value& element : *elements) {
    if (const std::string* text = element.stringIfAny()) texts.push_back(*text);
  }
  return texts;
}

using Elements = std::shared_ptr<const std::vector<Value>>;

/// Some elements of an array as it was, without copies of them.
class Selection final : public ComputedArray {
 public:
  Selection(Elements elements, std::vector<size_t> indexes)
      : ComputedArray(indexes.size()), elements_(std::move(elements)), indexes_(std::move(indexes)) {}

 private:
  Value computed(size_t index) const override { return (*elements_)[indexes_[index]]; }

  const Elements elements_;
  const std::vector<size_t> indexes_;
};

}  // namespace

bool isNoMediaMarker(std::string_view name) {
  return isHiddenName(name) && equalIgnoringCase(name, ".nomedia");
}

NoMediaFolders::NoMediaFolders(const std::vector<std::string>& markers) {
  std::vector<std::string> folders;
  for (const std::string& marker : markers) folders.push_back(stringByDeletingLastPathComponent(marker));
  std::sort(folders.begin(), folders.end());
  // In sorted order a prefix stands before everything that begins with it.
  for (std::string& folder : folders) {
    if (folders_.empty() || !folder.starts_with(folders_.back())) folders_.push_back(std::move(folder));
  }
}

bool NoMediaFolders::isBetween(std::string_view path) const {
  return (after_ == 0 || folders_[after_ - 1] <= path) &&
         (after_ == folders_.size() || path < folders_[after_]);
}

bool NoMediaFolders::hides(std::string_view path) {
  if (after_ > 0 && path.starts_with(folders_[after_ - 1])) return true;
  if (isBetween(path)) return false;  // only the folder in front can be a prefix, and it is none
  auto after = std::upper_bound(folders_.begin(), folders_.end(), path);
  after_ = static_cast<size_t>(after - folders_.begin());
  return after_ > 0 && path.starts_with(folders_[after_ - 1]);
}

bool checkNoMedia(const MaybeString& path, const MaybeArray& nomediaList) {
  if (!path) return false;
  return !NoMediaFolders(textsOf(nomediaList)).hides(*path);
}

Array removeFileListByNoMedia(const MaybeArray& paths, const MaybeArray& nomediaList) {
  if (!paths) return Array();
  NoMediaFolders hidden(textsOf(nomediaList));
  const Elements elements = paths->elements();
  std::vector<size_t> kept;
  for (size_t i = 0; i < elements->size(); ++i) {
    const std::string* path = (*elements)[i].stringIfAny();
    if (path && !hidden.hides(*path)) kept.push_back(i);
  }
  return Array(std::make_shared<Selection>(elements, std::move(kept)));
}

}  // namespace umsservice
