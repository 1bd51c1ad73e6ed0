#include "line/CommandLine.h"

#include <CLI/CLI.hpp>
#include <set>
#include <sstream>

#include "EscapedName.h"
#include "Output.h"
#include "Refusal.h"
#include "line/Commands.h"

namespace umsctl {
namespace {

using Words = std::vector<std::string>;

/// Takes the options that every command has from the front of a line.
Words takeShared(Words& line) {
  static const std::set<std::string> kShared{"--json", "-q",  "--quiet",    "-v",       "--verbose",
                                             "-qv",    "-vq", "--no-color", "--profile"};
  Words taken;
  size_t next = 0;
  while (next < line.size() && (kShared.count(line[next]) > 0 || line[next].starts_with("--profile="))) {
    const bool hasValue = line[next] == "--profile" && next + 1 < line.size();
    taken.insert(taken.end(), line.begin() + static_cast<std::ptrdiff_t>(next),
                 line.begin() + static_cast<std::ptrdiff_t>(next + (hasValue ? 2 : 1)));
    next += hasValue ? 2 : 1;
  }
  line.erase(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(next));
  return taken;
}

/// The options that every command has may stand before it too; the parser knows them behind it.
Words behindCommand(Words line) {
  Words shared = takeShared(line), command;
  for (bool isGroup = true; isGroup && !line.empty() && !line.front().starts_with('-');) {
    command.push_back(line.front());
    line.erase(line.begin());
    isGroup = command.size() == 1 && command.front() == "podcast";
    if (!isGroup) break;
    const Words more = takeShared(line);
    shared.insert(shared.end(), more.begin(), more.end());
  }
  // Without a command, as with --help, they mean nothing.
  const bool isWhole = !command.empty() && (command.front() != "podcast" || command.size() == 2);
  if (isWhole) command.insert(command.end(), shared.begin(), shared.end());
  command.insert(command.end(), line.begin(), line.end());
  return command;
}

/// Some spellings mean something to the parser and may be file names as well: brackets, "++", and whatever
/// follows "--". A "./" in front changes neither the file nor anything else. In the parser's order: from the
/// end.
std::vector<std::string> forParser(const std::vector<std::string>& arguments) {
  std::vector<std::string> plain;
  bool namesOnly = false;
  for (const std::string& argument : arguments) {
    if (argument == "--" && !namesOnly) {
      namesOnly = true;
      continue;
    }
    bool isSpecial =
        argument.starts_with('[') || argument == "++" || (namesOnly && argument.starts_with('-'));
    plain.push_back(isSpecial ? "./" + argument : argument);
  }
  std::reverse(plain.begin(), plain.end());
  return plain;
}

/// The command that the line had come to when it stopped making sense; `words` are those it was called by,
/// each with a blank in front.
const CLI::App& reached(const CLI::App& app, std::string& words) {
  const CLI::App* command = &app;
  for (auto below = app.get_subcommands(); !below.empty(); below = command->get_subcommands()) {
    command = below.front();
    words += " " + command->get_name();
  }
  return *command;
}

/// A word where a command should stand is told as that, and not as an argument too many.
std::string causeOf(const CLI::App& app, const CLI::App& command, const std::string& words,
                    const CLI::ParseError& error) {
  const auto before = app.remaining();
  if (&command != &app && !before.empty() && before.front().starts_with('-'))
    return before.front() + " belongs behind the command";
  const bool isGroup = !command.get_subcommands([](const CLI::App*) { return true; }).empty();
  const auto unknown = command.remaining();
  if (!isGroup) return error.what();
  if (unknown.empty()) return command.get_parent() ? error.what() : "a command is missing";
  if (unknown.front().starts_with('-')) return "there is no option " + unknown.front();
  return "there is no command" + words + " " + unknown.front();
}

ExitStatus explained(const CLI::App& app, const CLI::ParseError& error) {
  std::ostringstream out;
  std::ostringstream err;
  if (app.exit(error, out, err) == 0) {
    std::string text = out.str();
    print(text.ends_with('\n') ? text : text + "\n");
    return ExitStatus::AllDone;
  }
  std::string words;
  const CLI::App& command = reached(app, words);
  complain("", escaped(causeOf(app, command, words, error)) + "\nTry 'umsctl" + words + " --help'.");
  return ExitStatus::Usage;
}

ExitStatus carriedOut(const Command& command, const Errand& errand) {
  try {
    return command.run(errand);
  } catch (const Refusal& refusal) {
    errand.events().complained(refusal.subject(), refusal.what());
    return refusal.exitStatus();
  } catch (const std::exception& failure) {
    errand.events().complained("", failure.what());
    return ExitStatus::SomeFailed;
  }
}

}  // namespace

ExitStatus runCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app;
  Command chosen;
  defineCommands(app, chosen);
  try {
    app.parse(forParser(behindCommand(arguments)));
  } catch (const CLI::ParseError& error) {
    return explained(app, error);
  }
  Interrupt interrupt;
  InterruptAction answering(interrupt, [] { answerInterrupt("cancelling"); });
  Errand errand(chosen.wishes, interrupt);
  ExitStatus status = carriedOut(chosen, errand);
  errand.events().ended(status);
  return status;
}

}  // namespace umsctl
