/// What the core tells the host about requests. The core does not know how: the report room implements this.
#pragma once

#include "umsservice/ServiceInfo.h"

namespace umsservice {

class RequestReports {
 public:
  virtual ~RequestReports() = default;
  /// The result of one request, as the dispatcher sees it.
  virtual void sendResultEvent(const _serviceinfo& serviceInfo, uint32_t eventType, uint32_t status,
                               uint32_t errornumber, uint64_t diskSpace, uint32_t storageIndex) = 0;
  /// The cancellation of a request that never ran. Without a location, the service's own is sent.
  virtual void sendCancelProgressEvent(uint32_t serviceID, const MaybeString& locationId, uint32_t mediaType,
                                       uint32_t currentFile, uint32_t maxFile, uint32_t transferStatus) = 0;
};

}  // namespace umsservice
