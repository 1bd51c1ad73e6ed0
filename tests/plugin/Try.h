/// What Objective-C has and the language of the tests has not on every system: exceptions that are caught by
/// class, and loops over a collection.
#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Runs `body` and gives the name of the exception that left it, or nil.
NSString* nameOfExceptionIn(void (*body)(void*), void* context);
/// What a `for (... in collection)` comes past.
NSArray* seenInLoop(id collection);

#ifdef __cplusplus
}

template <typename Body>
NSString* exceptionIn(Body body) {
  return nameOfExceptionIn([](void* context) { (*static_cast<Body*>(context))(); }, &body);
}
#endif
