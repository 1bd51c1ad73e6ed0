#include "pages/Pages.h"

namespace umsctl {
namespace {

std::string quoted(const std::string& text) {
  std::string quoted = "'";
  for (char letter : text) {
    if (letter == '\'' || letter == '\\') quoted += '\\';
    quoted += letter;
  }
  return quoted + "'";
}

std::string values(const std::string& value) {
  auto choices = choicesOf(value);
  if (!choices.empty()) return " -x -a " + quoted(joined(choices, " "));
  if (value == "DIR") return " -x -a '(__fish_complete_directories (commandline -ct))'";
  if (value.find("FILE") != std::string::npos || value.find("PATH") != std::string::npos) return " -r -F";
  return " -x";
}

std::string optionLine(const std::string& start, const OptionEntry& option) {
  std::string line = start;
  for (const std::string& name : option.names)
    line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  return line + (option.value.empty() ? "" : values(option.value)) + " -d " + quoted(option.about) + "\n";
}

/// The last argument is the one that may come any number of times.
std::string argumentLine(const std::string& start, const CommandEntry& command) {
  if (command.arguments.empty()) return "";
  const std::string& name = command.arguments.back().name;
  if (name == "DIR") return start + " -a '(__fish_complete_directories (commandline -ct))'\n";
  bool isPath = name.find("FILE") != std::string::npos || name.find("PATH") != std::string::npos;
  return isPath ? start + " -F\n" : "";
}

std::string commandLines(const CommandEntry& command) {
  std::string start = "complete -c umsctl -n \"__umsctl_at '" + joined(command.words, " ") + "'\"";
  std::string lines;
  for (const CommandEntry& below : command.commands)
    lines += start + " -a " + below.words.back() + " -d " + quoted(below.about) + "\n";
  for (const OptionEntry& option : command.options) lines += optionLine(start, option);
  return lines + argumentLine(start, command);
}

std::string groupNames(const CommandEntry& program) {
  std::vector<std::string> names;
  for (const CommandEntry& command : program.commands)
    if (!command.commands.empty()) names.push_back(command.words.back());
  return joined(names, " ");
}

}  // namespace

std::string fishCompletion(const CommandEntry& program) {
  std::string script =
      "# Completion of umsctl for fish; made from the definition of its commands.\n\n"
      "# Whether the words in front of the cursor are those of one command.\n"
      "function __umsctl_at\n"
      "    set -l command\n"
      "    for word in (commandline -opc)[2..-1]\n"
      "        string match -q -- '-*' $word; and continue\n"
      "        set -a command $word\n"
      "        contains -- \"$command\" " +
      groupNames(program) +
      "; or break\n"
      "    end\n"
      "    test \"$command\" = \"$argv[1]\"\n"
      "end\n\n"
      "complete -c umsctl -f\n";
  walk(program, [&](const CommandEntry& command) { script += commandLines(command); });
  return script;
}

}  // namespace umsctl
