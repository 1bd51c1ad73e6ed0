#include "podcast/ShownFields.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <sstream>
#include <string_view>
#include <vector>

#include "Amounts.h"

namespace umsctl {
namespace {

constexpr auto kUnknown = "-";

std::optional<unsigned> numberOf(std::string_view text, size_t mostDigits) {
  if (text.empty() || text.size() > mostDigits) return std::nullopt;
  unsigned number = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + static_cast<unsigned>(c - '0');
  }
  return number;
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

std::string dateText(unsigned year, unsigned month, unsigned day) {
  if (month < 1 || month > 12 || day < 1 || day > 31) return kUnknown;
  char text[48];
  std::snprintf(text, sizeof text, "%04u-%02u-%02u", year % 10000, month, day);
  return text;
}

/// 0 for no month.
unsigned monthOf(const std::string& name) {
  constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  auto found = std::find(kMonths.begin(), kMonths.end(), name.substr(0, 3));
  return found == kMonths.end() ? 0 : static_cast<unsigned>(found - kMonths.begin()) + 1;
}

/// "04 Mar 2021", with whatever stands before and behind it.
std::string dateOfMail(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; words.size() < 8 && stream >> word;) words.push_back(word);
  for (size_t i = 1; i + 1 < words.size(); ++i) {
    unsigned month = monthOf(words[i]);
    auto day = numberOf(words[i - 1], 2);
    auto year = numberOf(words[i + 1], 4);
    if (month == 0 || !day || !year) continue;
    // Years of two digits are as old as the format of mail dates.
    unsigned century = words[i + 1].size() > 2 ? 0 : *year < 50 ? 2000 : 1900;
    return dateText(*year + century, month, *day);
  }
  return kUnknown;
}

}  // namespace

std::string shownDate(const std::string& text) {
  auto parts = split(text.substr(0, 10), '-');
  if (parts.size() != 3) return dateOfMail(text);
  auto year = numberOf(parts[0], 4);
  auto month = numberOf(parts[1], 2);
  auto day = numberOf(parts[2], 2);
  return year && month && day ? dateText(*year, *month, *day) : kUnknown;
}

std::string shownDuration(const std::string& text) {
  uint64_t seconds = 0;
  auto parts = split(text, ':');
  if (parts.empty() || parts.size() > 3) return kUnknown;
  for (const std::string& part : parts) {
    auto number = numberOf(part, 7);
    if (!number) return kUnknown;
    seconds = seconds * 60 + *number;
  }
  return durationText(seconds);
}

}  // namespace umsctl
