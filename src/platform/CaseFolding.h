/// Comparison of names without regard to letter case, over the whole of Unicode.
#pragma once

#include <string_view>

namespace umsservice {

/// Whether two texts are the same but for letter case. Text that is not UTF-8 is compared byte by byte,
/// with ASCII letters folded.
bool equalIgnoringCase(std::string_view left, std::string_view right);

/// Whether `needle` (not empty) occurs anywhere in `text`, by the same comparison.
bool containsIgnoringCase(std::string_view text, std::string_view needle);

/// Byte position of the first occurrence of `needle` in `text` without regard to ASCII letter case; npos
/// when there is none.
size_t findIgnoringAsciiCase(std::string_view text, std::string_view needle);

}  // namespace umsservice
