#include <algorithm>
#include <cctype>

#include "pages/Pages.h"
#include "pages/Prose.h"

namespace umsctl {
namespace {

/// Dashes stay dashes, so that an option can be copied out of the page; a line never looks like a request.
std::string escapedForRoff(const std::string& text) {
  std::string escaped;
  for (char letter : text) {
    bool isFirst = escaped.empty() || escaped.back() == '\n';
    if (isFirst && (letter == '.' || letter == '\'')) escaped += "\\&";
    switch (letter) {
      case '\\':
        escaped += "\\e";
        break;
      case '-':
        escaped += "\\-";
        break;
      case '~':
        escaped += "\\(ti";
        break;
      case '^':
        escaped += "\\(ha";
        break;
      case '`':
        escaped += "\\(ga";
        break;
      default:
        escaped += letter;
    }
  }
  return escaped;
}

std::string bold(const std::string& text) {
  return "\\fB" + escapedForRoff(text) + "\\fR";
}

std::string italic(const std::string& text) {
  return "\\fI" + escapedForRoff(text) + "\\fR";
}

std::string section(const std::string& title, const std::string& body) {
  return body.empty() ? "" : ".SH " + title + "\n" + body;
}

std::string roffProse(const std::string& text) {
  std::string page;
  for (const Block& block : blocksOf(text)) {
    page += block.isExample ? ".PP\n.RS 4\n.nf\n" : ".PP\n";
    for (const std::string& line : block.lines) page += escapedForRoff(line) + "\n";
    if (block.isExample) page += ".fi\n.RE\n";
  }
  return page;
}

std::string entry(const std::string& title, const std::string& about) {
  return ".TP\n" + title + "\n" + escapedForRoff(about) + "\n";
}

std::string manEntry(const OptionEntry& option) {
  std::string title;
  for (const std::string& name : option.names) title += (title.empty() ? "" : ", ") + bold(name);
  return entry(title + (option.value.empty() ? "" : " " + italic(option.value)), option.about);
}

std::string options(const CommandEntry& command) {
  std::string page;
  for (const auto& group : groupsOf(command)) {
    if (group.front().group != "Options") page += ".SS " + escapedForRoff(group.front().group) + "\n";
    for (const OptionEntry& option : group) page += manEntry(option);
  }
  return page;
}

std::string arguments(const CommandEntry& command) {
  std::string page;
  for (const ArgumentEntry& argument : command.arguments)
    page += entry(italic(argument.name) + (argument.isRepeated ? "..." : ""), argument.about);
  return page;
}

std::string commands(const CommandEntry& command) {
  std::string page;
  for (const CommandEntry& below : command.commands)
    page += entry(bold(below.title("-")) + "(1)", below.about);
  return page;
}

std::string firstLine(const std::string& text) {
  return text.substr(0, text.find(':'));
}

std::string description(const CommandEntry& command) {
  if (command.words.empty()) return roffProse(command.about + "\n\n" + command.ending);
  return roffProse(command.about + ".\n\n" + command.ending);
}

/// The pages above a command's, and of a command of a group those beside it.
std::string seeAlso(const CommandEntry& program, const CommandEntry& command) {
  std::vector<std::string> pages;
  walk(program, [&](const CommandEntry& other) {
    size_t depth = other.words.size();
    bool isAbove = depth < command.words.size() &&
                   std::equal(other.words.begin(), other.words.end(), command.words.begin());
    bool isBeside = depth > 1 && depth == command.words.size() && other.words != command.words;
    if (isAbove || isBeside) pages.push_back(bold(other.title("-")) + "(1)");
  });
  return pages.empty() ? "" : joined(pages, ",\n") + "\n";
}

}  // namespace

std::string manPage(const CommandEntry& program, const CommandEntry& command) {
  std::string name = command.title("-");
  std::string upper = name;
  for (char& letter : upper) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  std::string page = ".\\\" Made from the definition of the commands.\n";
  page += ".TH " + escapedForRoff(upper) + " 1 \"\" \"umsctl " UMSCTL_VERSION "\" \"User Commands\"\n";
  page += ".nh\n.ad l\n";
  page += section("NAME", escapedForRoff(name) + " \\- " + escapedForRoff(firstLine(command.about)) + "\n");
  page += section("SYNOPSIS", bold(command.title()) + " " + escapedForRoff(synopsisOf(command)) + "\n");
  page += section("DESCRIPTION", description(command));
  page += section("COMMANDS", commands(command));
  page += section("ARGUMENTS", arguments(command));
  page += section("OPTIONS", options(command));
  if (!command.words.empty())
    page += section("EXIT STATUS", "As told in " + bold(program.title()) + "(1).\n");
  page += section("SEE ALSO", command.words.empty() ? "" : seeAlso(program, command));
  return page;
}

}  // namespace umsctl
