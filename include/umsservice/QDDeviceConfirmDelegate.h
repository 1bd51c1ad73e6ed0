/// The host object that answers questions in the middle of a run.
#pragma once

#include <memory>
#include <string>

#include "umsservice/Export.h"
#include "umsservice/OVFileService.h"

namespace umsservice {

/// `confirmOverwrite` is called on the worker thread, `getFileServiceObject` on the worker and on the thread
/// that queues a device-to-device request. No lock is held but, on the worker, the service's synchronized
/// section. The service does not own its delegate.
class UMS_EXPORT QDDeviceConfirmDelegate {
 public:
  virtual ~QDDeviceConfirmDelegate() = default;
  /// Asked when a file already exists. Answer NO to skip this and every later conflict of the run;
  /// `isOverwrite` replaces the existing file; `isNotAsk` keeps both answers for the rest of the run.
  virtual bool confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) = 0;
  /// The service object of another attached device, or null.
  virtual std::shared_ptr<OVFileService> getFileServiceObject(const MaybeString& locationID) = 0;
};

}  // namespace umsservice
