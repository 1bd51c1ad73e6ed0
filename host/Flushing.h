/// The wait until a device has written what the computer still holds for it.
#pragma once

#include <functional>
#include <vector>

#include "Errand.h"
#include "WrittenPlace.h"

namespace umsctl {

/// Files that are only in the computer's memory are lost when the cable is pulled. Complains of each place
/// that could not be written to the end, through `aside`, which keeps the screen free meanwhile; false then.
/// A first interrupt is answered and changes nothing; one that was `wasCancelled` before has been answered.
bool flush(const Errand& errand, umsservice::FileSystem& files, const std::vector<WrittenPlace>& written,
           bool wasCancelled, const std::function<void(const std::function<void()>& speak)>& aside);

}  // namespace umsctl
