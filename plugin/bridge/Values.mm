#include "bridge/Values.h"

#include <cstring>

#include "bridge/HostContainers.h"
#include "bridge/LiveContainers.h"
#include "bridge/Text.h"

using umsservice::Array;
using umsservice::Data;
using umsservice::Dictionary;
using umsservice::MaybeArray;
using umsservice::MaybeDictionary;
using umsservice::Value;

namespace umsplugin {
namespace {

/// Booleans are of a class of their own, on every platform; their type code is that of a small integer.
bool isBoolean(NSNumber* number) {
  static const Class booleanClass = [[NSNumber numberWithBool:YES] class];
  return [number isKindOfClass:booleanClass];
}

/// Of single precision, or decimal: widened to a double, their digits would be others.
bool isWrittenByItselfOnly(NSNumber* number) {
  return *[number objCType] == 'f' || [number isKindOfClass:[NSDecimalNumber class]];
}

Value numberValue(NSNumber* number) {
  if (isBoolean(number)) return static_cast<bool>([number boolValue]);
  if (isWrittenByItselfOnly(number)) {
    return std::shared_ptr<umsservice::ForeignObject>(std::make_shared<HostObject>(number));
  }
  switch (*[number objCType]) {
    case 'd':
      return [number doubleValue];
    case 'q':
    case 'l':
      return int64_t{[number longLongValue]};
    case 'Q':
    case 'L':
      return uint64_t{[number unsignedLongLongValue]};
    case 'I':
    case 'S':
    case 'C':
      return uint32_t{[number unsignedIntValue]};
    default:
      return int32_t{[number intValue]};
  }
}

NSNumber* hostNumber(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Boolean:
      return [NSNumber numberWithBool:value.boolValue()];
    case Value::Kind::Int32:
      return [NSNumber numberWithInt:value.intValue()];
    case Value::Kind::UInt32:
      return [NSNumber numberWithUnsignedInt:value.unsignedIntValue()];
    case Value::Kind::Int64:
      return [NSNumber numberWithLongLong:value.longLongValue()];
    case Value::Kind::UInt64:
      return [NSNumber numberWithUnsignedLongLong:value.unsignedLongLongValue()];
    default:
      return [NSNumber numberWithDouble:value.doubleValue()];
  }
}

/// The host's own object behind a container; nil for one that the library made.
NSMutableArray* ownObject(const Array& array) {
  auto host = std::dynamic_pointer_cast<HostArray>(array.storage());
  return host ? static_cast<NSMutableArray*>(host->object()) : nil;
}

NSMutableDictionary* ownObject(const Dictionary& dictionary) {
  auto host = std::dynamic_pointer_cast<HostDictionary>(dictionary.storage());
  return host ? static_cast<NSMutableDictionary*>(host->object()) : nil;
}

NSMutableArray* hostArray(const Array& array) {
  if (NSMutableArray* own = ownObject(array)) return own;
  NSMutableArray* copy = [NSMutableArray array];
  for (const Value& value : array.snapshot()) {
    id element = toHost(value);
    [copy addObject:element ? element : [NSNull null]];
  }
  return copy;
}

NSMutableDictionary* hostDictionary(const Dictionary& dictionary) {
  if (NSMutableDictionary* own = ownObject(dictionary)) return own;
  NSMutableDictionary* copy = [NSMutableDictionary dictionary];
  for (const std::string& name : dictionary.keys()) {
    id value = toHost(dictionary.get(name));
    if (value) [copy setObject:value forKey:toHostText(name)];
  }
  return copy;
}

id hostObject(const std::shared_ptr<umsservice::ForeignObject>& object) {
  auto host = std::dynamic_pointer_cast<HostObject>(object);
  return host ? [[host->object() retain] autorelease] : nil;
}

}  // namespace

Value toValue(id object) {
  if (!object) return Value();
  if ([object isKindOfClass:[NSString class]]) return toText(object);
  if ([object isKindOfClass:[NSNumber class]]) return numberValue(object);
  if ([object isKindOfClass:[NSNull class]]) return umsservice::Null();
  if (auto array = toArray(object)) return *array;
  if (auto dictionary = toDictionary(object)) return *dictionary;
  return std::shared_ptr<umsservice::ForeignObject>(std::make_shared<HostObject>(object));
}

id toHost(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Absent:
      return nil;
    case Value::Kind::Null:
      return [NSNull null];
    case Value::Kind::String:
      return toHostText(*value.stringIfAny());
    case Value::Kind::Data:
      return toHost(value.data());
    case Value::Kind::Array:
      return hostArray(*value.array());
    case Value::Kind::Dictionary:
      return hostDictionary(*value.dictionary());
    case Value::Kind::Foreign:
      return hostObject(value.foreignObject());
    default:
      return hostNumber(value);
  }
}

id toHostView(const Value& value) {
  if (auto array = value.array()) {
    if (NSMutableArray* own = ownObject(*array)) return own;
    return [[[UMSLiveArray alloc] initOverArray:*array] autorelease];
  }
  if (auto dictionary = value.dictionary()) {
    if (NSMutableDictionary* own = ownObject(*dictionary)) return own;
    return [[[UMSLiveDictionary alloc] initOverDictionary:*dictionary] autorelease];
  }
  return toHost(value);
}

MaybeArray toArray(id object) {
  if (![object isKindOfClass:[NSArray class]]) return std::nullopt;
  if ([object isKindOfClass:[UMSLiveArray class]]) return [static_cast<UMSLiveArray*>(object) libraryArray];
  return Array(std::make_shared<HostArray>(object));
}

MaybeDictionary toDictionary(id object) {
  if (![object isKindOfClass:[NSDictionary class]]) return std::nullopt;
  if ([object isKindOfClass:[UMSLiveDictionary class]])
    return [static_cast<UMSLiveDictionary*>(object) libraryDictionary];
  return Dictionary(std::make_shared<HostDictionary>(object));
}

NSMutableArray* toHost(const MaybeArray& array) {
  return array ? hostArray(*array) : nil;
}

NSMutableDictionary* toHost(const MaybeDictionary& dictionary) {
  return dictionary ? hostDictionary(*dictionary) : nil;
}

std::shared_ptr<const Data> toData(id object) {
  if (![object isKindOfClass:[NSData class]]) return nullptr;
  NSData* data = object;
  auto bytes = std::make_shared<Data>([data length]);
  if (!bytes->empty()) std::memcpy(bytes->data(), [data bytes], bytes -> size());
  return bytes;
}

NSData* toHost(const std::shared_ptr<const Data>& data) {
  return data ? [NSData dataWithBytes:data->data() length:data->size()] : nil;
}

}  // namespace umsplugin
