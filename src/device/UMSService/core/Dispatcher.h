/// Runs one queued request on the worker thread: picks the operation by command and media type, and reports
/// the outcome of the commands that have a result notification.
#pragma once

#include <optional>

#include "LongOperations.h"
#include "RequestReports.h"
#include "ServiceContext.h"

namespace umsservice {

class Dispatcher {
 public:
  Dispatcher(ServiceContext& context, RequestReports& reports, LongOperations& operations)
      : context_(context), reports_(reports), operations_(operations) {}

  /// True when the command succeeded; false for a null request and for commands without an action. The
  /// request stays the caller's.
  bool doUmsFileService(const _serviceinfo* serviceInfo);
  /// The same for the worker, where nobody is there to catch: a request that an exception stops is logged,
  /// and the host hears of its end. An exception out of the result's own handlers is left to the caller.
  void serve(const _serviceinfo& serviceInfo);

 private:
  struct Outcome {
    bool success = false;
    uint32_t errorNumber = 0;
    std::optional<FileError> platformError;
    uint64_t diskSpace = 0;
  };

  void trace(uint32_t command) const;
  Outcome perform(const _serviceinfo& serviceInfo);
  void report(const _serviceinfo& serviceInfo, const Outcome& outcome);
  void reportStopped(const _serviceinfo& serviceInfo, bool runToldItsEnd);
  Outcome createFile(const _serviceinfo& serviceInfo);
  Outcome createFolder(const _serviceinfo& serviceInfo);
  Outcome readFile() const;
  Outcome renameFile(const _serviceinfo& serviceInfo);
  Outcome diskSpace(const _serviceinfo& serviceInfo, uint64_t VolumeSpace::*amount);
  Outcome runLongOperation(const _serviceinfo& serviceInfo);
  bool chosenOperation(const _serviceinfo& serviceInfo);

  ServiceContext& context_;
  RequestReports& reports_;
  LongOperations& operations_;
};

}  // namespace umsservice
