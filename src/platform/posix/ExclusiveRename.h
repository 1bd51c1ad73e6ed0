/// Renaming that never replaces. POSIX has no such call, so each system's own one is used; file systems of
/// players (FAT among them) may not know it.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

namespace umsservice {

/// 0, or -1 with `errno`; EEXIST when something already has the new name.
int renameWithoutReplacing(const char* from, const char* to);

/// The same for file systems that cannot do it in one step: looks first, then renames.
inline int renameAfterLooking(const char* from, const char* to) {
  struct stat status {};
  if (::lstat(to, &status) == 0) {
    errno = EEXIST;
    return -1;
  }
  if (errno != ENOENT) return -1;  // what cannot be looked at may be there
  return ::rename(from, to);
}

}  // namespace umsservice
