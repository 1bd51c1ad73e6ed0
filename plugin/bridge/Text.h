/// Texts of the host as the library's, and back.
///
/// The library's texts are bytes, UTF-8 but for file names that some device wrote in another encoding. Each
/// byte that is no part of valid UTF-8 becomes a pair of characters on the host's side, one of U+FDD8 to
/// U+FDDF and one of U+FDE0 to U+FDEF, and the same byte again on the way back, so that a host can list, copy
/// and delete such a file like any other. Unicode keeps these characters out of every text, so a host's own
/// text never holds such a pair. Those characters themselves, should a name hold them, travel as their three
/// bytes in the same way: whatever the device says comes back unchanged. Stateless; safe from any thread.
#pragma once

#import <Foundation/Foundation.h>

#include <string>

#include "umsservice/Value.h"

namespace umsplugin {

/// Absent for nil and for an object that is no string. Half a surrogate pair becomes U+FFFD.
umsservice::MaybeString toText(id object);

/// Autoreleased; nil for absent text.
NSString* toHost(const umsservice::MaybeString& text);
/// Autoreleased, never nil.
NSString* toHostText(const std::string& text);

}  // namespace umsplugin
