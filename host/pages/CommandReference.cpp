#include "pages/Pages.h"
#include "pages/ProfileFormat.h"
#include "pages/Prose.h"

namespace umsctl {
namespace {

/// In a table a bar would end the cell; angle brackets would be markup.
std::string escapedForCell(const std::string& text) {
  std::string escaped;
  for (char letter : text) {
    if (letter == '|') escaped += '\\';
    if (letter == '<') {
      escaped += "&lt;";
    } else if (letter == '\n') {
      escaped += "<br>";
    } else {
      escaped += letter;
    }
  }
  return escaped;
}

std::string code(const std::string& text) {
  return "`" + escapedForCell(text) + "`";
}

std::string row(const std::string& first, const std::string& second) {
  return "| " + first + " | " + second + " |\n";
}

std::string table(const std::string& title, const std::string& rows) {
  return rows.empty() ? "" : row(title, "meaning") + "|---|---|\n" + rows + "\n";
}

std::string argumentTable(const CommandEntry& command) {
  std::string rows;
  for (const ArgumentEntry& argument : command.arguments)
    rows += row(code(argument.name + (argument.isRepeated ? "..." : "")), escapedForCell(argument.about));
  return table("argument", rows);
}

std::string optionRow(const OptionEntry& option) {
  std::string names = joined(option.names, ", ") + (option.value.empty() ? "" : " " + option.value);
  return row(code(names), escapedForCell(option.about) + (option.isRequired ? " (must be given)" : ""));
}

std::string optionTables(const CommandEntry& command) {
  std::string tables;
  for (const auto& group : groupsOf(command)) {
    std::string rows;
    for (const OptionEntry& option : group) rows += optionRow(option);
    const std::string& title = group.front().group;
    tables += table(title == "Options" ? "option" : escapedForCell(title), rows);
  }
  return tables;
}

/// Outside of examples a star or an angle bracket would be markup.
std::string escapedForProse(const std::string& text) {
  std::string escaped;
  for (char letter : text) {
    if (letter == '*' || letter == '<' || letter == '`') escaped += '\\';
    escaped += letter;
  }
  return escaped;
}

std::string prose(const std::string& text) {
  std::string page;
  for (const Block& block : blocksOf(text)) {
    for (const std::string& line : block.lines)
      page += (block.isExample ? "    " + line : escapedForProse(line)) + "\n";
    page += "\n";
  }
  return page;
}

std::string overview(const CommandEntry& program) {
  std::string rows;
  walk(program, [&](const CommandEntry& command) {
    if (command.words.empty()) return;
    std::string words = joined(command.words, " ");
    rows += row("[" + code(words) + "](#umsctl-" + joined(command.words, "-") + ")",
                escapedForCell(command.about));
  });
  return table("command", rows);
}

std::string surroundingsTable(const CommandEntry& program, const std::string& title,
                              const std::vector<Surrounding>& surroundings) {
  std::string rows;
  for (const Surrounding& surrounding : surroundings)
    rows += row(code(surrounding.name), escapedForCell(joined(remarksFor(program, surrounding), "\n")));
  return table(title, rows);
}

/// What holds for all commands.
std::string surroundings(const CommandEntry& program) {
  std::string page = "## Exit statuses\n\n" + surroundingsTable(program, "status", exitStatuses());
  page += "## Environment\n\n" + surroundingsTable(program, "variable", environmentVariables());
  page += std::string(kEnvironmentEnding) + "\n\n## Profiles\n\n";
  for (const ProfileChapter& chapter : profileFormat()) {
    if (&chapter != &profileFormat().front()) page += "### " + chapter.title + "\n\n";
    page += prose(chapter.text);
  }
  return page;
}

std::string chapter(const CommandEntry& command) {
  std::string page = "## " + command.title() + "\n\n";
  if (!command.words.empty()) page += command.about + ".\n\n";
  page += "    " + command.title() + " " + synopsisOf(command) + "\n\n";
  return page + argumentTable(command) + optionTables(command) + prose(command.ending);
}

}  // namespace

std::string commandReference(const CommandEntry& program) {
  std::string page =
      "# Commands of umsctl\n\n<!-- Made from the definition of the commands; do not edit. -->\n\n";
  page += prose(program.about) + overview(program);
  page +=
      "For all of them: [exit statuses](#exit-statuses), [environment](#environment), and "
      "[profiles](#profiles) of "
      "devices\nwith folders of their own.\n\n";
  walk(program, [&](const CommandEntry& command) { page += chapter(command); });
  page += surroundings(program);
  page.pop_back();  // one end of line is enough at the end of the page
  return page;
}

}  // namespace umsctl
