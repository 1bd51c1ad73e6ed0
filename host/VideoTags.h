/// What a film tells of itself: its length, its size in pixels and how picture and sound are written.
#pragma once

#include <string>

#include "umsservice/Value.h"

namespace umsctl {

/// Whether files of that name are films.
bool mayHaveVideoTags(const std::string& path);

/// Adds what there is; see `TagReader` for the keys. Tags that are there already stay. False when the file
/// has neither pictures nor sound, whatever its name says. Safe from any thread.
bool addVideoTags(const std::string& path, umsservice::Dictionary& entries);

}  // namespace umsctl
