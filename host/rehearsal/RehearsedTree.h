/// What a dry run has noted down: files and folders that would be made, and those that would be gone. What is
/// not noted is as the running system has it.
///
/// Items are known by keys: full paths without links, so that one item has one key. A note of a folder or a
/// gone item hides everything real below it. Owned by `RehearsedFiles` and its open files, guarded by
/// `mutex`.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "umsservice/FileSystem.h"

namespace umsctl {

/// A file that is only noted.
struct RehearsedFile {
  umsservice::FileAttributes attributes;
  std::string path;                  ///< as whoever made it said
  std::string volume;                ///< a real path on the same file system
  std::optional<std::string> bytes;  ///< nothing once they were too many to keep
  std::string original;              ///< the real file that was moved here; empty for a new one
};

struct RehearsedNote {
  enum class Kind { Gone, File, Folder };

  Kind kind = Kind::Gone;
  bool hasReplaced = false;             ///< something else was there before
  umsservice::FileAttributes folder{};  ///< of a folder
  std::shared_ptr<RehearsedFile> file{};
};

/// The room of a file system without and with what is noted: from one look, as other programs use it too.
struct RehearsedSpace {
  umsservice::VolumeSpace before;
  umsservice::VolumeSpace after;
};

class RehearsedTree {
 public:
  explicit RehearsedTree(std::shared_ptr<umsservice::FileSystem> real) : real_(std::move(real)) {}

  std::mutex mutex;

  /// The key of an item; a link is the item itself, or what it leads to.
  std::string keyOf(const std::string& path);
  std::string keyOfTarget(const std::string& path);
  /// What is noted of an item; null where the running system knows it.
  const RehearsedNote* noteOf(const std::string& key) const;
  /// Names and notes of what is noted in a folder.
  std::map<std::string, const RehearsedNote*> notesIn(const std::string& folderKey) const;

  void noteFile(const std::string& key, std::shared_ptr<RehearsedFile> file, bool hasReplaced);
  void noteFolder(const std::string& key, const std::string& volume);
  /// The item and what is noted below it gives its room back.
  void noteGone(const std::string& key);

  /// An empty file on the file system of a real path.
  std::shared_ptr<RehearsedFile> newFile(const std::string& path, const std::string& volume);
  /// The nearest folder or file above a path, or itself, that is really there.
  std::string nearestReal(const std::string& path) const;
  umsservice::FileResult<RehearsedSpace> space(const std::string& realPath) const;
  /// How many more bytes the file can take.
  uint64_t roomFor(const RehearsedFile& file) const;
  /// The file has another size; takes the room or gives it back.
  void resize(RehearsedFile& file, uint64_t size);

 private:
  void giveBack(const std::string& key);
  void giveBackReal(const std::string& path);

  const std::shared_ptr<umsservice::FileSystem> real_;
  std::map<std::string, RehearsedNote> notes_;
  std::map<std::string, std::string> folders_;  ///< keys of folders, by the paths that led there
  std::map<uint64_t, int64_t> freed_;           ///< bytes for each file system, negative for taken ones
  uint64_t lastInode_ = 0;
};

}  // namespace umsctl
