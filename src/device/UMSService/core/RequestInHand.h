/// Marks the calling thread as being in the middle of a request, or of a callback of one.
///
/// Such a thread never waits for a worker when it lets go of a service: two services that let go of each
/// other at once would wait for ever, and so would a release by the thread that a worker waits for.
#pragma once

namespace umsservice {

class RequestInHand {
 public:
  RequestInHand() { ++count_; }
  ~RequestInHand() { --count_; }
  RequestInHand(const RequestInHand&) = delete;
  RequestInHand& operator=(const RequestInHand&) = delete;

  /// Of any service, on the calling thread.
  static bool isAny() { return count_ > 0; }

 private:
  static inline thread_local int count_ = 0;
};

}  // namespace umsservice
