/// Bytes, seconds and numbers of things in words.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace umsctl {

/// "512 B", "12.9 kB", "1.2 GB": decimal units, as players and cards are sold.
std::string byteText(uint64_t bytes);

/// "1 file", "2 files".
std::string countText(size_t count, const std::string& what);

/// "0:07", "12:05", "1:02:45".
std::string durationText(uint64_t seconds);

}  // namespace umsctl
