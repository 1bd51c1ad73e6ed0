/// The walk over a whole volume: every file with path, name and size, level by level.
///
/// Runs on the caller's thread without locks; safe from any thread. Each folder is listed once and never
/// entered twice; links to folders are not entered, so a scan stays on its volume. Folders that cannot be
/// listed count as empty.
#pragma once

#include <deque>
#include <set>
#include <utility>

#include "ServiceContext.h"

namespace umsservice {

class DeviceScan {
 public:
  explicit DeviceScan(const ServiceContext& context) : context_(context), files_(context.files()) {}

  /// Scans the volume of an index; nil for an unknown one, while the service shuts down, and for no file.
  MaybeArray subpathsAtDisk(uint32_t diskIndex, bool skipNoMedia) const;

  /// Dictionaries "FilePath", "FileName", "FileSize" of every file below a folder, or nil when there is none.
  /// With the flag, hidden entries are passed over and a folder contributes no file when it holds a
  /// ".nomedia" marker; the folders met before the marker in that listing are scanned all the same.
  MaybeArray fileScan(const std::string& folder, bool skipNoMedia) const;

 private:
  struct Walk;

  void scanFolder(const std::string& subpath, Walk& walk) const;
  void examine(FolderHandle& folder, const std::string& prefix, const DirectoryEntry& entry, bool isMarked,
               Walk& walk) const;

  bool isSymbolicLink(const std::string& path) const;

  const ServiceContext& context_;
  FileSystem& files_;
};

/// Whether any component of a path begins with ".". The listings pass paths relative to what they list, so
/// that a hidden mount point hides nothing.
bool isHiddenFile(std::string_view path);

}  // namespace umsservice
