/// Property-list values of the host as the library's, and back.
///
/// From the host: strings, numbers and null objects are copied; arrays and dictionaries are referred to (see
/// `HostContainers.h`); every other object passes through untouched. A number keeps the width and signedness
/// that its class tells; one that only the platform can write stays its own object.
/// To the host: what came from the host is the same object again. An array or dictionary that the library
/// made becomes a mutable copy, or a view (see `LiveContainers.h`) where it is shared or too long to copy
/// each time. Objects given are autoreleased. Safe from any thread.
#pragma once

#import <Foundation/Foundation.h>

#include "umsservice/Value.h"

namespace umsplugin {

umsservice::Value toValue(id object);
/// Nil for a nil value.
id toHost(const umsservice::Value& value);
/// The same, with a view of an array or dictionary that the library made.
id toHostView(const umsservice::Value& value);

/// Absent for nil and for an object of another class.
umsservice::MaybeArray toArray(id object);
umsservice::MaybeDictionary toDictionary(id object);
NSMutableArray* toHost(const umsservice::MaybeArray& array);
NSMutableDictionary* toHost(const umsservice::MaybeDictionary& dictionary);

/// Null for nil and for an object that is no data.
std::shared_ptr<const umsservice::Data> toData(id object);
NSData* toHost(const std::shared_ptr<const umsservice::Data>& data);

}  // namespace umsplugin
