#include "bridge/HostContainers.h"

#include <algorithm>

#include "bridge/CallbackScope.h"
#include "bridge/Text.h"
#include "bridge/Values.h"

using umsservice::Value;

namespace umsplugin {
namespace {

/// What stands for a value inside a container of the host, where nil cannot be stored.
id elementOf(const Value& value) {
  id object = toHost(value);
  return object ? object : [NSNull null];
}

}  // namespace

HostArray::~HostArray() {
  inCallback([this] { [array_ release]; });
}

size_t HostArray::count() const {
  return inCallback([this] {
    @synchronized(array_) {
      return static_cast<size_t>([array_ count]);
    }
  });
}

Value HostArray::at(size_t index) const {
  return inCallback([&] {
    @synchronized(array_) {
      return index < [array_ count] ? toValue([array_ objectAtIndex:index]) : Value();
    }
  });
}

NSMutableArray* HostArray::changeable() {
  if (![array_ isKindOfClass:[NSMutableArray class]]) {
    NSArray* before = array_;
    array_ = [before mutableCopy];
    [before autorelease];
  }
  return static_cast<NSMutableArray*>(array_);
}

void HostArray::append(Value value) {
  inCallback([&] {
    @synchronized(array_) {
      [changeable() addObject:elementOf(value)];
    }
  });
}

void HostArray::removeAt(size_t index) {
  inCallback([&] {
    @synchronized(array_) {
      if (index < [array_ count]) [changeable() removeObjectAtIndex:index];
    }
  });
}

void HostArray::assign(std::vector<Value> values) {
  inCallback([&] {
    @synchronized(array_) {
      NSMutableArray* changed = changeable();
      [changed removeAllObjects];
      for (const Value& value : values) [changed addObject:elementOf(value)];
    }
  });
}

std::vector<Value> HostArray::snapshot() const {
  return inCallback([this] {
    std::vector<Value> values;
    @synchronized(array_) {
      const size_t count = [array_ count];
      values.reserve(count);
      for (size_t i = 0; i < count; ++i) values.push_back(toValue([array_ objectAtIndex:i]));
    }
    return values;
  });
}

HostDictionary::~HostDictionary() {
  inCallback([this] { [dictionary_ release]; });
}

Value HostDictionary::get(std::string_view key) const {
  return inCallback([&] {
    @synchronized(dictionary_) {
      return toValue([dictionary_ objectForKey:toHostText(std::string(key))]);
    }
  });
}

void HostDictionary::set(std::string_view key, Value value) {
  inCallback([&] {
    @synchronized(dictionary_) {
      if (![dictionary_ isKindOfClass:[NSMutableDictionary class]]) {
        NSDictionary* before = dictionary_;
        dictionary_ = [before mutableCopy];
        [before autorelease];
      }
      auto* changed = static_cast<NSMutableDictionary*>(dictionary_);
      NSString* name = toHostText(std::string(key));
      if (value.isNil()) {
        [changed removeObjectForKey:name];
      } else {
        [changed setObject:elementOf(value) forKey:name];
      }
    }
  });
}

std::vector<std::string> HostDictionary::keys() const {
  return inCallback([this] {
    std::vector<std::string> names;
    @synchronized(dictionary_) {
      NSEnumerator* keys = [dictionary_ keyEnumerator];
      while (id key = [keys nextObject]) {
        if (auto name = toText(key)) names.push_back(*name);
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  });
}

HostObject::~HostObject() {
  inCallback([this] { [object_ release]; });
}

std::string HostObject::description() const {
  return inCallback([this] { return toText([object_ description]).value_or(""); });
}

bool HostObject::isEqual(const ForeignObject& other) const {
  const auto* host = dynamic_cast<const HostObject*>(&other);
  return host && inCallback([&] { return static_cast<bool>([object_ isEqual:host->object()]); });
}

}  // namespace umsplugin
