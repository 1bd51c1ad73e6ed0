/// The tags of a sound, as it stands in the file.
#pragma once

#include <string>

#include "umsservice/Value.h"

namespace umsctl {

/// Whether files of that name are of a kind that may have such tags.
bool mayHaveMusicTags(const std::string& path);

/// Adds what there is; see `TagReader` for the keys. False when there is neither a tag nor a playing time:
/// then it is no media file, whatever its name says.
bool addMusicTags(const std::string& path, umsservice::Dictionary& entries);

}  // namespace umsctl
