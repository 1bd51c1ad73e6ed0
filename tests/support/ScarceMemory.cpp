#include "ScarceMemory.h"

#include <new>

namespace {

thread_local bool memoryIsOut = false;

}  // namespace

#ifndef UMS_ALLOCATION_IS_THE_SANITIZERS
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  if (memoryIsOut) return nullptr;
  try {
    return ::operator new(size);
  } catch (...) {
    return nullptr;
  }
}
#endif

namespace umsservice::testing {

ScarceMemory::ScarceMemory() {
  memoryIsOut = true;
}

ScarceMemory::~ScarceMemory() {
  memoryIsOut = false;
}

}  // namespace umsservice::testing
