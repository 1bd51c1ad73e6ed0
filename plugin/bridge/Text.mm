#include "bridge/Text.h"

#include <vector>

namespace umsplugin {
namespace {

// A raw byte is a pair of characters: one for its upper four bits, of which the first is set, and one for its
// lower ones.
constexpr char32_t kUpperBits = 0xFDD0;
constexpr char32_t kLowerBits = 0xFDE0;

bool isUpperBits(char32_t character) {
  return character >= kUpperBits + 0x8 && character <= kUpperBits + 0xF;
}

bool isLowerBits(char32_t character) {
  return character >= kLowerBits && character <= kLowerBits + 0xF;
}

struct Decoded {
  char32_t character = 0;
  size_t length = 0;  ///< 0 when no valid sequence begins here
};

/// What a sequence of several bytes gives: no surrogates, nothing above U+10FFFF, no longer form than needed.
Decoded decodeSequence(const std::string& text, size_t at) {
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const auto lead = static_cast<unsigned char>(text[at]);
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() - at < length) return {};
  char32_t character = lead & (0xFFu >> (length + 1));
  for (size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[at + i]);
    if ((next & 0xC0u) != 0x80) return {};
    character = (character << 6) | (next & 0x3Fu);
  }
  const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character < kSmallest[length] || character > 0x10FFFF || isSurrogate) return {};
  return {character, length};
}

void append(std::vector<unichar>& units, char32_t character) {
  if (character < 0x10000) {
    units.push_back(static_cast<unichar>(character));
    return;
  }
  character -= 0x10000;
  units.push_back(static_cast<unichar>(0xD800 + (character >> 10)));
  units.push_back(static_cast<unichar>(0xDC00 + (character & 0x3FF)));
}

void append(std::string& text, char32_t character) {
  auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) return put(character);
  if (character < 0x800) {
    put(0xC0 | (character >> 6));
  } else if (character < 0x10000) {
    put(0xE0 | (character >> 12));
    put(0x80 | ((character >> 6) & 0x3F));
  } else {
    put(0xF0 | (character >> 18));
    put(0x80 | ((character >> 12) & 0x3F));
    put(0x80 | ((character >> 6) & 0x3F));
  }
  put(0x80 | (character & 0x3F));
}

std::vector<unichar> unitsOf(const std::string& text) {
  std::vector<unichar> units;
  units.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const auto byte = static_cast<unsigned char>(text[at]);
    Decoded decoded = byte < 0x80 ? Decoded{byte, 1} : decodeSequence(text, at);
    if (decoded.length == 0 || isUpperBits(decoded.character) || isLowerBits(decoded.character)) {
      append(units, kUpperBits + (byte >> 4));
      decoded = {kLowerBits + (byte & 0xFu), 1};
    }
    append(units, decoded.character);
    at += decoded.length;
  }
  return units;
}

std::string textOf(const std::vector<unichar>& units) {
  std::string text;
  text.reserve(units.size());
  for (size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    if (isUpperBits(character) && i + 1 < units.size() && isLowerBits(units[i + 1])) {
      const char32_t byte = ((character - kUpperBits) << 4) | (units[++i] - kLowerBits);
      text.push_back(static_cast<char>(byte));
      continue;
    }
    if (character >= 0xD800 && character <= 0xDFFF) {
      const char32_t low = i + 1 < units.size() ? units[i + 1] : 0u;
      const bool isPair = character < 0xDC00 && low >= 0xDC00 && low <= 0xDFFF;
      character = isPair ? 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00) : 0xFFFD;
      if (isPair) ++i;
    }
    append(text, character);
  }
  return text;
}

}  // namespace

umsservice::MaybeString toText(id object) {
  if (![object isKindOfClass:[NSString class]]) return std::nullopt;
  NSString* string = object;
  std::vector<unichar> units([string length]);
  [string getCharacters:units.data() range:NSMakeRange(0, units.size())];
  return textOf(units);
}

NSString* toHost(const umsservice::MaybeString& text) {
  return text ? toHostText(*text) : nil;
}

NSString* toHostText(const std::string& text) {
  std::vector<unichar> units = unitsOf(text);
  return [NSString stringWithCharacters:units.data() length:units.size()];
}

}  // namespace umsplugin
