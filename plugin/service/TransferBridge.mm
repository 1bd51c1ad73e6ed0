#include "service/TransferBridge.h"

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

/// What a file service of the host gets for one call, and can keep only the shell of.
struct Loan {
  Loan(const std::shared_ptr<TransferCallback>& callback, TransferContext* context)
      : progress([[UMSTransferProgress alloc] initWithCallback:callback.get()]),
        notifier(borrowedNotifier(context)) {}
  ~Loan() {
    [progress transferHasEnded];
    [progress release];
    giveBackNotifier(notifier);
  }
  Loan(const Loan&) = delete;
  Loan& operator=(const Loan&) = delete;

  UMSTransferProgress* const progress;
  OVUmsDeviceNotifier* const notifier;
};

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
  inCallback([this] { [service_ release]; });
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
    const Loan loan(callbackObject, context);
    return [service_ syncWriteFileToDevice:toHost(fileInformation)
                             subFolderName:toHost(subFolderName)
                                 diskIndex:diskIndex
                                 mediaType:mediaType
                               isOverWrite:isOverWrite
                            callbackObject:loan.progress
                                   context:loan.notifier
                                     error:error];
  });
}

}  // namespace umsplugin

@implementation UMSTransferProgress

- (id)initWithCallback:(TransferCallback*)callback {
  if ((self = [super init])) _callback = callback;
  return self;
}

- (void)transferHasEnded {
  @synchronized(self) {
    _callback = nullptr;
  }
}

- (BOOL)transferProgressInfo:(id)context
             maxTransferSize:(unsigned int)maxTransferSize
         currentTransferSize:(unsigned int)currentTransferSize {
  @synchronized(self) {
    if (!_callback) return NO;
    return _callback->transferProgressInfo(umsplugin::notifierIn(context), maxTransferSize,
                                           currentTransferSize);
  }
}

- (BOOL)transferProgressInfoEx:(id)context
               maxTransferSize:(unsigned long long)maxTransferSize
           currentTransferSize:(unsigned long long)currentTransferSize {
  @synchronized(self) {
    if (!_callback) return NO;
    return _callback->transferProgressInfoEx(umsplugin::notifierIn(context), maxTransferSize,
                                             currentTransferSize);
  }
}

@end
