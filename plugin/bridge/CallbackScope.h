/// What surrounds every call that the library makes into the host: an autorelease pool of its own, on a
/// thread that the Objective-C runtime knows.
///
/// The library's worker threads are made by the C++ library; each is announced to the runtime at its first
/// callback and taken back when it ends. The host's own threads are left as they are.
#pragma once

#import <Foundation/Foundation.h>

#include <optional>
#include <type_traits>

#include "umsservice/Value.h"

namespace umsplugin {

/// Runs `body` in a pool. An exception of the host outlives the pool and is thrown on behind it; on a worker,
/// where no pool is left then, it lives until somebody has asked for its reason.
void inPool(void (*body)(void*), void* context);

/// Runs `body` in a pool and gives its answer, which must not be an autoreleased object.
template <typename Body>
auto inCallback(Body body) {
  using Answer = decltype(body());
  if constexpr (std::is_void_v<Answer>) {
    inPool([](void* context) { (*static_cast<Body*>(context))(); }, &body);
  } else {
    std::optional<Answer> answer;
    auto keeping = [&] { answer.emplace(body()); };
    inPool([](void* context) { (*static_cast<decltype(keeping)*>(context))(); }, &keeping);
    return Answer(std::move(*answer));
  }
}

/// Called while an exception is being handled: the words of one of the host's, absent for another. The
/// exception is gone afterwards and cannot be thrown on.
umsservice::MaybeString reasonOfHandledException();

}  // namespace umsplugin
