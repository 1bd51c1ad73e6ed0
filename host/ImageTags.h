/// What a picture tells of itself: its size in pixels, when it was taken, and with which camera.
#pragma once

#include <string>

#include "umsservice/Value.h"

namespace umsctl {

/// Whether files of that name are of a kind that can be read.
bool mayHaveImageTags(const std::string& path);

/// Adds what there is; see `TagReader` for the keys. False when the file is no such picture, whatever its
/// name says. Throws for some of the files that are broken. Safe from any thread.
bool addImageTags(const std::string& path, umsservice::Dictionary& entries);

}  // namespace umsctl
