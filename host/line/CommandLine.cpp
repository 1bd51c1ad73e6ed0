#include "line/CommandLine.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "EscapedName.h"
#include "Output.h"
#include "Refusal.h"
#include "line/Commands.h"

namespace umsctl {
namespace {

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

ExitStatus explained(const CLI::App& app, const CLI::ParseError& error) {
  std::ostringstream out;
  std::ostringstream err;
  if (app.exit(error, out, err) == 0) {
    std::string text = out.str();
    print(text.ends_with('\n') ? text : text + "\n");
    return ExitStatus::AllDone;
  }
  const auto chosen = app.get_subcommands();
  const auto unknown = app.remaining();
  std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
  std::string cause = error.what();
  if (chosen.empty())
    cause = unknown.empty() ? "a command is missing" : "there is no command " + unknown.front();
  complain("", escaped(cause) + "\nTry 'umsctl" + command + " --help'.");
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
    app.parse(forParser(arguments));
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
