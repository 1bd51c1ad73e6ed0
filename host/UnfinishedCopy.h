/// The beginning of a file that a failed or cancelled copy leaves behind. It has the whole file's name, so a
/// later run would take it for the file and skip it.
#pragma once

#include "umsservice/FileSystem.h"
#include "umsservice/ItemObserver.h"

namespace umsctl {

/// Removes what a copy that ended like this has left at its destination. Anything that the copy may not have
/// made itself stays: a destination that existed before, a link, a file of another size. Gives the reason
/// where the part could not be removed.
std::optional<umsservice::FileError> removeUnfinishedCopy(umsservice::FileSystem& files,
                                                          const umsservice::ItemOutcome& outcome);

}  // namespace umsctl
