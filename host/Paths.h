/// Paths as a person types them.
#pragma once

#include <string>

namespace umsctl {

/// The full path: a relative one counts from the working folder. Without "." and ".." where they lead through
/// folders that are there, so that links mean what they mean to the system; a slash at the end stays. An
/// empty path stays empty.
std::string absolutePath(const std::string& path);

/// The path without slashes at its end; "/" stays.
std::string withoutTrailingSlashes(const std::string& path);

/// What stands behind the last slash, slashes at the end not counted; empty for "/" and "".
std::string lastComponent(const std::string& path);

/// What stands behind the last dot of the last component, in small ASCII letters; empty where there is no
/// dot.
std::string extensionOf(const std::string& path);

/// The path of something in a folder.
std::string inFolder(const std::string& folder, const std::string& name);

/// The order in which paths are shown, by components: everything in "a" comes before "a b", although a blank
/// sorts before a slash.
bool comesBefore(const std::string& one, const std::string& other);

}  // namespace umsctl
