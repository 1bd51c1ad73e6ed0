#include "commands/Folders.h"
#include "commands/Remove.h"
#include "line/SharedOptions.h"

namespace umsctl {
namespace {

constexpr auto kRemoveEnding =
    "Only what lies on the volumes is deleted; folders stay. The .smi subtitles of a\n"
    "video go with it. Without a terminal nothing is deleted unless --yes is given.";

constexpr auto kRmdirEnding =
    "A folder with something in it is asked about. Without a terminal nothing is deleted\n"
    "unless --yes is given.";

void addRemove(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "rm", "Delete files from the device");
  auto options = optionsOf(command, chosen, removeFiles);
  addVolumes(command, options->volumes, true);
  addDeleting(command, chosen.wishes);
  command.add_option("FILE", options->files, "Files on the device")->required()->type_name("");
  command.footer(kRemoveEnding);
}

void addMkdir(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "mkdir", "Make a folder, with those above it where they are missing");
  auto options = optionsOf(command, chosen, makeFolder);
  addDryRun(command, chosen.wishes);
  command.add_option("DIR", *options, "The folder; one that is there already is fine")
      ->required()
      ->type_name("");
}

void addRmdir(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "rmdir", "Remove a folder");
  auto options = optionsOf(command, chosen, removeFolder);
  addDeleting(command, chosen.wishes);
  command.add_option("DIR", options->folder, "The folder; it must be empty unless --recursive is given")
      ->required()
      ->type_name("");
  command.add_flag("-r,--recursive", options->recursive, "Remove it with everything in it");
  command.footer(kRmdirEnding);
}

}  // namespace

void addRemovalCommands(CLI::App& app, Command& chosen) {
  for (auto add : {addRemove, addMkdir, addRmdir}) add(app, chosen);
}

}  // namespace umsctl
