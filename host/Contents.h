/// The FILE arguments of a command as the content list of a request, in the order in which they were given.
#pragma once

#include <string>
#include <vector>

#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsctl {

struct Contents {
  /// Files that cannot be read have their place in the list, but no path: the service counts them as failed
  /// without a look at the device (a file of that name which is there is no conflict with nothing), and the
  /// others go on.
  Contents(umsservice::FileSystem& files, const std::vector<std::string>& arguments);

  umsservice::Array dictionaries;
  std::vector<std::string> names;       ///< as the person wrote them
  std::vector<uint64_t> sizes;          ///< bytes; 0 where not known
  std::vector<std::string> objections;  ///< why a file cannot be read; empty for one that can
};

}  // namespace umsctl
