#include "bridge/HostContainers.h"

#include <algorithm>
#include <mutex>

#include "bridge/CallbackScope.h"
#include "bridge/Exceptions.h"
#include "bridge/Text.h"
#include "bridge/Values.h"

using umsservice::MaybeString;
using umsservice::Value;

namespace umsplugin {
namespace {

/// What stands for a value inside a container of the host, where nil cannot be stored. Containers of the
/// library's stay shared: a channel is put into many dictionaries.
id elementOf(const Value& value) {
  id object = toHostView(value);
  return object ? object : [NSNull null];
}

NSArray* elementsOf(const std::vector<Value>& values) {
  NSMutableArray* elements = [NSMutableArray array];
  for (const Value& value : values) [elements addObject:elementOf(value)];
  return elements;
}

std::vector<Value> valuesOf(NSArray* array) {
  std::vector<Value> values;
  const size_t count = [array count];
  values.reserve(count);
  for (size_t i = 0; i < count; ++i) values.push_back(toValue([array objectAtIndex:i]));
  return values;
}

/// Keeps the steps of the library's threads on one object of the host apart. No lock of the host's: a host
/// may hold that while it waits for a worker that reads the object.
class OneStep {
 public:
  explicit OneStep(id object) : lock_(locks_[(reinterpret_cast<uintptr_t>(object) >> 4) % kLocks]) {}

 private:
  static constexpr size_t kLocks = 61;
  static inline std::recursive_mutex locks_[kLocks];
  std::lock_guard<std::recursive_mutex> lock_;
};

}  // namespace

HostCollection::~HostCollection() {
  inCallback([this] { [object_ release]; });
}

id HostCollection::object() const {
  std::lock_guard lock(mutex_);
  return [[object_ retain] autorelease];
}

/// What takes the place of an object: a copy of it, or what another thread has put there first.
id HostCollection::exchanged(id before) {
  id copy = nil;
  {
    OneStep step(before);
    copy = [[before mutableCopy] autorelease];
  }
  std::lock_guard lock(mutex_);
  if (object_ == before) {
    object_ = [copy retain];
    [before autorelease];
  }
  return [[object_ retain] autorelease];
}

void HostCollection::change(const std::function<void(id)>& change) {
  id present = object();
  if ([present isKindOfClass:changeable_]) {
    id exception = nil;
    {
      OneStep step(present);
      // Some collections are of a changeable class and raise all the same.
      exception = exceptionIn([&] { change(present); });
    }
    if (!exception) return;
    [exception release];
  }
  id copy = exchanged(present);
  {
    OneStep step(copy);
    change(copy);
  }
}

size_t HostArray::count() const {
  return inCallback([this] {
    NSArray* array = object();
    {
      OneStep step(array);
      return static_cast<size_t>([array count]);
    }
  });
}

Value HostArray::at(size_t index) const {
  return inCallback([&] {
    NSArray* array = object();
    {
      OneStep step(array);
      return index < [array count] ? toValue([array objectAtIndex:index]) : Value();
    }
  });
}

void HostArray::append(Value value) {
  inCallback([&] { array_.change([&](NSMutableArray* array) { [array addObject:elementOf(value)]; }); });
}

bool HostArray::edit(const std::function<bool(std::vector<Value>&)>& change) {
  return inCallback([&] {
    bool isChanged = false;
    array_.change([&](NSMutableArray* array) {
      std::vector<Value> values = valuesOf(array);
      isChanged = change(values);
      if (isChanged) [array setArray:elementsOf(values)];
    });
    return isChanged;
  });
}

void HostArray::removeAt(size_t index) {
  inCallback([&] {
    array_.change([index](NSMutableArray* array) {
      if (index < [array count]) [array removeObjectAtIndex:index];
    });
  });
}

void HostArray::assign(std::vector<Value> values) {
  inCallback([&] { array_.change([&](NSMutableArray* array) { [array setArray:elementsOf(values)]; }); });
}

std::vector<Value> HostArray::snapshot() const {
  return inCallback([this] {
    NSArray* array = object();
    {
      OneStep step(array);
      return valuesOf(array);
    }
  });
}

MaybeString HostArray::description() const {
  return inCallback([this] { return toText([object() description]); });
}

Value HostDictionary::get(std::string_view key) const {
  return inCallback([&] {
    NSDictionary* dictionary = object();
    {
      OneStep step(dictionary);
      return toValue([dictionary objectForKey:toHostText(std::string(key))]);
    }
  });
}

void HostDictionary::set(std::string_view key, Value value) {
  inCallback([&] {
    NSString* name = toHostText(std::string(key));
    dictionary_.change([&](NSMutableDictionary* dictionary) {
      if (value.isNil()) {
        [dictionary removeObjectForKey:name];
      } else {
        [dictionary setObject:elementOf(value) forKey:name];
      }
    });
  });
}

std::vector<std::string> HostDictionary::keys() const {
  return inCallback([this] {
    std::vector<std::string> names;
    NSDictionary* dictionary = object();
    {
      OneStep step(dictionary);
      NSEnumerator* keys = [dictionary keyEnumerator];
      while (id key = [keys nextObject]) {
        if (auto name = toText(key)) names.push_back(*name);
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  });
}

std::shared_ptr<umsservice::DictionaryStorage> HostDictionary::mutableCopy() const {
  return inCallback([this]() -> std::shared_ptr<umsservice::DictionaryStorage> {
    NSDictionary* dictionary = object();
    {
      OneStep step(dictionary);
      return std::make_shared<HostDictionary>([[dictionary mutableCopy] autorelease]);
    }
  });
}

MaybeString HostDictionary::description() const {
  return inCallback([this] { return toText([object() description]); });
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

Value HostObject::number() const {
  return inCallback(
      [this] { return [object_ isKindOfClass:[NSNumber class]] ? Value([object_ doubleValue]) : Value(); });
}

}  // namespace umsplugin
