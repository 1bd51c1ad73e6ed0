#include <algorithm>
#include <cctype>

#include "pages/Pages.h"
#include "pages/ProfileFormat.h"
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

std::string entries(const CommandEntry& command, const std::vector<Surrounding>& surroundings) {
  std::string page;
  for (const Surrounding& surrounding : surroundings) {
    const auto remarks = remarksFor(command, surrounding);
    if (remarks.empty()) continue;
    page += ".TP\n" + bold(surrounding.name) + "\n";
    for (const std::string& remark : remarks)
      page += (&remark == &remarks.front() ? "" : ".br\n") + escapedForRoff(remark) + "\n";
  }
  return page;
}

std::string environment(const CommandEntry& command) {
  return entries(command, environmentVariables()) + ".PP\n" + escapedForRoff(kEnvironmentEnding) + "\n";
}

/// Commands that a person compares with each other.
constexpr const char* kRelatives[][6] = {{"push", "sync", "pull", "send", "put", "get"},
                                         {"ls", "tree", "df", "podcast ls"},
                                         {"rm", "rmdir", "mkdir", "podcast rm"}};

bool areRelatives(const CommandEntry& one, const CommandEntry& other) {
  const std::string left = joined(one.words, " "), right = joined(other.words, " ");
  const auto has = [](const auto& family, const std::string& words) {
    return std::any_of(std::begin(family), std::end(family),
                       [&words](const char* member) { return member && words == member; });
  };
  return std::any_of(std::begin(kRelatives), std::end(kRelatives),
                     [&](const auto& family) { return has(family, left) && has(family, right); });
}

/// The pages above a command's, those below it, and those beside it.
bool isRelated(const CommandEntry& command, const CommandEntry& other) {
  if (other.words == command.words) return false;
  const size_t depth = other.words.size();
  const size_t common = std::min(depth, command.words.size());
  const bool isOneLine = std::equal(
      other.words.begin(), other.words.begin() + static_cast<std::ptrdiff_t>(common), command.words.begin());
  const bool isBeside =
      depth > 1 && depth == command.words.size() && other.words.front() == command.words.front();
  return isOneLine || isBeside || areRelatives(command, other);
}

std::string profileReference() {
  return bold("umsctl-profile") + "(5)";
}

std::string seeAlso(const CommandEntry& program, const CommandEntry& command) {
  std::vector<std::string> pages;
  walk(program, [&](const CommandEntry& other) {
    if (isRelated(command, other)) pages.push_back(bold(other.title("-")) + "(1)");
  });
  if (command.words.empty() || hasOption(command, "--profile")) pages.push_back(profileReference());
  return joined(pages, ",\n") + "\n";
}

std::string upperCased(std::string text) {
  for (char& letter : text) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  return text;
}

std::string head(const std::string& name, const std::string& number, const std::string& manual,
                 const std::string& purpose) {
  return ".\\\" Made from the definition of the commands.\n.TH " + escapedForRoff(upperCased(name)) + " " +
         number + " \"\" \"umsctl " UMSCTL_VERSION "\" \"" + manual + "\"\n.nh\n.ad l\n" +
         section("NAME", escapedForRoff(name) + " \\- " + escapedForRoff(purpose) + "\n");
}

}  // namespace

std::string manPage(const CommandEntry& program, const CommandEntry& command) {
  std::string page = head(command.title("-"), "1", "User Commands", firstLine(command.about));
  page += section("SYNOPSIS", bold(command.title()) + " " + escapedForRoff(synopsisOf(command)) + "\n");
  page += section("DESCRIPTION", description(command));
  page += section("COMMANDS", commands(command));
  page += section("ARGUMENTS", arguments(command));
  page += section("OPTIONS", options(command));
  page += section("EXIT STATUS", entries(command, exitStatuses()));
  page += section("ENVIRONMENT", environment(command));
  page += section("SEE ALSO", seeAlso(program, command));
  return page;
}

std::string profilePage(const CommandEntry& program) {
  std::string page =
      head("umsctl-profile", "5", "File Formats", "default folders of a device, for --profile");
  for (const ProfileChapter& chapter : profileFormat())
    page += section(upperCased(chapter.title), roffProse(chapter.text));
  std::vector<std::string> readers{bold("umsctl") + "(1)"};
  walk(program, [&](const CommandEntry& command) {
    if (hasOption(command, "--profile")) readers.push_back(bold(command.title("-")) + "(1)");
  });
  return page + section("SEE ALSO", joined(readers, ",\n") + "\n");
}

}  // namespace umsctl
