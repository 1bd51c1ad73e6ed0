#include "ExclusiveRename.h"

namespace umsservice {

int renameWithoutReplacing(const char* from, const char* to) {
  if (::renamex_np(from, to, RENAME_EXCL) == 0) return 0;
  if (errno != ENOTSUP && errno != EINVAL) return -1;
  return renameAfterLooking(from, to);
}

}  // namespace umsservice
