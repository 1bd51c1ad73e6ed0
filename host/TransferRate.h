/// Bytes per second over the last few seconds. Used by one thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>

namespace umsctl {

class TransferRate {
 public:
  using Clock = std::chrono::steady_clock;

  /// Notes that `bytes` have been sent in all up to `now`.
  void note(Clock::time_point now, uint64_t bytes) {
    samples_.push_back({now, bytes});
    while (samples_.size() > 2 && now - samples_.front().when > kWindow) samples_.pop_front();
  }

  /// 0 until enough time has passed to tell.
  double perSecond() const {
    if (samples_.size() < 2) return 0;
    std::chrono::duration<double> time = samples_.back().when - samples_.front().when;
    if (time.count() < kShortest) return 0;
    return static_cast<double>(samples_.back().bytes - samples_.front().bytes) / time.count();
  }

  /// Begins anew, as after a pause in which nothing could be sent.
  void restart() { samples_.clear(); }

 private:
  static constexpr std::chrono::seconds kWindow{8};
  static constexpr double kShortest = 0.3;  ///< seconds

  struct Sample {
    Clock::time_point when;
    uint64_t bytes;
  };
  std::deque<Sample> samples_;
};

}  // namespace umsctl
