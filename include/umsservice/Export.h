/// Marks what a host may use of the library: everything else stays inside, so that it can change.
#pragma once

/// In front of the name of an exported class, and of an exported function's declaration. Empty for whoever
/// links the library's objects into a product of its own (`UMS_STATIC`) and exports none of it.
#ifdef UMS_STATIC
#define UMS_EXPORT
#else
#define UMS_EXPORT __attribute__((visibility("default")))
#endif

/// In front of the name of a type that an exported class keeps to itself.
#define UMS_HIDDEN __attribute__((visibility("hidden")))
