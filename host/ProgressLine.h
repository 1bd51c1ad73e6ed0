/// The one line that shows a running transfer: bar, percent, bytes, rate, time left, files, current name.
#pragma once

#include <string>

#include "TransferTally.h"

namespace umsctl {

/// `bytesPerSecond` 0 leaves rate and time out. `name` is escaped already. The line takes at most so many
/// columns; in a narrow terminal the bar goes first, then the end of the name.
std::string progressLine(const TransferTally& tally, double bytesPerSecond, const std::string& name,
                         size_t columns);

}  // namespace umsctl
