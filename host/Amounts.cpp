#include "Amounts.h"

#include <cstdio>

namespace umsctl {

std::string byteText(uint64_t bytes) {
  constexpr const char* kUnits[] = {"kB", "MB", "GB", "TB", "PB", "EB"};
  if (bytes < 1000) return std::to_string(bytes) + " B";
  double amount = static_cast<double>(bytes) / 1000;
  size_t unit = 0;
  while (amount >= 999.95 && unit + 1 < std::size(kUnits)) {  // what would be shown as 1000.0
    amount /= 1000;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %s", amount, kUnits[unit]);
  return text;
}

std::string durationText(uint64_t seconds) {
  char text[48];
  auto hours = static_cast<unsigned long long>(seconds / 3600);
  auto minutes = static_cast<unsigned>(seconds / 60 % 60);
  auto rest = static_cast<unsigned>(seconds % 60);
  if (hours > 0) {
    std::snprintf(text, sizeof text, "%llu:%02u:%02u", hours, minutes, rest);
  } else {
    std::snprintf(text, sizeof text, "%u:%02u", minutes, rest);
  }
  return text;
}

std::string countText(size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace umsctl
