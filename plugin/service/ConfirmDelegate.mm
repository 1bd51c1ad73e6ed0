#include "service/ConfirmDelegate.h"

#import "UMSServiceBundle/QDDeviceConfirmDelegate.h"
#include "bridge/CallbackScope.h"
#include "bridge/Text.h"
#include "service/TransferBridge.h"

namespace umsplugin {

bool ConfirmDelegate::confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) {
  return inCallback([&]() -> bool {
    id delegate = delegate_;
    if (![delegate respondsToSelector:@selector(confirmOverwrite:isOverwrite:isNotAsk:)]) return false;
    BOOL overwrites = isOverwrite;
    BOOL asksNoMore = isNotAsk;
    const bool answer = [delegate confirmOverwrite:toHostText(path)
                                       isOverwrite:&overwrites
                                          isNotAsk:&asksNoMore];
    isOverwrite = overwrites;
    isNotAsk = asksNoMore;
    return answer;
  });
}

std::shared_ptr<umsservice::OVFileService> ConfirmDelegate::getFileServiceObject(
    const umsservice::MaybeString& locationID) {
  return inCallback([&]() -> std::shared_ptr<umsservice::OVFileService> {
    id delegate = delegate_;
    if (![delegate respondsToSelector:@selector(getFileServiceObject:)]) return nullptr;
    id service = [delegate getFileServiceObject:toHost(locationID)];
    return service ? std::make_shared<HostFileService>(service, asking_) : nullptr;
  });
}

}  // namespace umsplugin
