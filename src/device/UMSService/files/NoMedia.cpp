#include "NoMedia.h"

#include <algorithm>

#include "CaseFolding.h"
#include "StringPaths.h"

namespace umsservice {
namespace {

std::vector<std::string> textsOf(const MaybeArray& list) {
  std::vector<std::string> texts;
  if (!list) return texts;
  for (const Value& element : list->snapshot()) {
    if (const std::string* text = element.stringIfAny()) texts.push_back(*text);
  }
  return texts;
}

}  // namespace

bool isNoMediaMarker(std::string_view name) {
  return equalIgnoringCase(name, ".nomedia");
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

bool NoMediaFolders::hides(std::string_view path) const {
  auto after = std::upper_bound(folders_.begin(), folders_.end(), path);
  return after != folders_.begin() && path.starts_with(*std::prev(after));
}

bool checkNoMedia(const MaybeString& path, const MaybeArray& nomediaList) {
  if (!path) return false;
  return !NoMediaFolders(textsOf(nomediaList)).hides(*path);
}

Array removeFileListByNoMedia(const MaybeArray& paths, const MaybeArray& nomediaList) {
  NoMediaFolders hidden(textsOf(nomediaList));
  std::vector<Value> kept;
  for (std::string& path : textsOf(paths)) {
    if (!hidden.hides(path)) kept.emplace_back(std::move(path));
  }
  return Array(std::move(kept));
}

}  // namespace umsservice
