/// Names as they may be shown. A file name comes from a device or a download and may hold anything: bytes
/// that drive the terminal, line ends that fake a message, text that reorders what stands around it.
#pragma once

#include <string>
#include <string_view>

namespace umsctl {

/// The text with control characters, invalid UTF-8 and invisible direction marks written as escapes
/// ("\n", "\x1b", "\u{202e}"); a backslash is doubled, so that no two names look the same.
std::string escaped(std::string_view text);

/// The text cut to a number of terminal columns, with "..." where something is left out. Takes text that is
/// already escaped, in any script; the result never runs over.
std::string shortened(const std::string& text, size_t columns);

/// The same with the end kept: of a path, that tells more.
std::string shortenedAtFront(const std::string& text, size_t columns);

/// The columns that escaped text takes at most.
size_t columnsOf(std::string_view text);

}  // namespace umsctl
