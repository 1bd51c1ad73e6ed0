#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "ExclusiveRename.h"

namespace umsservice {

int renameWithoutReplacing(const char* from, const char* to) {
  if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return -1;
  // File systems of players (FAT among them) may not know the flag: look first, then rename.
  struct stat status {};
  if (::lstat(to, &status) == 0) {
    errno = EEXIST;
    return -1;
  }
  return ::rename(from, to);
}

}  // namespace umsservice
