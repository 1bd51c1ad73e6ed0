/// Which media type a file is, by its extension. Pure functions over fixed lists.
#pragma once

#include <string>
#include <vector>

#include "umsservice/ServiceInfo.h"

namespace umsservice {

/// The extensions of one media type, lower-case and without the dot; empty for a type that has no list.
const std::vector<std::string>& extensionsOf(int32_t mediaType);

/// Whether an extension is in a list, in any letter case. A first element "*" accepts every extension.
bool checkContentWithExtentions(const MaybeString& extension, const MaybeArray& extLists);
bool checkContentWithExtentions(std::string_view extension, const std::vector<std::string>& extLists);

/// The media type of a file path or name; 0 when no list has its extension. Podcasts are told by their index
/// file, so only "xml" is one.
int32_t mediaTypeOf(const std::string& path);

}  // namespace umsservice
