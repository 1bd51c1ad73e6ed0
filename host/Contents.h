/// The FILE arguments of a command as the content list of a request, in the order in which they were given.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "Errand.h"
#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsctl {

/// Why a file (by its full path) cannot take part; empty for one that can.
using Objection = std::function<std::string(umsservice::FileSystem& files, const std::string& path)>;

/// For commands that read their files: it must be an ordinary one that opens.
std::string whyUnreadable(umsservice::FileSystem& files, const std::string& path);

struct Contents {
  /// Files with an objection have their place in the list, but no path: the service counts them as failed
  /// without a look at the device (a file of that name which is there is no conflict with nothing), and the
  /// others go on.
  /// Looks at each; a person may interrupt that.
  Contents(const Errand& errand, umsservice::FileSystem& files, const std::vector<std::string>& arguments,
           const Objection& objection = whyUnreadable);

  /// Whether a full path is in the list.
  bool has(const std::string& path) const { return known.count(path) > 0; }

  umsservice::Array dictionaries;
  std::vector<std::string> names;       ///< as the person wrote them
  std::vector<std::string> paths;       ///< full
  std::set<std::string> known;          ///< the same paths, for looking one up
  std::vector<uint64_t> sizes;          ///< bytes; 0 where not known
  std::vector<std::string> objections;  ///< why a file cannot take part; empty for one that can
};

}  // namespace umsctl
