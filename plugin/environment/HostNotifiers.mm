/// The notifiers of runs are objects of the host's world: a file service of the host may keep the one that it
/// reports to.
#import <Foundation/Foundation.h>

#include "bridge/CallbackScope.h"
#include "bridge/Text.h"
#include "environment/HostEnvironment.h"
#include "service/Notifier.h"

using umsservice::MaybeString;

namespace umsplugin {
namespace {

class HostNotifierFactory final : public umsservice::NotifierFactory {
 public:
  std::shared_ptr<umsservice::OVUmsDeviceNotifier> make(const MaybeString& srcLocationID,
                                                        const MaybeString& destLocationID, uint32_t serviceID,
                                                        uint32_t mediaType, const MaybeString& deviceName,
                                                        uint32_t storageIndex, uint32_t maxTransferFileCount,
                                                        uint64_t maxTransferSize) override {
    return inCallback([&] {
      OVUmsDeviceNotifier* object = [[OVUmsDeviceNotifier alloc] initWithInformations:toHost(srcLocationID)
                                                                       destLocationID:toHost(destLocationID)
                                                                            serviceID:serviceID
                                                                            mediaType:mediaType
                                                                           deviceName:toHost(deviceName)
                                                                         storageIndex:storageIndex
                                                                 maxTransferFileCount:maxTransferFileCount
                                                                      maxTransferSize:maxTransferSize];
      std::shared_ptr<OVUmsDeviceNotifier*> held(new OVUmsDeviceNotifier*(object),
                                                 [](OVUmsDeviceNotifier** given) {
                                                   inCallback([given] { [*given release]; });
                                                   delete given;
                                                 });
      return std::shared_ptr<umsservice::OVUmsDeviceNotifier>(held, notifierIn(object));
    });
  }
};

}  // namespace

std::shared_ptr<umsservice::NotifierFactory> hostNotifierFactory() {
  return std::make_shared<HostNotifierFactory>();
}

}  // namespace umsplugin
