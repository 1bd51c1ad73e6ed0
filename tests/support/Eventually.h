/// Waiting for what another thread does, where nothing announces it.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace umsservice::testing {

/// Looks at a condition until it holds; false after ten seconds. A passing test never waits that long.
inline bool eventually(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace umsservice::testing
