#include "pages/Pages.h"

namespace umsctl {
namespace {

/// Inside single quotes, within the brackets of a description.
std::string escapedForZsh(const std::string& text) {
  std::string escaped;
  for (char letter : text) {
    if (letter == '\'') {
      escaped += "'\\''";
      continue;
    }
    if (letter == '[' || letter == ']' || letter == ':' || letter == '\\') escaped += '\\';
    escaped += letter;
  }
  return escaped;
}

std::string action(const std::string& value) {
  auto choices = choicesOf(value);
  if (!choices.empty()) return "(" + joined(choices, " ") + ")";
  if (value == "DIR") return "_files -/";
  if (value.find("FILE") != std::string::npos || value.find("PATH") != std::string::npos) return "_files";
  return " ";
}

std::string functionName(const CommandEntry& command) {
  return "_" + command.title("_");
}

/// One for each name, which shut each other out.
std::string optionSpecs(const CommandEntry& command) {
  std::string specs;
  for (const OptionEntry& option : command.options) {
    for (const std::string& name : option.names) {
      std::string sign = option.value.empty() ? "" : name.starts_with("--") ? "=" : "+";
      std::string value =
          option.value.empty() ? "" : ":" + escapedForZsh(option.value) + ":" + action(option.value);
      specs += " \\\n    '(" + joined(option.names, " ") + ")" + name + sign + "[" +
               escapedForZsh(option.about) + "]" + value + "'";
    }
  }
  return specs;
}

std::string argumentSpecs(const CommandEntry& command) {
  std::string specs;
  for (const ArgumentEntry& argument : command.arguments) {
    std::string place = argument.isRepeated ? "*:" : argument.isRequired ? ":" : "::";
    specs += " \\\n    '" + place + argument.name + ":" + action(argument.name) + "'";
  }
  return specs;
}

std::string plainFunction(const CommandEntry& command) {
  return functionName(command) + "() {\n  _arguments -s -S" + optionSpecs(command) + argumentSpecs(command) +
         "\n}\n\n";
}

std::string groupFunction(const CommandEntry& command) {
  std::string names;
  std::string calls;
  for (const CommandEntry& below : command.commands) {
    names += "\n    '" + below.words.back() + ":" + escapedForZsh(below.about) + "'";
    calls += "        " + below.words.back() + ") " + functionName(below) + " ;;\n";
  }
  return functionName(command) + "() {\n  local context state state_descr line\n  typeset -A opt_args\n" +
         "  local -a commands=(" + names + "\n  )\n  _arguments -C" + optionSpecs(command) +
         " \\\n    '1:command:->command' \\\n    '*::argument:->argument'\n  case \"$state\" in\n" +
         "    command) _describe command commands ;;\n    argument)\n      case \"${line[1]}\" in\n" + calls +
         "      esac ;;\n  esac\n}\n\n";
}

}  // namespace

std::string zshCompletion(const CommandEntry& program) {
  std::string script =
      "#compdef umsctl\n# Completion of umsctl for zsh; made from the definition of its commands.\n\n";
  walk(program, [&](const CommandEntry& command) {
    script += command.commands.empty() ? plainFunction(command) : groupFunction(command);
  });
  return script + functionName(program) + " \"$@\"\n";
}

}  // namespace umsctl
