#include "EscapedName.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdio>

#include "Utf8.h"

namespace umsctl {
namespace {

std::string formatted(const char* format, unsigned number) {
  char text[16];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

/// Marks that show nothing themselves and change how their neighbours are shown.
bool isInvisibleMark(char32_t codePoint) {
  return (codePoint >= 0x200b && codePoint <= 0x200f) || (codePoint >= 0x2028 && codePoint <= 0x202e) ||
         (codePoint >= 0x2060 && codePoint <= 0x206f) || codePoint == 0x061c || codePoint == 0xfeff ||
         (codePoint >= 0xfff9 && codePoint <= 0xfffb) || (codePoint >= 0xe0000 && codePoint <= 0xe007f);
}

std::string escapedCodePoint(char32_t codePoint, std::string_view bytes) {
  switch (codePoint) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    case '\\':
      return "\\\\";
    default:
      break;
  }
  if (codePoint < 0x20 || codePoint == 0x7f) return formatted("\\x%02x", codePoint);
  bool isControl = codePoint >= 0x80 && codePoint <= 0x9f;
  if (isControl || isInvisibleMark(codePoint)) return formatted("\\u{%04x}", codePoint);
  return std::string(bytes);
}

/// Marks above letters take no column. What this table of characters does not know yet may be wide; better
/// one column too many than a broken line, and so with the mark that turns a plain sign into a wide picture.
size_t columnsOfCodePoint(char32_t codePoint) {
  constexpr char32_t kAsPicture = 0xfe0f;
  if (codePoint < 0x300) return 1;
  if (codePoint == kAsPicture) return 1;
  auto number = static_cast<utf8proc_int32_t>(codePoint);
  if (utf8proc_category(number) == UTF8PROC_CATEGORY_CN) return 2;
  return static_cast<size_t>(std::max(0, utf8proc_charwidth(number)));
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string shown;
  for (size_t at = 0; at < text.size();) {
    Utf8Step step = utf8StepAt(text, at);
    std::string_view bytes = text.substr(at, step.length);
    if (step.codePoint) {
      shown += escapedCodePoint(*step.codePoint, bytes);
    } else {
      shown += formatted("\\x%02x", static_cast<unsigned char>(bytes.front()));
    }
    at += step.length;
  }
  return shown;
}

size_t columnsOf(std::string_view text) {
  size_t columns = 0;
  for (size_t at = 0; at < text.size();) {
    Utf8Step step = utf8StepAt(text, at);
    columns += columnsOfCodePoint(step.codePoint.value_or('?'));
    at += step.length;
  }
  return columns;
}

std::string shortened(const std::string& text, size_t columns) {
  constexpr std::string_view kMark = "...";
  if (columnsOf(text) <= columns) return text;
  if (columns < kMark.size()) return std::string(columns, '.');
  size_t taken = 0;
  size_t at = 0;
  while (at < text.size()) {
    Utf8Step step = utf8StepAt(text, at);
    size_t wide = columnsOfCodePoint(step.codePoint.value_or('?'));
    if (taken + wide > columns - kMark.size()) break;
    taken += wide;
    at += step.length;
  }
  return text.substr(0, at) + std::string(kMark);
}

std::string shortenedAtFront(const std::string& text, size_t columns) {
  constexpr std::string_view kMark = "...";
  size_t left = columnsOf(text);
  if (left <= columns) return text;
  if (columns < kMark.size()) return std::string(columns, '.');
  size_t at = 0;
  while (left > columns - kMark.size()) {
    Utf8Step step = utf8StepAt(text, at);
    left -= columnsOfCodePoint(step.codePoint.value_or('?'));
    at += step.length;
  }
  return std::string(kMark) + text.substr(at);
}

}  // namespace umsctl
