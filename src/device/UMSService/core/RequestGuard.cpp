#include "RequestGuard.h"

#include <exception>

namespace umsservice {

bool runsToItsEnd(const ServiceContext& context, const std::function<void()>& part) {
  MaybeString reason;
  try {
    part();
    return true;
  } catch (const std::exception& exception) {
    reason = exception.what();
  } catch (...) {
    if (context.environment.exceptionReason) reason = context.environment.exceptionReason();
  }
  // Said behind the handlers: a line goes through the host, and some languages cannot raise inside a handler.
  context.log.write(1, "-[UMSService umsFileServiceQueueThread:]",
                    "Request is stopped by an exception. Reason :%@", reason);
  return false;
}

}  // namespace umsservice
