#include "Utf8.h"

namespace umsctl {
namespace {

struct Lead {
  size_t length;
  unsigned bits;      ///< those of the lead byte that belong to the number
  char32_t smallest;  ///< that needs this many bytes
};

std::optional<Lead> leadOf(unsigned char byte) {
  if (byte < 0x80) return Lead{1, byte, 0};
  if (byte >= 0xc2 && byte <= 0xdf) return Lead{2, byte & 0x1fu, 0x80};
  if (byte >= 0xe0 && byte <= 0xef) return Lead{3, byte & 0x0fu, 0x800};
  if (byte >= 0xf0 && byte <= 0xf4) return Lead{4, byte & 0x07u, 0x10000};
  return std::nullopt;
}

}  // namespace

Utf8Step utf8StepAt(std::string_view text, size_t at) {
  auto lead = leadOf(static_cast<unsigned char>(text[at]));
  if (!lead || at + lead->length > text.size()) return {};
  char32_t codePoint = lead->bits;
  for (size_t i = 1; i < lead->length; ++i) {
    auto byte = static_cast<unsigned char>(text[at + i]);
    if ((byte & 0xc0u) != 0x80u) return {};
    codePoint = (codePoint << 6) | (byte & 0x3fu);
  }
  bool isSurrogate = codePoint >= 0xd800 && codePoint <= 0xdfff;
  if (codePoint < lead->smallest || isSurrogate || codePoint > 0x10ffff) return {};
  return {codePoint, lead->length};
}

bool isUtf8(std::string_view text) {
  for (size_t at = 0; at < text.size();) {
    Utf8Step step = utf8StepAt(text, at);
    if (!step.codePoint) return false;
    at += step.length;
  }
  return true;
}

}  // namespace umsctl
