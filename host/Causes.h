/// Why an item failed, in words for a person.
#pragma once

#include <string>

#include "Device.h"
#include "umsservice/ItemObserver.h"

namespace umsctl {

/// From the error number and the system's own reason; where these leave the cause open (a missing file with
/// an unknown extension, a folder that could not be made), the files themselves are looked at.
/// `folder` is what a folder that could not be made is called.
std::string causeOf(Device& device, const umsservice::ItemOutcome& outcome,
                    const std::string& folder = "its folder on the device");

/// What a person can do about it: by the cause where that is an objection (see `Contents`) which kept the
/// file from being tried, else by the number.
std::string adviceFor(const umsservice::ItemOutcome& outcome, const std::string& cause);

}  // namespace umsctl
