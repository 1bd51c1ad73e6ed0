/// What the destination of a device-to-device copy reports to.
///
/// It passes progress on to this device's reports and answers NO once the run has to end: the destination
/// knows nothing of a cancel or a shutdown on this side. Called on
/// the worker that runs the copy, or on a thread of the destination for which that worker waits.
#pragma once

#include "MediaRun.h"
#include "RequestInHand.h"
#include "umsservice/OVFileService.h"

namespace umsservice {

class PeerProgress final : public TransferCallback {
 public:
  PeerProgress(MediaTools& tools, uint32_t serviceID) : tools_(tools), serviceID_(serviceID) {}

  bool transferProgressInfo(TransferContext* context, uint32_t maxTransferSize,
                            uint32_t currentTransferSize) override {
    RequestInHand inHand;
    return tools_.reports.transferProgressInfo(context, maxTransferSize, currentTransferSize) &&
           mayGoOn(maxTransferSize, currentTransferSize);
  }
  bool transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                              uint64_t currentTransferSize) override {
    RequestInHand inHand;
    return tools_.reports.transferProgressInfoEx(context, maxTransferSize, currentTransferSize) &&
           mayGoOn(maxTransferSize, currentTransferSize);
  }

 private:
  bool mayGoOn(uint64_t maxTransferSize, uint64_t currentTransferSize) const {
    if (currentTransferSize >= maxTransferSize) return true;  // the file is complete
    return !tools_.context.isReleased() && !tools_.context.cancelList.isCancelServiceId(serviceID_);
  }

  MediaTools& tools_;
  const uint32_t serviceID_;
};

}  // namespace umsservice
