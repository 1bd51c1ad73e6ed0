#include "rehearsal/RehearsedTree.h"

#include <algorithm>
#include <ctime>
#include <filesystem>

#include "Paths.h"

namespace umsctl {

using namespace umsservice;

namespace {

constexpr RehearsedNote::Kind kGone = RehearsedNote::Kind::Gone;

/// Numbers of noted items begin where no file system is.
constexpr uint64_t kNotedInodes = uint64_t{1} << 63;

/// Volumes hand out room in units at least as large as this.
uint64_t takenBy(uint64_t size) {
  constexpr uint64_t kBlock = 4096;
  return (size + kBlock - 1) / kBlock * kBlock;
}

std::string folderOfKey(const std::string& key) {
  return key.substr(0, std::max<size_t>(key.rfind('/'), 1));
}

std::string resolved(const std::string& path) {
  std::error_code failure;
  std::filesystem::path found = std::filesystem::weakly_canonical(path, failure);
  return withoutTrailingSlashes(failure ? path : found.string());
}

}  // namespace

std::string RehearsedTree::keyOf(const std::string& path) {
  const std::string item = withoutTrailingSlashes(path);
  const std::string name = lastComponent(item);
  if (name.empty() || name == "." || name == "..") return resolved(item);
  const std::string folder = folderOfKey(item);
  auto known = folders_.find(folder);
  if (known == folders_.end()) known = folders_.emplace(folder, resolved(folder)).first;
  return inFolder(known->second, name);
}

std::string RehearsedTree::keyOfTarget(const std::string& path) {
  auto found = real_->linkAttributes(path);
  return found && found->type == FileType::SymbolicLink ? resolved(path) : keyOf(path);
}

const RehearsedNote* RehearsedTree::noteOf(const std::string& key) const {
  static const RehearsedNote hidden;
  if (auto found = notes_.find(key); found != notes_.end()) return &found->second;
  for (std::string above = folderOfKey(key); above.size() > 1; above = folderOfKey(above)) {
    if (notes_.count(above) > 0) return &hidden;
  }
  return nullptr;
}

std::map<std::string, const RehearsedNote*> RehearsedTree::notesIn(const std::string& folderKey) const {
  const std::string start = inFolder(folderKey, "");
  std::map<std::string, const RehearsedNote*> found;
  for (auto note = notes_.lower_bound(start); note != notes_.end() && note->first.starts_with(start);
       ++note) {
    std::string name = note->first.substr(start.size());
    if (name.find('/') == std::string::npos) found.emplace(name, &note->second);
  }
  return found;
}

void RehearsedTree::noteFile(const std::string& key, std::shared_ptr<RehearsedFile> file, bool hasReplaced) {
  const RehearsedNote* before = noteOf(key);
  RehearsedNote note{RehearsedNote::Kind::File, hasReplaced || (before && before->hasReplaced)};
  note.file = std::move(file);
  notes_[key] = std::move(note);
}

void RehearsedTree::noteFolder(const std::string& key, const std::string& volume) {
  RehearsedNote note{RehearsedNote::Kind::Folder};
  auto found = real_->attributes(volume);
  note.folder.type = FileType::Directory;
  note.folder.device = found ? found->device : 0;
  note.folder.inode = kNotedInodes + ++lastInode_;
  note.folder.modified = std::time(nullptr);
  notes_[key] = std::move(note);
}

void RehearsedTree::noteGone(const std::string& key) {
  giveBack(key);
  const std::string below = inFolder(key, "");
  auto first = notes_.lower_bound(below);
  auto last = first;
  while (last != notes_.end() && last->first.starts_with(below)) ++last;
  notes_.erase(first, last);
  notes_[key] = {kGone, true};
}

/// Room of what can be seen at a key and below it.
void RehearsedTree::giveBack(const std::string& key) {
  const RehearsedNote* note = noteOf(key);
  if (note && note->kind == kGone) return;
  if (!note) giveBackReal(key);
  const std::string below = inFolder(key, "");
  for (const auto& noted : notes_) {
    if (noted.second.file && (noted.first == key || noted.first.starts_with(below)))
      freed_[noted.second.file->attributes.device] +=
          static_cast<int64_t>(takenBy(noted.second.file->attributes.size));
  }
}

void RehearsedTree::giveBackReal(const std::string& path) {
  auto found = real_->linkAttributes(path);
  if (!found) return;
  if (found->type == FileType::Regular)
    freed_[found->device] += static_cast<int64_t>(std::max(found->allocated, takenBy(found->size)));
  if (found->type != FileType::Directory) return;
  auto entries = real_->list(path);
  if (!entries) return;
  for (const DirectoryEntry& entry : *entries) {
    // What is noted gives back its own.
    if (notes_.count(inFolder(path, entry.name)) == 0) giveBackReal(inFolder(path, entry.name));
  }
}

std::shared_ptr<RehearsedFile> RehearsedTree::newFile(const std::string& path, const std::string& volume) {
  auto file = std::make_shared<RehearsedFile>();
  auto found = real_->attributes(volume);
  file->attributes.type = FileType::Regular;
  file->attributes.device = found ? found->device : 0;
  file->attributes.inode = kNotedInodes + ++lastInode_;
  file->attributes.modified = std::time(nullptr);
  file->path = path;
  file->volume = volume;
  file->bytes.emplace();
  return file;
}

std::string RehearsedTree::nearestReal(const std::string& path) const {
  std::string at = withoutTrailingSlashes(path);
  while (at.size() > 1 && !real_->exists(at)) at = folderOfKey(at);
  return at;
}

FileResult<VolumeSpace> RehearsedTree::space(const std::string& realPath) const {
  auto space = real_->space(realPath);
  auto found = real_->attributes(realPath);
  if (!space || !found) return space;
  auto freed = freed_.find(found->device);
  if (freed == freed_.end()) return space;
  const auto taken = static_cast<uint64_t>(std::max<int64_t>(0, -freed->second));
  const auto given = static_cast<uint64_t>(std::max<int64_t>(0, freed->second));
  space->free = std::min(space->total, space->free - std::min(space->free, taken) + given);
  return space;
}

uint64_t RehearsedTree::roomFor(const RehearsedFile& file) const {
  auto left = space(file.volume);
  const uint64_t inLastBlock = takenBy(file.attributes.size) - file.attributes.size;
  return (left ? left->free : 0) + inLastBlock;
}

void RehearsedTree::resize(RehearsedFile& file, uint64_t size) {
  int64_t& freed = freed_[file.attributes.device];
  freed += static_cast<int64_t>(takenBy(file.attributes.size)) - static_cast<int64_t>(takenBy(size));
  file.attributes.size = size;
  file.attributes.allocated = takenBy(size);
  if (file.bytes && file.bytes->size() > size) file.bytes->resize(size);
}

}  // namespace umsctl
