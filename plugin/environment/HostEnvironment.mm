#include "environment/HostEnvironment.h"

#import <UMSServiceBundle/UMSService.h>

#include "bridge/CallbackScope.h"
#include "service/ObjectSection.h"

namespace umsplugin {

umsservice::Environment hostEnvironment() {
  // Kept to the end of the process: a worker may still be on its way out while the process exits.
  static const auto* environment = [] {
    auto* made = new umsservice::Environment(umsservice::Environment::forRunningSystem());
    made->notificationCenter = hostNotificationCenter();
    made->logSink = hostLogSink();
    made->debugLevelSource = hostDebugLevelSource();
    made->profileInfo = hostProfileInfo();
    made->mediaInfoFactory = hostMediaInfoFactory();
    made->notifierFactory = hostNotifierFactory();
    made->serviceClass = std::make_shared<ObjectSection>([UMSService class]);
    made->exceptionReason = reasonOfHandledException;
    return made;
  }();
  return *environment;
}

}  // namespace umsplugin
