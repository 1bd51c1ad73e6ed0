/// The full path of a file that is to be placed under a name in a folder.
#pragma once

#include "umsservice/Value.h"

namespace umsservice {

/// "folder/name"; nil when it cannot be formed. Names that lead back to a folder ("", "." and "..", also at
/// the end of a longer name) are no file's name: replacing what they lead to would cost the folder.
MaybeString targetPath(const MaybeString& folder, const std::string& name);

}  // namespace umsservice
