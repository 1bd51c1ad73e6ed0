#include "HostTest.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>

/// Behind a pointer, as the run-time cannot describe what a function is made of.
struct EarHandler {
  std::function<void(NSNotification*)> run;
};

struct EarState {
  std::mutex mutex;
  std::condition_variable arrived;
  std::vector<NSNotification*> notifications;
  std::shared_ptr<EarHandler> handler;
  int inside = 0;  ///< threads in the handler

  NSUInteger count(NSString* name) const {
    return static_cast<NSUInteger>(
        std::count_if(notifications.begin(), notifications.end(),
                      [name](auto* each) { return !name || [[each name] isEqualToString:name]; }));
  }
};

namespace {

/// A thread is inside the handler, however the handler ends.
struct Inside {
  EarState& state;
  ~Inside() {
    std::lock_guard lock(state.mutex);
    --state.inside;
    state.arrived.notify_all();
  }
};

}  // namespace

@implementation NotificationEar

- (id)init {
  if ((self = [super init])) {
    _state = new EarState;
    for (NSString* name :
         {umsplugin::testing::kProgress, umsplugin::testing::kUmsResult, umsplugin::testing::kItemResult}) {
      [[NSNotificationCenter defaultCenter] addObserver:self selector:@selector(hear:) name:name object:nil];
    }
  }
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  for (NSNotification* each : _state->notifications) [each release];
  delete _state;
  [super dealloc];
}

- (void)hear:(NSNotification*)notification {
  std::shared_ptr<EarHandler> handler;
  {
    std::lock_guard lock(_state->mutex);
    _state->notifications.push_back([notification retain]);
    handler = _state->handler;
    ++_state->inside;
  }
  _state->arrived.notify_all();
  Inside inside{*_state};
  if (handler) handler->run(notification);
}

- (NSArray*)named:(NSString*)name {
  std::lock_guard lock(_state->mutex);
  NSMutableArray* found = [NSMutableArray array];
  for (NSNotification* each : _state->notifications) {
    if (!name || [[each name] isEqualToString:name]) [found addObject:each];
  }
  return found;
}

- (void)forget {
  std::vector<NSNotification*> forgotten;
  {
    std::lock_guard lock(_state->mutex);
    forgotten.swap(_state->notifications);
  }
  for (NSNotification* each : forgotten) [each release];
}

- (BOOL)waitFor:(NSString*)name count:(NSUInteger)count {
  EarState* state = _state;
  std::unique_lock lock(state->mutex);
  return state->arrived.wait_for(lock, std::chrono::seconds(10), [&] { return state->count(name) >= count; });
}

@end

@implementation OddArray
- (id)initWithElements:(const id*)elements count:(NSUInteger)count {
  if ((self = [super init])) {
    _elements = new id[count];
    _count = count;
    for (NSUInteger i = 0; i < count; ++i) _elements[i] = [elements[i] retain];
  }
  return self;
}
- (void)dealloc {
  for (NSUInteger i = 0; i < _count; ++i) [_elements[i] release];
  delete[] _elements;
  [super dealloc];
}
- (NSUInteger)count {
  return _count;
}
- (id)objectAtIndex:(NSUInteger)index {
  return _elements[index];
}
@end

namespace umsplugin::testing {

NSBundle* loadedBundle() {
  static NSBundle* const bundle = [] {
    NSBundle* found = [[NSBundle bundleWithPath:@UMS_BUNDLE] retain];
    if (![found load]) throw std::runtime_error("the bundle does not load: " UMS_BUNDLE);
    return found;
  }();
  return bundle;
}

Class bundleClass(NSString* name) {
  return [loadedBundle() classNamed:name];
}

std::string text(id string) {
  if (![string isKindOfClass:[NSString class]]) return "(no text)";
  return std::string([string UTF8String]);
}

NSString* string(const std::string& text) {
  return [NSString stringWithUTF8String:text.c_str()];
}

std::vector<std::string> texts(NSArray* strings) {
  std::vector<std::string> found;
  for (NSUInteger i = 0; i < [strings count]; ++i) found.push_back(text([strings objectAtIndex:i]));
  return found;
}

NSMutableDictionary* content(const std::string& filePath, const std::string& fileName) {
  return [NSMutableDictionary
      dictionaryWithObjectsAndKeys:string(filePath), @"FilePath", string(fileName), @"FileName", nil];
}

NSDictionary* disk(int diskType, const std::string& volumePath) {
  return [NSDictionary dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:diskType], @"diskType",
                                                    string(volumePath), @"volumePath", nil];
}

long long number(NSDictionary* dictionary, NSString* key) {
  id value = [dictionary objectForKey:key];
  EXPECT_TRUE([value isKindOfClass:[NSNumber class]]) << text(key);
  return [value longLongValue];
}

bool eventually(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

HostTest::HostTest() {
  loadedBundle();
  // Some folders are made under relative names; they belong into the sandbox.
  std::filesystem::current_path(sandbox.path());
}

HostTest::~HostTest() {
  for (UMSService* service : services_) [service release];
  [ear release];
  [pool_ release];
}

UMSService* HostTest::makeService(NSString* locationID) {
  UMSService* service = [[[loadedBundle() principalClass] alloc] initWithLocationID:locationID];
  [service setDeviceInformation:[NSDictionary dictionaryWithObject:@"Pocket One" forKey:@"MN"]];
  services_.push_back(service);
  return service;
}

UMSService* HostTest::makeDevice() {
  UMSService* service = makeService(@"location-1");
  [service addDiskInformation:disk(1, internal)];
  [service addDiskInformation:disk(2, card)];
  return service;
}

UMSService* HostTest::takeOver(UMSService* service) {
  std::erase(services_, service);
  return service;
}

Hearing HostTest::onEach(std::function<void(NSNotification*)> handler) {
  std::lock_guard lock(ear->_state->mutex);
  ear->_state->handler = std::make_shared<EarHandler>(EarHandler{std::move(handler)});
  return Hearing(ear->_state);
}

Hearing::~Hearing() {
  std::unique_lock lock(state_->mutex);
  state_->handler = nullptr;
  state_->arrived.wait(lock, [this] { return state_->inside == 0; });
}

}  // namespace umsplugin::testing
