// Looks for feeds that crash the reader, hang it, or break what holds for all of them.
//
//   cmake --preset fuzz && cmake --build --preset fuzz
//   build/fuzz/fuzz/fuzz_feed -max_total_time=600 fuzz/corpus/feed
#include <cstdio>
#include <cstdlib>

#include "FeedProperties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string broken =
      umsservice::fuzzing::brokenFeedProperty(std::string_view(reinterpret_cast<const char*>(data), size));
  if (broken.empty()) return 0;
  std::fprintf(stderr, "does not hold: %s\n", broken.c_str());
  std::abort();
}
