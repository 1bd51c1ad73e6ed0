/// Exceptions of the platform, caught in Objective-C: C++ on some systems can neither see their class nor
/// keep one alive.
///
/// C++ exceptions pass through. Stateless; safe from any thread.
#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Runs `body`. The object that was thrown out of it, which the caller releases; nil when nothing was.
id UMSExceptionIn(void (*body)(void*), void* context);

#ifdef __cplusplus
}

namespace umsplugin {

template <typename Body>
id exceptionIn(Body body) {
  return UMSExceptionIn([](void* context) { (*static_cast<Body*>(context))(); }, &body);
}

}  // namespace umsplugin
#endif
