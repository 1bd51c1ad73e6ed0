#include "CaseFolding.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

namespace umsservice {
namespace {

char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameAscii(char left, char right) {
  return lowered(left) == lowered(right);
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

struct FreeMemory {
  void operator()(utf8proc_uint8_t* memory) const { std::free(memory); }
};

/// The text case-folded; null when it is not UTF-8.
std::unique_ptr<utf8proc_uint8_t, FreeMemory> folded(std::string_view text, utf8proc_ssize_t& length) {
  utf8proc_uint8_t* result = nullptr;
  length = utf8proc_map(
      reinterpret_cast<const utf8proc_uint8_t*>(text.data()), static_cast<utf8proc_ssize_t>(text.size()),
      &result, static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD));
  if (length < 0) return nullptr;
  return std::unique_ptr<utf8proc_uint8_t, FreeMemory>(result);
}

bool equalIgnoringAsciiCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(), sameAscii);
}

}  // namespace

bool equalIgnoringCase(std::string_view left, std::string_view right) {
  if (equalIgnoringAsciiCase(left, right)) return true;
  if (isAscii(left) && isAscii(right)) return false;
  utf8proc_ssize_t leftLength = 0;
  utf8proc_ssize_t rightLength = 0;
  auto leftFolded = folded(left, leftLength);
  auto rightFolded = folded(right, rightLength);
  if (!leftFolded || !rightFolded || leftLength != rightLength) return false;
  return std::equal(leftFolded.get(), leftFolded.get() + leftLength, rightFolded.get());
}

bool containsIgnoringCase(std::string_view text, std::string_view needle) {
  if (needle.empty()) return false;
  if (findIgnoringAsciiCase(text, needle) != std::string_view::npos) return true;
  if (isAscii(text) && isAscii(needle)) return false;
  utf8proc_ssize_t textLength = 0;
  utf8proc_ssize_t needleLength = 0;
  auto textFolded = folded(text, textLength);
  auto needleFolded = folded(needle, needleLength);
  if (!textFolded || !needleFolded) return false;
  const utf8proc_uint8_t* first = textFolded.get();
  const utf8proc_uint8_t* sought = needleFolded.get();
  return std::search(first, first + textLength, sought, sought + needleLength) != first + textLength;
}

size_t findIgnoringAsciiCase(std::string_view text, std::string_view needle) {
  auto found = std::search(text.begin(), text.end(), needle.begin(), needle.end(), sameAscii);
  return found == text.end() && !needle.empty() ? std::string_view::npos
                                                : static_cast<size_t>(found - text.begin());
}

}  // namespace umsservice
