/// Paths as text, by the desktop platform's path-component rules. Pure functions; no file is looked at.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace umsservice {

/// "/a//b/" gives "/", "a", "b", "/": a separator at either end is a component of its own, runs collapse.
std::vector<std::string> pathComponents(std::string_view path);

/// "/tmp/a.mp3" and "/tmp/a.mp3/" give "a.mp3"; "/" gives "/"; "" gives "".
std::string lastPathComponent(std::string_view path);

/// The text after the last dot of the last component. Empty for "a", "a.", ".a" and "..".
std::string pathExtension(std::string_view path);
/// The same as a part of the path itself.
std::string_view pathExtensionIn(std::string_view path);

/// "/tmp/a" gives "/tmp", "/tmp" gives "/", "a" gives "". Runs of separators collapse: "//a//b/c" gives
/// "/a/b".
std::string stringByDeletingLastPathComponent(std::string_view path);

/// "/tmp/a.b.avi" gives "/tmp/a.b"; ".a" and "a" stay. Runs of separators collapse here too.
std::string stringByDeletingPathExtension(std::string_view path);

/// "%@/%@": nothing is normalised.
std::string joinedPath(std::string_view folder, std::string_view name);

/// Whether a name is hidden on the device: its first character is ".".
bool isHiddenName(std::string_view name);

}  // namespace umsservice
