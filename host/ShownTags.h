/// Tags in words, as listings show them. See `TagReader` for what there is.
#pragma once

#include <string>

#include "umsservice/Value.h"

namespace umsctl {

enum class ShownTag {
  Title,
  Artist,
  Album,
  Genre,
  TrackNumber,
  Year,
  Duration,  ///< "1:02:45"
  Pixels,    ///< "4000x3000"
  DateTaken,
  Camera,
  Codecs,  ///< "AVC, AAC"
};

/// Escaped; empty where the file does not have it.
std::string shownTag(const umsservice::MaybeDictionary& tags, ShownTag tag);

}  // namespace umsctl
