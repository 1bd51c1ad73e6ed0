/// One direct transfer of the service, which runs on the calling thread, told as every other item is.
#pragma once

#include <functional>

#include "Device.h"
#include "umsservice/ItemObserver.h"

namespace umsctl {

struct DirectCopy {
  std::string source;                   ///< full path
  std::string destination;              ///< full path
  std::function<bool()> isWanted;       ///< asked in between; false stops the copy
  std::function<void(uint64_t)> moved;  ///< hears the bytes so far

  /// One of the service's direct transfers.
  using Method = bool (umsservice::UMSService::*)(const umsservice::MaybeDictionary&,
                                                  const umsservice::MaybeString&, uint32_t, uint32_t, bool,
                                                  const std::shared_ptr<umsservice::TransferCallback>&,
                                                  umsservice::TransferContext*, uint32_t*);
  /// Copies. What was copied of a stopped or failed transfer stays, its size is the outcome's.
  umsservice::ItemOutcome run(Device& device, Method method, bool isOverWrite) const;
};

}  // namespace umsctl
