/// What keeps an exception of the host's (a handler, a delegate, an array of its own) inside its request: the
/// worker and the requests behind it go on.
///
/// Stateless; used on the thread that runs the request.
#pragma once

#include <functional>

#include "ServiceContext.h"

namespace umsservice {

/// Runs a part of a request. False, and a line with the reason, when an exception left it.
bool runsToItsEnd(const ServiceContext& context, const std::function<void()>& part);

}  // namespace umsservice
