/// umsctl ls --long: the media of one type on one volume as a table, with what matters for that type.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "umsservice/Value.h"

namespace umsctl {

/// One file of a listing.
struct Listed {
  std::string path;
  uint64_t size = 0;
  umsservice::MaybeDictionary tags;  ///< nothing where they were not asked for or cannot be read
};

/// The table with an empty line below; nothing where there are no files. Paths are shown from the volume on.
/// Without a width, as where the output is no screen, nothing is shortened.
std::string longListing(uint32_t mediaType, const std::vector<Listed>& files, const std::string& volumePath,
                        std::optional<size_t> width, bool hasColour);

}  // namespace umsctl
