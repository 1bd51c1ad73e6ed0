#include "line/Commands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "line/Surroundings.h"

namespace umsctl {
namespace {

constexpr auto kAbout =
    "Serves players and phones that are attached as USB mass storage: media goes\n"
    "into the folder of its kind (Music, DCIM/Camera) on the internal memory or the\n"
    "card.";

constexpr auto kEnding = "Diagnostics: DEBUG.plist beside the program with the number DEBUG_LEVEL, 1 to 7.";

/// "umsctl-podcast-push"
std::string pageOf(const CLI::App& command) {
  return command.get_parent() ? pageOf(*command.get_parent()) + "-" + command.get_name() : command.get_name();
}

/// Below what a command says of itself stands what holds for all of them. Pages that are made from the
/// commands have chapters for that, so it is no part of the command's own words.
class HelpFormatter final : public CLI::Formatter {
 public:
  std::string make_footer(const CLI::App* command) const override {
    std::string statuses;
    for (const Surrounding& status : exitStatuses())
      statuses += (statuses.empty() ? "Exit status: " : ", ") + status.name + " " + status.brief;
    const std::string own = command->get_footer();
    return own + (own.empty() ? "" : "\n\n") + statuses + "\nMore: man " + pageOf(*command) + "\n";
  }
};

}  // namespace

void defineCommands(CLI::App& app, Command& chosen) {
  app.name("umsctl");
  app.description(kAbout);
  app.require_subcommand(1);
  app.set_version_flag("--version", "umsctl " UMSCTL_VERSION, "Show the version and end");
  app.set_help_flag("-h,--help", "Show this help and end");
  auto formatter = std::make_shared<HelpFormatter>();
  formatter->column_width(30);
  formatter->label("SUBCOMMAND", "COMMAND");
  app.formatter(formatter);  // the commands have it from the program
  for (auto add : {addCopyCommands, addLookCommands, addRemovalCommands, addPodcastCommands})
    add(app, chosen);
  app.footer(kEnding);  // last: commands have it from the program otherwise
}

}  // namespace umsctl
