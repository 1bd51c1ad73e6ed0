/// Who makes the notifier of a run: a host that lets its own objects stand for notifiers makes each together
/// with its object, and both live as long as anyone holds one of them.
///
/// See `OVUmsDeviceNotifier::forRun`, which asks it, and `Environment`, which carries it.
#pragma once

#include <cstdint>
#include <memory>

#include "umsservice/Export.h"
#include "umsservice/Value.h"

namespace umsservice {

class UMS_EXPORT OVUmsDeviceNotifier;

class UMS_EXPORT NotifierFactory {
 public:
  virtual ~NotifierFactory() = default;
  /// The arguments are those of the notifier's own constructor. Called on the thread that runs the request;
  /// the answer may not be null.
  virtual std::shared_ptr<OVUmsDeviceNotifier> make(const MaybeString& srcLocationID,
                                                    const MaybeString& destLocationID, uint32_t serviceID,
                                                    uint32_t mediaType, const MaybeString& deviceName,
                                                    uint32_t storageIndex, uint32_t maxTransferFileCount,
                                                    uint64_t maxTransferSize) = 0;
};

}  // namespace umsservice
