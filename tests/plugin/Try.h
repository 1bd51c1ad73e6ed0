/// Exceptions of the platform, for tests in a language that cannot catch them by class on every system.
#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Runs `body` and gives the name of the exception that left it, or nil.
NSString* nameOfExceptionIn(void (*body)(void*), void* context);

#ifdef __cplusplus
}

template <typename Body>
NSString* exceptionIn(Body body) {
  return nameOfExceptionIn([](void* context) { (*static_cast<Body*>(context))(); }, &body);
}
#endif
