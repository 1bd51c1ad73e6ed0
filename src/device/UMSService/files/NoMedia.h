/// The no-media rule: a folder that holds a ".nomedia" marker contributes no media.
///
/// Pure functions on lists of paths. The test is a plain prefix of the marker's folder, without a look at
/// the separator behind it: hosts rely on a marker in "Music/Old" hiding "Music/Oldies" too, and on one at
/// the top of a listing hiding everything.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "umsservice/Value.h"

namespace umsservice {

/// Whether a name (any letter case) marks its folder.
bool isNoMediaMarker(std::string_view name);

/// The folders of a list of markers, ready to be asked about many paths. Asking costs the logarithm of the
/// number of folders, and less for a path that lies where the one before it did. For one thread.
class NoMediaFolders {
 public:
  explicit NoMediaFolders(const std::vector<std::string>& markers);
  /// Whether a path begins with one of the folders.
  bool hides(std::string_view path);

 private:
  bool isBetween(std::string_view path) const;

  std::vector<std::string> folders_;  ///< sorted; none is a prefix of another
  size_t after_ = 0;                  ///< the first folder behind the path that was asked about last
};

/// True keeps the path. Nil is dropped; without markers every path is kept.
bool checkNoMedia(const MaybeString& path, const MaybeArray& nomediaList);

/// A new array of every path that is kept, in the given order.
Array removeFileListByNoMedia(const MaybeArray& paths, const MaybeArray& nomediaList);

}  // namespace umsservice
