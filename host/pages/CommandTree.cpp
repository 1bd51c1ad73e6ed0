#include "pages/CommandTree.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "line/Commands.h"

namespace umsctl {
namespace {

OptionEntry optionEntry(const CLI::Option& option) {
  OptionEntry entry;
  for (const std::string& name : option.get_snames()) entry.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) entry.names.push_back("--" + name);
  bool takesValue = option.get_items_expected_max() > 0;
  if (takesValue) entry.value = option.get_type_name().empty() ? "VALUE" : option.get_type_name();
  entry.about = option.get_description();
  entry.group = option.get_group();
  entry.isRequired = option.get_required();
  return entry;
}

ArgumentEntry argumentEntry(const CLI::Option& option) {
  return {option.get_name(true), option.get_description(), option.get_required(),
          option.get_items_expected_max() > 1};
}

CommandEntry commandEntry(const CLI::App& app, const std::vector<std::string>& words) {
  CommandEntry entry{words, app.get_description(), app.get_footer(), {}, {}, {}};
  for (const CLI::Option* option : app.get_options({})) {
    if (option->get_group().empty()) continue;  // hidden from --help
    if (option->get_positional()) {
      entry.arguments.push_back(argumentEntry(*option));
    } else {
      entry.options.push_back(optionEntry(*option));
    }
  }
  for (const CLI::App* below : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (below->get_group().empty()) continue;
    auto belowWords = words;
    belowWords.push_back(below->get_name());
    entry.commands.push_back(commandEntry(*below, belowWords));
  }
  return entry;
}

}  // namespace

std::string CommandEntry::title(const std::string& separator) const {
  return words.empty() ? "umsctl" : "umsctl" + separator + joined(words, separator);
}

bool hasOption(const CommandEntry& command, const std::string& name) {
  return std::any_of(command.options.begin(), command.options.end(), [&name](const OptionEntry& option) {
    return std::find(option.names.begin(), option.names.end(), name) != option.names.end();
  });
}

std::vector<std::string> remarksFor(const CommandEntry& command, const Surrounding& surrounding) {
  std::vector<std::string> remarks;
  const std::string words = joined(command.words, " ");
  for (const Remark& remark : surrounding.remarks) {
    const bool isForAll = remark.of.empty();
    const bool isMeant = std::any_of(remark.of.begin(), remark.of.end(), [&](const std::string& name) {
      return name == words || hasOption(command, name);
    });
    const bool isProgram = command.words.empty();
    if (!isForAll && !isMeant && !isProgram) continue;
    const bool isNamed = isProgram && !isForAll && !remark.of.front().starts_with('-');
    remarks.push_back((isNamed ? joined(remark.of, ", ") + ": " : "") + remark.words);
  }
  return remarks;
}

CommandEntry commandTree() {
  CLI::App app;
  Command chosen;
  defineCommands(app, chosen);
  return commandEntry(app, {});
}

std::vector<std::string> choicesOf(const std::string& value) {
  std::vector<std::string> choices;
  if (value.find('|') == std::string::npos) return choices;
  std::istringstream words(value);
  for (std::string word; std::getline(words, word, '|');) choices.push_back(word);
  return choices;
}

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : separator) + word;
  return text;
}

std::vector<std::vector<OptionEntry>> groupsOf(const CommandEntry& command) {
  std::vector<std::vector<OptionEntry>> groups;
  for (const OptionEntry& option : command.options) {
    auto same = [&option](const auto& group) { return group.front().group == option.group; };
    auto group = std::find_if(groups.begin(), groups.end(), same);
    if (group == groups.end()) group = groups.insert(groups.end(), std::vector<OptionEntry>{});
    group->push_back(option);
  }
  return groups;
}

std::string synopsisOf(const CommandEntry& command) {
  std::vector<std::string> parts;
  for (const OptionEntry& option : command.options)
    if (option.isRequired) parts.push_back(option.names.back() + " " + option.value);
  parts.push_back("[OPTION]...");
  if (!command.commands.empty()) parts.push_back("COMMAND");
  for (const ArgumentEntry& argument : command.arguments) {
    std::string name = argument.name + (argument.isRepeated ? "..." : "");
    parts.push_back(argument.isRequired ? name : "[" + name + "]");
  }
  return joined(parts, " ");
}

}  // namespace umsctl
