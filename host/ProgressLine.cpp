#include "ProgressLine.h"

#include <algorithm>

#include "Amounts.h"
#include "EscapedName.h"

namespace umsctl {
namespace {

constexpr size_t kColumnsForABar = 70;

std::string bar(double fraction) {
  constexpr size_t kWidth = 20;
  std::string shape(static_cast<size_t>(fraction * kWidth), '=');
  if (shape.size() < kWidth) shape += '>';
  shape.resize(kWidth, ' ');
  return "[" + shape + "]";
}

std::string percentText(double fraction) {
  std::string percent = std::to_string(static_cast<int>(fraction * 100));
  return std::string(4 - std::min<size_t>(4, percent.size()), ' ') + percent + "%";
}

std::string rateText(const TransferTally& tally, double bytesPerSecond) {
  if (bytesPerSecond < 1) return "";
  uint64_t left = tally.totalBytes() - std::min(tally.totalBytes(), tally.passedBytes());
  auto seconds = static_cast<uint64_t>(static_cast<double>(left) / bytesPerSecond);
  return "  " + byteText(static_cast<uint64_t>(bytesPerSecond)) + "/s  " + durationText(seconds) + " left";
}

}  // namespace

std::string progressLine(const TransferTally& tally, double bytesPerSecond, const std::string& name,
                         size_t columns) {
  double fraction = tally.fraction();
  std::string line = columns >= kColumnsForABar ? bar(fraction) : "";
  line += percentText(fraction) + "  ";
  if (tally.totalBytes() > 0) {
    line += byteText(tally.passedBytes()) + " of " + byteText(tally.totalBytes());
    line += rateText(tally, bytesPerSecond) + "  ";
  }
  line += std::to_string(tally.counted()) + "/" + std::to_string(tally.items());
  if (!name.empty()) line += "  " + name;
  return shortened(line, columns);
}

}  // namespace umsctl
