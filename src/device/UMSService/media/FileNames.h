/// Names that the file systems of players accept. Used for what podcasts create on a device; media keep the
/// names they are given.
#pragma once

#include "Log.h"

namespace umsservice {

/// One name: the first "http://" goes, each of the characters / : * ? " \ < > | CR LF becomes "_", blanks at
/// both ends go. Nil stays nil.
MaybeString convertAvailableFileName(const Log& log, const MaybeString& name);

/// Each component of a path cleaned and put behind a "/". An empty path stays empty, nil stays nil.
MaybeString convertAvailableString(const Log& log, const MaybeString& path);

}  // namespace umsservice
