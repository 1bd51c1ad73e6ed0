/// What a command is handed besides its own options: how the person wants it done, to whom it tells what
/// happens, the files it works on, and whether the person still wants it.
///
/// Made by the command line for one command and outlives it. Safe from any thread.
#pragma once

#include <memory>

#include "Events.h"
#include "Interrupt.h"
#include "Wishes.h"
#include "rehearsal/RehearsedFiles.h"

namespace umsctl {

class Errand {
 public:
  Errand(const Wishes& wishes, Interrupt& interrupt);

  const Wishes& wishes() const { return wishes_; }
  Events& events() const { return *events_; }
  Interrupt& interrupt() const { return interrupt_; }
  /// Once a person has interrupted, throws the `Refusal` with which the command ends. Cheap enough for every
  /// file.
  void stopIfCancelled() const;
  /// The running system's files. A dry run has files on which every change is only noted down.
  const std::shared_ptr<umsservice::FileSystem>& files() const { return files_; }
  /// Those of a dry run; null for a run that changes files.
  const std::shared_ptr<RehearsedFiles>& rehearsal() const { return rehearsal_; }

 private:
  const Wishes wishes_;
  const std::unique_ptr<Events> events_;
  Interrupt& interrupt_;
  const std::shared_ptr<RehearsedFiles> rehearsal_;
  const std::shared_ptr<umsservice::FileSystem> files_;
};

}  // namespace umsctl
