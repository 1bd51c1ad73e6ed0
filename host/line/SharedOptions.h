/// The options that commands of several kinds have; each is defined here once, so that it means the same
/// everywhere.
///
/// Used by the files beside this one while the command line is built, on the main thread.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "ConflictPolicy.h"
#include "Device.h"
#include "line/Commands.h"

namespace umsctl {

/// A command with its line in the overview.
CLI::App& addCommand(CLI::App& app, const std::string& name, const std::string& about);

/// The options of a command, filled in as the line is understood; then the command is the one to run.
template <typename Options>
std::shared_ptr<Options> optionsOf(CLI::App& command, Command& chosen, ExitStatus (*run)(const Options&)) {
  auto options = std::make_shared<Options>();
  command.parse_complete_callback([options, run, &chosen] { chosen = [=] { return run(*options); }; });
  return options;
}

/// --internal and --card. `required` refuses a line without either; a command with a check of its own calls
/// `requireVolumes` there.
void addVolumes(CLI::App& command, VolumeFolders& volumes, bool required);
void requireVolumes(const VolumeFolders& volumes);

/// --from-internal and --from-card of a command that reads from another device.
void addSendingVolumes(CLI::App& command, VolumeFolders& from);
void requireSendingVolumes(const VolumeFolders& from);

void addOnConflict(CLI::App& command, OnConflict& onConflict);
void addYes(CLI::App& command, bool& isAgreed);

}  // namespace umsctl
