/// The part of the command line that begins with "podcast".
#pragma once

#include <functional>

#include "ConflictPolicy.h"
#include "Device.h"
#include "ExitStatus.h"

namespace CLI {
class App;
}

namespace umsctl {

/// Options that commands of every kind have, as the command line adds them.
struct SharedOptions {
  void (*addVolumes)(CLI::App& command, VolumeFolders& volumes, bool required);
  void (*addOnConflict)(CLI::App& command, OnConflict& onConflict);
};

/// Adds "podcast" with its own commands; what a person chooses goes to `chosen`.
void addPodcast(CLI::App& app, std::function<ExitStatus()>& chosen, const SharedOptions& shared);

}  // namespace umsctl
