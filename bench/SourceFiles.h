/// The files that the workers copy.
#pragma once

#include <string>
#include <vector>

#include "umsservice/FileSystem.h"

namespace umsservice::bench {

struct SourceFile {
  std::string path;
  std::string name;  ///< its way from the folder that was asked for
};

/// All files below a folder, or the one file that is named.
std::vector<SourceFile> sourceFiles(FileSystem& files, const std::string& source);

}  // namespace umsservice::bench
