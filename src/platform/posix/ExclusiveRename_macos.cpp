#include <cstdio>

#include "ExclusiveRename.h"

namespace umsservice {

int renameWithoutReplacing(const char* from, const char* to) {
  return ::renamex_np(from, to, RENAME_EXCL);
}

}  // namespace umsservice
