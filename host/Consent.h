/// The question before something is deleted, the same for every command that deletes.
#pragma once

#include <string>

#include "Errand.h"

namespace umsctl {

/// Whether a deletion may begin. `question` as in "Delete 2 files (1.2 MB) from the device?"; asked at the
/// terminal unless the person has agreed beforehand or nothing will be changed. A no is told.
///
/// Throws `Refusal` where there is nobody to ask, and for an interrupt; nothing may have been deleted before.
bool agreesTo(const Errand& errand, const std::string& question);

}  // namespace umsctl
