/// The commands of umsctl as plain data, for whatever is made from them: man pages, completions, the
/// reference.
///
/// Walked from the parser's own definition, so that no page can say anything else than --help.
#pragma once

#include <string>
#include <vector>

#include "line/Surroundings.h"

namespace umsctl {

/// An option or a flag.
struct OptionEntry {
  std::vector<std::string> names;  ///< with their dashes, short ones first
  std::string value;               ///< "DIR", "FILE", "0|1", ...; empty for a flag
  std::string about;
  std::string group;  ///< the heading in --help; "Options" unless the command says more
  bool isRequired = false;
};

/// A positional argument.
struct ArgumentEntry {
  std::string name;
  std::string about;
  bool isRequired = false;
  bool isRepeated = false;
};

struct CommandEntry {
  std::vector<std::string> words;  ///< as typed behind the program's name: "podcast", "push"
  std::string about;
  std::string ending;  ///< what --help says below the options
  std::vector<OptionEntry> options;
  std::vector<ArgumentEntry> arguments;
  std::vector<CommandEntry> commands;

  /// "umsctl podcast push", with any separator.
  std::string title(const std::string& separator = " ") const;
};

/// Whether a command has the option of that name, such as "--yes".
bool hasOption(const CommandEntry& command, const std::string& name);

/// What of a status or a variable concerns a command; of the program everything does, and what holds for some
/// commands only has their names in front. Empty when nothing does.
std::vector<std::string> remarksFor(const CommandEntry& command, const Surrounding& surrounding);

/// The program itself, with all of its commands below.
CommandEntry commandTree();

/// Calls `visit` with a command and everything below it, in the order of --help.
template <typename Visit>
void walk(const CommandEntry& command, Visit visit) {
  visit(command);
  for (const CommandEntry& below : command.commands) walk(below, visit);
}

/// The choices of a value such as "ask|skip|overwrite"; empty for any other value.
std::vector<std::string> choicesOf(const std::string& value);

/// Words with a separator between them.
std::string joined(const std::vector<std::string>& words, const std::string& separator);

/// The options by their groups, both in the order of --help.
std::vector<std::vector<OptionEntry>> groupsOf(const CommandEntry& command);

/// Options that must be given, then what stands for the others, then the arguments: "--into DIR [OPTION]...
/// FILE...".
std::string synopsisOf(const CommandEntry& command);

}  // namespace umsctl
