#include "pages/Pages.h"

namespace umsctl {
namespace {

/// What a word in the place of a value or an argument may be, as a call of one of the script's own functions.
std::string offered(const std::string& value) {
  auto choices = choicesOf(value);
  if (!choices.empty()) return "_umsctl_words \"" + joined(choices, " ") + "\"";
  if (value == "DIR") return "_umsctl_folders";
  if (value.find("FILE") != std::string::npos || value.find("PATH") != std::string::npos)
    return "_umsctl_files";
  return "_umsctl_words \"\"";
}

std::string optionWords(const CommandEntry& command) {
  std::vector<std::string> words;
  for (const OptionEntry& option : command.options)
    words.insert(words.end(), option.names.begin(), option.names.end());
  return joined(words, " ");
}

std::string valueCases(const CommandEntry& command) {
  std::string cases;
  for (const OptionEntry& option : command.options) {
    if (option.value.empty()) continue;
    cases += "        " + joined(option.names, "|") + ") " + offered(option.value) + "; return ;;\n";
  }
  return cases.empty() ? "" : "      case \"$previous\" in\n" + cases + "      esac\n";
}

/// Commands, or the last argument: the one that may come any number of times.
std::string elsewhere(const CommandEntry& command) {
  if (!command.commands.empty()) {
    std::vector<std::string> names;
    for (const CommandEntry& below : command.commands) names.push_back(below.words.back());
    return "_umsctl_words \"" + joined(names, " ") + "\"";
  }
  return command.arguments.empty() ? "_umsctl_words \"\"" : offered(command.arguments.back().name);
}

std::string commandCase(const CommandEntry& command) {
  return "    \"" + joined(command.words, " ") + "\")\n" + valueCases(command) +
         "      if [[ \"$current\" == -* && -z \"$names\" ]]; then _umsctl_words \"" + optionWords(command) +
         "\"; else " + elsewhere(command) + "; fi ;;\n";
}

/// The commands that have commands of their own; behind them a second word belongs to the command.
std::string groupPattern(const CommandEntry& program) {
  std::vector<std::string> names;
  for (const CommandEntry& command : program.commands)
    if (!command.commands.empty()) names.push_back(command.words.back());
  return joined(names, "|");
}

constexpr auto kHead = R"(# Completion of umsctl for bash; made from the definition of its commands.

_umsctl_words() {
  compopt +o default 2>/dev/null
  COMPREPLY=($(compgen -W "$1" -- "$current"))
}

_umsctl_folders() { compopt +o default -o dirnames 2>/dev/null; }

# Left to the shell, which knows how to quote names.
_umsctl_files() { :; }

_umsctl() {
  local current="${COMP_WORDS[COMP_CWORD]}" previous="${COMP_WORDS[COMP_CWORD - 1]}" command="" names="" word i
  COMPREPLY=()
  # --option=value comes as three words.
  if [[ "$current" == "=" ]]; then
    current=""
  elif [[ "$previous" == "=" ]]; then
    previous="${COMP_WORDS[COMP_CWORD - 2]}"
  fi
  # What follows "--" are names, dashes or not.
  for ((i = 1; i < COMP_CWORD; i++)); do [[ "${COMP_WORDS[i]}" == -- ]] && names=only; done
  for ((i = 1; i < COMP_CWORD; i++)); do
    word="${COMP_WORDS[i]}"
    [[ "$word" == -* ]] && continue
    command="${command:+$command }$word"
)";

}  // namespace

std::string bashCompletion(const CommandEntry& program) {
  std::string script = kHead;
  std::string groups = groupPattern(program);
  if (!groups.empty()) script += "    case \"$command\" in " + groups + ") continue ;; esac\n";
  script += "    break\n  done\n  case \"$command\" in\n";
  walk(program, [&](const CommandEntry& command) { script += commandCase(command); });
  return script + "    *) _umsctl_words \"\" ;;\n  esac\n}\n\ncomplete -o default -F _umsctl umsctl\n";
}

}  // namespace umsctl
