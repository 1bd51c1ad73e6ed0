#include <fcntl.h>

#include "ExclusiveRename.h"

namespace umsservice {

int renameWithoutReplacing(const char* from, const char* to) {
  if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return -1;
  return renameAfterLooking(from, to);
}

}  // namespace umsservice
