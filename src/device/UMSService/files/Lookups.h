/// What the host asks of a file description before it plays a file or looks for one: a mounted device
/// answers from the description alone, and no file is touched.
#pragma once

#include "Log.h"

namespace umsservice {

/// The path to play: the file is played where it lies. Nil without a description or a path in it.
MaybeString copyContentToPlay(const Log& log, const MaybeDictionary& fileInformation);

/// Whether the description carries a path.
bool isExistContentFromMac(const Log& log, const MaybeDictionary& fileInformation);

}  // namespace umsservice
