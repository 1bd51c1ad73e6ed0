/// Removal of an item with everything below it.
///
/// Folders nested deeper than a process may have open files are no obstacle: two folders are open at a time.
/// No link is followed, not even one that takes a folder's place during the removal.
#pragma once

#include <string>

namespace umsservice {

/// 0, or the `errno` of the first item that could not be removed; what was removed before stays removed.
int removeTree(const std::string& path);

}  // namespace umsservice
