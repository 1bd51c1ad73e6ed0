/// Lets go of the test's last reference to a service in the middle of a call on it.
#pragma once

#include "ListingFileSystem.h"
#include "TestDevice.h"

namespace umsservice::testing {

/// In the first listing of a folder.
inline void letGoWhileListing(ListingFileSystem& listing, std::shared_ptr<UMSService>& service) {
  listing.onList = [&service](const std::string&, ListingFileSystem::Entries&) { service.reset(); };
}

/// In the first call of a kind.
inline void letGoInCall(FaultyFileSystem& files, std::shared_ptr<UMSService>& service, FileCall kind) {
  files.setFault([&service, kind](FileCall call, const std::string&) {
    if (call == kind) service.reset();
    return 0;
  });
}

}  // namespace umsservice::testing
