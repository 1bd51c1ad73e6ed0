/// What surrounds every call that the library makes into the host: an autorelease pool of its own, on a
/// thread that the Objective-C runtime knows.
///
/// The library's worker threads are made by the C++ library; each is announced to the runtime at its first
/// callback and taken back when it ends. The host's own threads are left as they are.
#pragma once

#import <Foundation/Foundation.h>

#include <type_traits>

namespace umsplugin {

/// Makes the calling thread known; costs nothing after the first time.
void announceThread();

/// Runs `body` in a pool and gives its answer, which must not be an autoreleased object. An exception of the
/// host leaves the pool to the one around it, as on the platform: drained here, it would take the exception
/// along.
template <typename Body>
auto inCallback(Body body) {
  announceThread();
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  if constexpr (std::is_void_v<decltype(body())>) {
    body();
    [pool release];
  } else {
    auto answer = body();
    [pool release];
    return answer;
  }
}

}  // namespace umsplugin
