/// The tags of one media file of any kind, read in this process. A file that is broken in just the wrong way
/// may bring the readers' libraries down, and the process with them; see `TagProcess`.
#pragma once

#include <string>

#include "umsservice/Value.h"

namespace umsctl {

/// See `TagReader` for the keys; without the file's name, path and size. Empty for a kind that nobody reads;
/// nothing for a file that is not what its name says.
umsservice::MaybeDictionary fileTags(const std::string& path);

}  // namespace umsctl
