/// The file dictionaries of a listing, made from the listed paths when a host asks for them.
///
/// A host may change such a dictionary, or the array, as any other: it keeps values of its own from then on.
/// Every dictionary keeps the whole listing alive. Safe from any thread.
#pragma once

#include "PathList.h"

namespace umsservice {

/// What the dictionaries hold beside the path.
struct ListedFilesForm {
  enum class FileName { LastComponent, Path, PathOnCard };

  std::string folder;  ///< the listed one: "FilePath" is this, "/" and the path
  FileName fileName = FileName::LastComponent;
  std::optional<uint32_t> diskIndex;  ///< "diskIndex", where there is one
};

/// An array of a dictionary for each path, in their order: "FilePath", "FileName", "diskIndex" where the form
/// has one, and "FileSize" (bytes) where sizes are given, one for each path.
Array listedFiles(ListedFilesForm form, PathList paths, std::vector<uint64_t> sizes = {});

}  // namespace umsservice
