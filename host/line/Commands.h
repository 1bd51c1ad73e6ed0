/// Every command of umsctl, with its options and its help.
///
/// The definition is one object of the parser: the command line is read by it, and whatever else is made from
/// the commands can walk it.
#pragma once

#include <functional>

#include "ExitStatus.h"

namespace CLI {
class App;
}

namespace umsctl {

/// What is to be done, once the whole line has been understood.
using Command = std::function<ExitStatus()>;

/// The whole definition. What a person chooses goes to `chosen`, which must outlive the parser.
void defineCommands(CLI::App& app, Command& chosen);

/// push, sync, pull, send, put and get.
void addCopyCommands(CLI::App& app, Command& chosen);
/// ls, df and tree.
void addLookCommands(CLI::App& app, Command& chosen);
/// rm, mkdir and rmdir.
void addRemovalCommands(CLI::App& app, Command& chosen);
/// "podcast" with its own commands.
void addPodcastCommands(CLI::App& app, Command& chosen);

}  // namespace umsctl
