/// The front cover inside a music file. Each format keeps it in its own way.
#pragma once

#include <tfile.h>

#include <optional>

#include "umsservice/Value.h"

namespace umsctl {

/// The bytes of the picture as they stand in the file (JPEG, PNG or another format): the front cover, or the
/// first picture where none is marked as such. Pictures of more than 32 MiB count as none.
std::optional<umsservice::Data> albumArtOf(TagLib::File& file);

}  // namespace umsctl
