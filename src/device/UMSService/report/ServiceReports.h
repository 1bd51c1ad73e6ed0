/// The service's own senders, and the progress callbacks that it lends to the copy routines.
///
/// One for each service; shared with direct transfers on other devices' services, which call back into it.
/// Stateless but for the context; safe from any thread. Notifications leave on the calling thread.
#pragma once

#include "RequestReports.h"
#include "ServiceContext.h"
#include "umsservice/OVFileService.h"

namespace umsservice {

class ServiceReports final : public RequestReports, public TransferCallback {
 public:
  explicit ServiceReports(const ServiceContext& context) : context_(context) {}

  void sendResultEvent(const _serviceinfo& serviceInfo, uint32_t eventType, uint32_t status,
                       uint32_t errornumber, uint64_t diskSpace, uint32_t storageIndex) override;
  void sendCancelProgressEvent(uint32_t serviceID, const MaybeString& locationId, uint32_t mediaType,
                               uint32_t currentFile, uint32_t maxFile, uint32_t transferStatus) override;

  /// The context is the run's `OVUmsDeviceNotifier`. False when there is none or when it is cancelled.
  bool transferProgressInfo(TransferContext* context, uint32_t maxTransferSize,
                            uint32_t currentTransferSize) override;
  bool transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                              uint64_t currentTransferSize) override;

 private:
  const ServiceContext& context_;
};

}  // namespace umsservice
