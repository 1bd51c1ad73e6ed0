/// Tags are read by a process of its own: a broken file, or one that was made to do harm, may bring a
/// reader's library down or keep it busy for ever, and must not take a transfer with it.
///
/// The process is started before the program has any thread and ends with it. It only watches over a second
/// one, which reads and may die: then there is soon another. Safe from any thread; one file is read at a
/// time.
#pragma once

#include <string>

#include "umsservice/Value.h"

namespace umsctl {

class TagProcess {
 public:
  /// Starts it, once, while the program has one thread. Where it cannot be started, files are read in this
  /// process.
  static void start();
  /// What `fileTags` gives; nothing for a file that brought its reader down or took it too long.
  static umsservice::MaybeDictionary read(const std::string& path);
};

}  // namespace umsctl
