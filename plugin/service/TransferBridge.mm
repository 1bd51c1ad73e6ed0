#include "service/TransferBridge.h"

#include <cstddef>
#include <vector>

#include "bridge/CallbackScope.h"
#include "bridge/Text.h"
#include "bridge/Values.h"
#include "service/Notifier.h"

using umsservice::MaybeArray;
using umsservice::MaybeDictionary;
using umsservice::MaybeString;
using umsservice::TransferCallback;
using umsservice::TransferContext;

namespace umsplugin {
namespace {

id contextOf(TransferContext* context) {
  auto* host = dynamic_cast<HostContext*>(context);
  return host ? host->context() : nil;
}

}  // namespace

std::shared_ptr<HostCallback> HostCallback::over(id callback) {
  return callback ? std::make_shared<HostCallback>(callback) : nullptr;
}

HostCallback::~HostCallback() {
  inCallback([this] { [callback_ release]; });
}

bool HostCallback::transferProgressInfo(TransferContext* context, uint32_t maxTransferSize,
                                        uint32_t currentTransferSize) {
  return inCallback([&]() -> bool {
    if (![callback_ respondsToSelector:@selector(transferProgressInfo:
                                                      maxTransferSize:currentTransferSize:)]) {
      return true;
    }
    return [callback_ transferProgressInfo:contextOf(context)
                           maxTransferSize:maxTransferSize
                       currentTransferSize:currentTransferSize];
  });
}

bool HostCallback::transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                                          uint64_t currentTransferSize) {
  return inCallback([&]() -> bool {
    if (![callback_ respondsToSelector:@selector(transferProgressInfoEx:
                                                        maxTransferSize:currentTransferSize:)]) {
      return true;
    }
    return [callback_ transferProgressInfoEx:contextOf(context)
                             maxTransferSize:maxTransferSize
                         currentTransferSize:currentTransferSize];
  });
}

HostFileService::~HostFileService() {
  inCallback([this] {
    [peer_ runHasEnded];
    [peer_ release];
    [service_ release];
  });
}

/// One for the run, as a run has one callback.
UMSTransferPeer* HostFileService::peerFor(const std::shared_ptr<TransferCallback>& callback) {
  if (!peer_) peer_ = [[UMSTransferPeer alloc] initWithSource:source_ callback:callback];
  return peer_;
}

MaybeArray HostFileService::diskInformation() {
  return inCallback([this]() -> MaybeArray {
    if (![service_ respondsToSelector:@selector(diskInformation)]) return std::nullopt;
    return toArray([service_ diskInformation]);
  });
}

MaybeString HostFileService::modelName() {
  return inCallback([this]() -> MaybeString {
    if (![service_ respondsToSelector:@selector(modelName)]) return std::nullopt;
    return toText([service_ modelName]);
  });
}

bool HostFileService::createFolder(const MaybeString& path) {
  return inCallback([&]() -> bool {
    if (![service_ respondsToSelector:@selector(createFolder:)]) return false;
    return [service_ createFolder:toHost(path)];
  });
}

bool HostFileService::syncWriteFileToDevice(const MaybeDictionary& fileInformation,
                                            const MaybeString& subFolderName, uint32_t diskIndex,
                                            uint32_t mediaType, bool isOverWrite,
                                            const std::shared_ptr<TransferCallback>& callbackObject,
                                            TransferContext* context, uint32_t* error) {
  return inCallback([&]() -> bool {
    if (![service_ respondsToSelector:@selector
                   (syncWriteFileToDevice:
                            subFolderName:diskIndex:mediaType:isOverWrite:callbackObject:context:error:)]) {
      return false;
    }
    return [service_ syncWriteFileToDevice:toHost(fileInformation)
                             subFolderName:toHost(subFolderName)
                                 diskIndex:diskIndex
                                 mediaType:mediaType
                               isOverWrite:isOverWrite
                            callbackObject:peerFor(callbackObject)
                                   context:objectOf(context)
                                     error:error];
  });
}

}  // namespace umsplugin

struct UMSTransferPeerParts {
  UMSTransferPeerParts(const std::shared_ptr<umsplugin::ObjectSection>& service,
                       const std::shared_ptr<TransferCallback>& runsCallback)
      : source(service),
        sourceClass([service->object() class]),
        hash([service->object() hash]),
        callback(runsCallback) {}

  const std::shared_ptr<umsplugin::ObjectSection> source;
  const Class sourceClass;
  const NSUInteger hash;
  std::recursive_mutex mutex;
  std::shared_ptr<TransferCallback> callback;  ///< null once the run has ended
};

@implementation UMSTransferPeer

- (id)initWithSource:(const std::shared_ptr<umsplugin::ObjectSection>&)source
            callback:(const std::shared_ptr<TransferCallback>&)callback {
  _parts = new UMSTransferPeerParts(source, callback);
  return self;
}

- (void)dealloc {
  delete _parts;
  [super dealloc];
}

- (void)runHasEnded {
  std::lock_guard lock(_parts->mutex);
  _parts->callback = nullptr;
}

- (BOOL)transferProgressInfo:(id)context
             maxTransferSize:(unsigned int)maxTransferSize
         currentTransferSize:(unsigned int)currentTransferSize {
  std::lock_guard lock(_parts->mutex);
  if (_parts->callback) {
    return _parts->callback->transferProgressInfo(umsplugin::notifierIn(context), maxTransferSize,
                                                  currentTransferSize);
  }
  BOOL goesOn = NO;
  _parts->source->whileThere([&](id service) {
    goesOn = [service transferProgressInfo:context
                           maxTransferSize:maxTransferSize
                       currentTransferSize:currentTransferSize];
  });
  return goesOn;
}

- (BOOL)transferProgressInfoEx:(id)context
               maxTransferSize:(unsigned long long)maxTransferSize
           currentTransferSize:(unsigned long long)currentTransferSize {
  std::lock_guard lock(_parts->mutex);
  if (_parts->callback) {
    return _parts->callback->transferProgressInfoEx(umsplugin::notifierIn(context), maxTransferSize,
                                                    currentTransferSize);
  }
  BOOL goesOn = NO;
  _parts->source->whileThere([&](id service) {
    goesOn = [service transferProgressInfoEx:context
                             maxTransferSize:maxTransferSize
                         currentTransferSize:currentTransferSize];
  });
  return goesOn;
}

// Everything else is the service's.

- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
  return [_parts->sourceClass instanceMethodSignatureForSelector:selector];
}

- (void)forwardInvocation:(NSInvocation*)invocation {
  if (_parts->source->whileThere([invocation](id service) { [invocation invokeWithTarget:service]; })) return;
  std::vector<std::byte> nothing([[invocation methodSignature] methodReturnLength]);
  if (!nothing.empty()) [invocation setReturnValue:nothing.data()];
}

- (Class)class {
  return _parts->sourceClass;
}

- (BOOL)isKindOfClass:(Class)aClass {
  return [_parts->sourceClass isSubclassOfClass:aClass];
}

- (BOOL)respondsToSelector:(SEL)selector {
  return [_parts->sourceClass instancesRespondToSelector:selector];
}

- (BOOL)conformsToProtocol:(Protocol*)protocol {
  return [_parts->sourceClass conformsToProtocol:protocol];
}

- (BOOL)isEqual:(id)other {
  return other == self || other == _parts->source->object();
}

- (NSUInteger)hash {
  return _parts->hash;
}

- (NSString*)description {
  return umsplugin::toHostText(_parts->source->description());
}

@end
