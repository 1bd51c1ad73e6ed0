/// Walking over text that claims to be UTF-8; file names may hold any bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace umsctl {

/// One step of the walk.
struct Utf8Step {
  std::optional<char32_t> codePoint;  ///< absent for a byte that belongs to no valid sequence
  size_t length = 1;                  ///< bytes; always at least 1
};

/// Decodes what begins at a position inside the text. Overlong forms, surrogates and numbers beyond Unicode
/// are not valid.
Utf8Step utf8StepAt(std::string_view text, size_t at);

/// Whether all of the text is valid UTF-8.
bool isUtf8(std::string_view text);

}  // namespace umsctl
