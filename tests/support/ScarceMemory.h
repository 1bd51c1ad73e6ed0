/// An allocation that fails on purpose: the one that answers null instead of throwing.
#pragma once

#include <gtest/gtest.h>

#ifdef __has_feature
#if __has_feature(thread_sanitizer)
#define UMS_ALLOCATION_IS_THE_SANITIZERS 1
#endif
#endif

namespace umsservice::testing {

/// While one lives, its thread gets no memory that way.
class ScarceMemory {
 public:
  ScarceMemory();
  ~ScarceMemory();
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;
};

}  // namespace umsservice::testing

// This compiler's thread sanitizer brings the operator itself and lets nobody replace it.
#ifdef UMS_ALLOCATION_IS_THE_SANITIZERS
#define REQUIRE_SCARCE_MEMORY() GTEST_SKIP() << "allocations belong to the sanitizer here"
#else
#define REQUIRE_SCARCE_MEMORY() static_cast<void>(0)
#endif
