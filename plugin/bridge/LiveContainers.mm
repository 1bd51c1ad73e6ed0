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

- (NSEnumerator*)objectEnumerator {
  NSMutableArray* values = [NSMutableArray array];
  for (const std::string& name : _dictionary->keys()) {
    // Another thread may have taken the key out meanwhile.
    if (id value = toHostView(_dictionary->get(name))) [values addObject:value];
  }
  return [values objectEnumerator];
}

/// All keys at once, as they are when the loop begins.
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id*)objects
                                    count:(NSUInteger)length {
  static_cast<void>(objects);
  static_cast<void>(length);
  if (state->state != 0) return 0;
  NSArray* keys = [[self keyEnumerator] allObjects];
  const NSUInteger count = [keys count];
  if (count == 0) return 0;
  NSMutableData* pointers = [NSMutableData dataWithLength:count * sizeof(id)];
  state->state = 1;
  state->itemsPtr = static_cast<id*>([pointers mutableBytes]);
  [keys getObjects:state->itemsPtr range:NSMakeRange(0, count)];
  state->extra[0] = 0;
  state->mutationsPtr = &state->extra[0];  // what others change does not show in the keys
  [[keys retain] autorelease];
  return count;
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

namespace {

void mustBeThere(id object) {
  if (!object) [NSException raise:NSInvalidArgumentException format:@"The list holds no nil"];
}

void raiseRange(NSUInteger index) {
  [NSException raise:NSRangeException format:@"The list has no place %lu", static_cast<unsigned long>(index)];
}

}  // namespace

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
  Value value = _array->at(index);
  if (value.isNil()) [self mustHold:index];
  auto dictionary = value.dictionary();
  return dictionary ? [self elementFor:dictionary] : toHostView(value);
}

// Each change is one step: the service may put in a volume at the same time. What is raised is raised after
// the step, with nothing of C++ in the way.

- (void)addObject:(id)object {
  mustBeThere(object);
  _array->append(toValue(object));
}

- (void)insertObject:(id)object atIndex:(NSUInteger)index {
  mustBeThere(object);
  const Value value = toValue(object);
  const bool fits = _array->edit([&](std::vector<Value>& values) {
    if (index > values.size()) return false;
    values.insert(values.begin() + static_cast<std::ptrdiff_t>(index), value);
    return true;
  });
  if (!fits) raiseRange(index);
}

- (void)removeLastObject {
  const bool held = _array->edit([](std::vector<Value>& values) {
    if (values.empty()) return false;
    values.pop_back();
    return true;
  });
  if (!held) raiseRange(0);
}

- (void)removeObjectAtIndex:(NSUInteger)index {
  const bool held = _array->edit([index](std::vector<Value>& values) {
    if (index >= values.size()) return false;
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
  });
  if (!held) raiseRange(index);
}

- (void)removeAllObjects {
  _array->assign({});
}

- (void)replaceObjectAtIndex:(NSUInteger)index withObject:(id)object {
  mustBeThere(object);
  const Value value = toValue(object);
  const bool held = _array->edit([&](std::vector<Value>& values) {
    if (index >= values.size()) return false;
    values[index] = value;
    return true;
  });
  if (!held) raiseRange(index);
}

- (void)mustHold:(NSUInteger)index {
  if (index >= _array->count()) raiseRange(index);
}

@end
