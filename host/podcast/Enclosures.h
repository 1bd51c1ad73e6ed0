/// Which downloaded file belongs to an episode of a feed: the one that is called like the last part of the
/// enclosure's address.
///
/// Addresses come from the network: a name that could lead out of the folder belongs to no file.
#pragma once

#include <optional>
#include <string>

#include "umsservice/FileSystem.h"

namespace umsctl {

/// The names that a download of an address may have: as the address means it, and as it is written ("a b.mp3"
/// and "a%20b.mp3"). Without query and fragment; empty where the address ends in no name for a file.
std::vector<std::string> downloadNames(const std::string& url);

/// Full path of the download of an address in a folder; nothing when it is not there.
std::optional<std::string> downloadOf(umsservice::FileSystem& files, const std::string& folder,
                                      const std::string& url);

}  // namespace umsctl
