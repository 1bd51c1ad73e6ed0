#include "rehearsal/RehearsedFiles.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "Paths.h"
#include "rehearsal/RehearsedHandles.h"

namespace umsctl {

using namespace umsservice;

namespace {

using NoteKind = RehearsedNote::Kind;
using Action = FileError::Action;

std::string folderOf(const std::string& path) {
  const std::string item = withoutTrailingSlashes(path);
  return item.substr(0, std::max<size_t>(item.rfind('/') + 1, 1));
}

/// As the process may do it now. A volume that may only be read says so here too.
bool isAllowed(const std::string& path, int mode) {
  return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
}

FileResult<FileAttributes> attributesOf(const RehearsedNote& note, const std::string& path) {
  if (note.kind == NoteKind::Gone) return FileError{ENOENT, Action::Reading, path};
  return note.kind == NoteKind::Folder ? note.folder : note.file->attributes;
}

}  // namespace

RehearsedFiles::RehearsedFiles(std::shared_ptr<FileSystem> real)
    : real_(real), tree_(std::make_shared<RehearsedTree>(std::move(real))) {}

bool RehearsedFiles::hasReplaced(const std::string& path) {
  std::lock_guard lock(tree_->mutex);
  const RehearsedNote* note = tree_->noteOf(tree_->keyOf(path));
  return note && note->kind == NoteKind::File && note->hasReplaced;
}

VolumeSpace RehearsedFiles::spaceBefore(const std::string& path) {
  std::lock_guard lock(tree_->mutex);
  auto space = real_->space(tree_->nearestReal(path));
  return space ? *space : VolumeSpace{};
}

VolumeSpace RehearsedFiles::spaceAfter(const std::string& path) {
  std::lock_guard lock(tree_->mutex);
  auto space = tree_->space(tree_->nearestReal(path));
  return space ? *space : VolumeSpace{};
}

FileResult<FileAttributes> RehearsedFiles::attributes(const std::string& path) {
  std::lock_guard lock(tree_->mutex);
  const RehearsedNote* note = tree_->noteOf(tree_->keyOf(path));
  if (!note) note = tree_->noteOf(tree_->keyOfTarget(path));
  return note ? attributesOf(*note, path) : real_->attributes(path);
}

FileResult<FileAttributes> RehearsedFiles::linkAttributes(const std::string& path) {
  std::lock_guard lock(tree_->mutex);
  const RehearsedNote* note = tree_->noteOf(tree_->keyOf(path));
  return note ? attributesOf(*note, path) : real_->linkAttributes(path);
}

FileResult<VolumeSpace> RehearsedFiles::space(const std::string& path) {
  auto found = attributes(path);
  if (!found) return found.error();
  std::lock_guard lock(tree_->mutex);
  return tree_->space(tree_->nearestReal(path));
}

FileResult<std::vector<DirectoryEntry>> RehearsedFiles::list(const std::string& folder) {
  auto found = attributes(folder);
  if (!found) return found.error();
  std::lock_guard lock(tree_->mutex);
  const std::string key = tree_->keyOfTarget(folder);
  std::vector<DirectoryEntry> entries;
  if (!tree_->noteOf(key)) {
    auto listed = real_->list(folder);
    if (!listed) return listed;
    entries = std::move(*listed);
  }
  const auto notes = tree_->notesIn(key);
  std::erase_if(entries, [&](const DirectoryEntry& entry) { return notes.count(entry.name) > 0; });
  for (const auto& noted : notes) {
    if (noted.second->kind == NoteKind::Gone) continue;
    entries.push_back(
        {noted.first, noted.second->kind == NoteKind::Folder ? FileType::Directory : FileType::Regular});
  }
  return entries;
}

FileStatus RehearsedFiles::createFolders(const std::string& folder) {
  auto found = attributes(folder);
  if (found && found->type == FileType::Directory) return Done{};
  if (found) return FileError{EEXIST, Action::Writing, folder};
  if (found.error().systemNumber != ENOENT) return found.error();
  const std::string above = folderOf(folder);
  if (above == folder) return found.error();
  auto made = createFolders(above);
  if (!made) return FileError{made.error().systemNumber, Action::Writing, folder};
  std::lock_guard lock(tree_->mutex);
  if (real_->exists(above) && !isAllowed(above, W_OK | X_OK))
    return FileError{errno, Action::Writing, folder};
  tree_->noteFolder(tree_->keyOf(folder), tree_->nearestReal(folder));
  return Done{};
}

FileResult<std::unique_ptr<FileHandle>> RehearsedFiles::createFile(const std::string& path) {
  return create(path, true);
}

FileResult<std::unique_ptr<FileHandle>> RehearsedFiles::createNewFile(const std::string& path) {
  return create(path, false);
}

FileStatus RehearsedFiles::mayChange(const std::string& path) {
  const std::string folder = folderOf(path);
  auto above = attributes(folder);
  if (!above) return FileError{above.error().systemNumber, Action::Writing, path};
  if (above->type != FileType::Directory) return FileError{ENOTDIR, Action::Writing, path};
  std::lock_guard lock(tree_->mutex);
  const bool isReal = !tree_->noteOf(tree_->keyOfTarget(folder));
  if (isReal && !isAllowed(folder, W_OK | X_OK)) return FileError{errno, Action::Writing, path};
  return Done{};
}

FileResult<std::unique_ptr<FileHandle>> RehearsedFiles::create(const std::string& path, bool mayExist) {
  auto existing = linkAttributes(path);
  if (existing && !mayExist) return FileError{EEXIST, Action::Writing, path};
  if (existing && existing->type == FileType::Directory) return FileError{EISDIR, Action::Writing, path};
  if (existing && existing->type != FileType::Regular) return FileError{ELOOP, Action::Writing, path};
  auto allowed = mayChange(path);
  if (!allowed) return allowed.error();
  std::lock_guard lock(tree_->mutex);
  const std::string key = tree_->keyOf(path);
  const bool isReal = existing && !tree_->noteOf(key);
  if (isReal && !isAllowed(path, W_OK)) return FileError{errno, Action::Writing, path};
  if (existing) tree_->noteGone(key);
  auto file = tree_->newFile(path, tree_->nearestReal(path));
  tree_->noteFile(key, file, static_cast<bool>(existing));
  return std::unique_ptr<FileHandle>(std::make_unique<RehearsedWriting>(tree_, file));
}

FileResult<std::unique_ptr<FileHandle>> RehearsedFiles::openForReading(const std::string& path) {
  auto found = attributes(path);
  if (!found) return found.error();
  std::lock_guard lock(tree_->mutex);
  const RehearsedNote* note = tree_->noteOf(tree_->keyOf(path));
  if (!note) note = tree_->noteOf(tree_->keyOfTarget(path));
  if (note && note->kind == NoteKind::Folder) return FileError{EISDIR, Action::Reading, path};
  if (note && note->file->bytes)
    return std::unique_ptr<FileHandle>(std::make_unique<RehearsedReading>(*note->file->bytes, found->size));
  // The bytes of a copy are those of its source, which nobody has kept.
  if (note && note->file->original.empty()) return FileError{EIO, Action::Reading, path};
  auto opened = real_->openForReading(note ? note->file->original : path);
  if (!opened) return opened;
  return std::unique_ptr<FileHandle>(std::make_unique<RehearsedReading>(std::move(*opened), found->size));
}

FileStatus RehearsedFiles::move(const std::string& from, const std::string& to) {
  return moveTo(from, to, false);
}

FileStatus RehearsedFiles::replace(const std::string& from, const std::string& to) {
  return moveTo(from, to, true);
}

/// Files only: nobody moves folders.
FileStatus RehearsedFiles::moveTo(const std::string& from, const std::string& to, bool mayExist) {
  auto source = linkAttributes(from);
  if (!source) return source.error();
  auto existing = linkAttributes(to);
  if (existing && !mayExist) return FileError{EEXIST, Action::Writing, to};
  if (source->type != FileType::Regular || (existing && existing->type == FileType::Directory))
    return FileError{EISDIR, Action::Writing, to};
  for (const std::string& path : {from, to}) {
    auto allowed = mayChange(path);
    if (!allowed) return allowed;
  }
  std::lock_guard lock(tree_->mutex);
  const std::string fromKey = tree_->keyOf(from), toKey = tree_->keyOf(to);
  const RehearsedNote* note = tree_->noteOf(fromKey);
  auto moved = tree_->newFile(to, tree_->nearestReal(to));
  if (moved->attributes.device != source->device) return FileError{EXDEV, Action::Writing, to};
  moved->bytes = note ? note->file->bytes : std::nullopt;
  moved->original = note ? note->file->original : from;
  tree_->noteGone(fromKey);
  if (existing) tree_->noteGone(toKey);
  tree_->resize(*moved, source->size);
  tree_->noteFile(toKey, moved, static_cast<bool>(existing));
  return Done{};
}

FileStatus RehearsedFiles::remove(const std::string& path) {
  auto existing = linkAttributes(path);
  if (!existing) return FileError{existing.error().systemNumber, Action::Writing, path};
  auto allowed = mayChange(path);
  if (!allowed) return allowed;
  std::lock_guard lock(tree_->mutex);
  tree_->noteGone(tree_->keyOf(path));
  return Done{};
}

FileStatus RehearsedFiles::syncVolume(const std::string& path) {
  auto found = attributes(path);
  return found ? FileStatus(Done{}) : FileStatus(found.error());
}

}  // namespace umsctl
