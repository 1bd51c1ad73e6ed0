/// The notifier of the last run, for a look at the result number that no notification has shown yet.
#pragma once

#include "TestDevice.h"
#include "umsservice/NotifierFactory.h"
#include "umsservice/OVUmsDeviceNotifier.h"

namespace umsservice::testing {

class KeptNotifiers final : public NotifierFactory {
 public:
  explicit KeptNotifiers(const Environment& environment) : environment_(environment) {}
  /// Services that are made from now on have their notifiers kept.
  static std::shared_ptr<KeptNotifiers> of(TestSurroundings& surroundings) {
    auto kept = std::make_shared<KeptNotifiers>(surroundings.environment);
    surroundings.environment.notifierFactory = kept;
    return kept;
  }
  /// What the last run left as the result of its last item.
  uint32_t lastResult() const { return last_ ? last_->transferResult() : 0; }

  std::shared_ptr<OVUmsDeviceNotifier> make(const MaybeString& srcLocationID,
                                            const MaybeString& destLocationID, uint32_t serviceID,
                                            uint32_t mediaType, const MaybeString& deviceName,
                                            uint32_t storageIndex, uint32_t maxTransferFileCount,
                                            uint64_t maxTransferSize) override {
    last_ = std::make_shared<OVUmsDeviceNotifier>(environment_, srcLocationID, destLocationID, serviceID,
                                                  mediaType, deviceName, storageIndex, maxTransferFileCount,
                                                  maxTransferSize);
    return last_;
  }

 private:
  const Environment environment_;
  std::shared_ptr<OVUmsDeviceNotifier> last_;
};

}  // namespace umsservice::testing
