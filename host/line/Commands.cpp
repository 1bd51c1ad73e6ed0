#include "line/Commands.h"

#include <CLI/CLI.hpp>

namespace umsctl {
namespace {

constexpr auto kAbout =
    "Serves players and phones that are attached as USB mass storage: media goes\n"
    "into the folder of its kind (Music, DCIM/Camera) on the internal memory or the\n"
    "card.";

constexpr auto kEnding =
    "Exit status: 0 all done (skipped files included), 1 something failed, 2 usage,\n"
    "3 no such volume, 130 cancelled (Ctrl-C; a second Ctrl-C ends at once and may\n"
    "leave a part of a file).\n"
    "Diagnostics: DEBUG.plist beside the program with the number DEBUG_LEVEL, 1 to 7.";

}  // namespace

void defineCommands(CLI::App& app, Command& chosen) {
  app.name("umsctl");
  app.description(kAbout);
  app.require_subcommand(1);
  app.set_version_flag("--version", "umsctl " UMSCTL_VERSION, "Show the version and end");
  app.set_help_flag("-h,--help", "Show this help and end");
  app.footer(kEnding);
  app.get_formatter()->column_width(30);
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  for (auto add : {addCopyCommands, addLookCommands, addRemovalCommands, addPodcastCommands})
    add(app, chosen);
}

}  // namespace umsctl
