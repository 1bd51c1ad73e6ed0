/// Where the property list with the debug level lies.
#pragma once

#include <string>

#include "StringPaths.h"

namespace umsservice {

/// Beside the program; inside a bundle of the host's among its resources.
inline std::string debugLevelPath(const std::string& folderOfProgram) {
  if (!folderOfProgram.ends_with("/Contents/MacOS")) return joinedPath(folderOfProgram, "DEBUG.plist");
  return joinedPath(stringByDeletingLastPathComponent(folderOfProgram), "Resources/DEBUG.plist");
}

}  // namespace umsservice
