#include "bridge/LiveContainers.h"

#include <map>

#include "bridge/HostContainers.h"
#include "bridge/Text.h"
#include "bridge/Values.h"

using umsplugin::toHost;
using umsplugin::toHostView;
using umsplugin::toText;
using umsplugin::toValue;
using umsservice::Value;

/// The objects that stand for dictionaries of a list. Each holds its dictionary, so an address is never used
/// twice while it is here.
struct UMSLiveElements {
  std::map<const umsservice::DictionaryStorage*, UMSLiveDictionary*> known;

  ~UMSLiveElements() {
    for (auto& [storage, element] : known) [element release];
  }

  /// Lets go of the elements that have left the list, when there are too many of them.
  void tidy(const umsservice::Array& array) {
    if (known.size() < 2 * array.count() + 16) return;
    std::map<const umsservice::DictionaryStorage*, UMSLiveDictionary*> kept;
    for (const Value& value : array.snapshot()) {
      auto dictionary = value.dictionary();
      if (!dictionary) continue;
      if (auto node = known.extract(dictionary->storage().get())) kept.insert(std::move(node));
    }
    known.swap(kept);
    for (auto& [storage, element] : kept) [element autorelease];
  }
};

@implementation UMSLiveDictionary

- (id)initOverDictionary:(const umsservice::Dictionary&)dictionary {
  if ((self = [super init])) _dictionary = new umsservice::Dictionary(dictionary);
  return self;
}

- (void)dealloc {
  delete _dictionary;
  [super dealloc];
}

- (umsservice::Dictionary)libraryDictionary {
  return *_dictionary;
}

- (NSUInteger)count {
  return _dictionary->count();
}

- (id)objectForKey:(id)key {
  auto name = toText(key);
  return name ? toHostView(_dictionary->get(*name)) : nil;
}

- (NSEnumerator*)keyEnumerator {
  NSMutableArray* keys = [NSMutableArray array];
  for (const std::string& name : _dictionary->keys()) [keys addObject:umsplugin::toHostText(name)];
  return [keys objectEnumerator];
}

- (void)setObject:(id)object forKey:(id)key {
  auto name = toText(key);
  if (!object || !name) {
    [NSException raise:NSInvalidArgumentException format:@"A volume holds objects under texts, not %@", key];
  }
  _dictionary->set(*name, toValue(object));
}

- (void)removeObjectForKey:(id)key {
  if (auto name = toText(key)) _dictionary->remove(*name);
}

@end

@interface UMSLiveArray (Range)
- (void)mustHold:(NSUInteger)index;
@end

@implementation UMSLiveArray

- (id)initOverArray:(const umsservice::Array&)array {
  if ((self = [super init])) {
    _array = new umsservice::Array(array);
    _elements = new UMSLiveElements;
  }
  return self;
}

- (void)dealloc {
  delete _elements;
  delete _array;
  [super dealloc];
}

- (umsservice::Array)libraryArray {
  return *_array;
}

- (NSDictionary*)elementFor:(const umsservice::MaybeDictionary&)dictionary {
  if (!dictionary) return nil;
  if (std::dynamic_pointer_cast<umsplugin::HostDictionary>(dictionary->storage())) return toHost(dictionary);
  @synchronized(self) {
    UMSLiveDictionary* element = _elements->known[dictionary->storage().get()];
    if (!element) {
      element = [[UMSLiveDictionary alloc] initOverDictionary:*dictionary];
      _elements->known[dictionary->storage().get()] = element;
      _elements->tidy(*_array);
    }
    return [[element retain] autorelease];
  }
}

- (NSUInteger)count {
  return _array->count();
}

- (id)objectAtIndex:(NSUInteger)index {
  [self mustHold:index];
  Value value = _array->at(index);
  auto dictionary = value.dictionary();
  return dictionary ? [self elementFor:dictionary] : toHostView(value);
}

- (void)addObject:(id)object {
  [self insertObject:object atIndex:_array->count()];
}

- (void)insertObject:(id)object atIndex:(NSUInteger)index {
  auto values = _array->snapshot();
  if (!object) [NSException raise:NSInvalidArgumentException format:@"Nil cannot be added"];
  if (index > values.size()) [NSException raise:NSRangeException format:@"No place for a volume there"];
  values.insert(values.begin() + static_cast<std::ptrdiff_t>(index), toValue(object));
  _array->assign(std::move(values));
}

- (void)removeLastObject {
  [self removeObjectAtIndex:_array->count() - 1];
}

- (void)removeObjectAtIndex:(NSUInteger)index {
  [self mustHold:index];
  _array->removeAt(index);
}

- (void)replaceObjectAtIndex:(NSUInteger)index withObject:(id)object {
  auto values = _array->snapshot();
  if (!object) [NSException raise:NSInvalidArgumentException format:@"Nil cannot be stored"];
  [self mustHold:index];
  values.at(index) = toValue(object);
  _array->assign(std::move(values));
}

- (void)mustHold:(NSUInteger)index {
  if (index >= _array->count()) {
    [NSException raise:NSRangeException
                format:@"The list holds no volume %lu", static_cast<unsigned long>(index)];
  }
}

@end
