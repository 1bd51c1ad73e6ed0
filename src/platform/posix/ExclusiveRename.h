/// Renaming that never replaces. POSIX has no such call, so each system's own one is used.
#pragma once

namespace umsservice {

/// 0, or -1 with `errno`; EEXIST when something already has the new name.
int renameWithoutReplacing(const char* from, const char* to);

}  // namespace umsservice
