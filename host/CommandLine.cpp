#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <map>
#include <sstream>

#include "Colour.h"
#include "EscapedName.h"
#include "Output.h"
#include "commands/Df.h"
#include "commands/Folders.h"
#include "commands/List.h"
#include "commands/Pull.h"
#include "commands/Push.h"
#include "commands/PutGet.h"
#include "commands/Remove.h"
#include "commands/Send.h"
#include "commands/Sync.h"
#include "commands/Tree.h"
#include "podcast/PodcastLine.h"

namespace umsctl {
namespace {

/// What is to be done, once the whole line has been understood.
using Command = std::function<ExitStatus()>;

constexpr auto kAbout =
    "Serves players and phones that are attached as USB mass storage: media goes\n"
    "into the folder of its kind (Music, DCIM/Camera) on the internal memory or the\n"
    "card.";

constexpr auto kEnding =
    "Exit status: 0 all done (skipped files included), 1 something failed, 2 usage,\n"
    "3 no such volume, 130 cancelled (Ctrl-C; a second Ctrl-C ends at once and may\n"
    "leave a part of a file).\n"
    "Diagnostics: DEBUG.plist beside the program with the number DEBUG_LEVEL, 1 to 7.";

constexpr auto kPushEnding =
    "Music goes to Music, images and videos go to DCIM/Camera; the kind is told by the\n"
    "name. A subtitle file (trip.smi beside trip.mp4) goes with its video. Files that\n"
    "fail are named with their cause at the end; the others are copied.\n"
    "\n"
    "A file whose name is on the device already is asked about on a terminal (y, n,\n"
    "all, none or quit); elsewhere it is skipped, and said so. --on-conflict decides it\n"
    "beforehand.\n"
    "\n"
    "Examples:\n"
    "  umsctl push --internal /media/me/PHONE *.mp3 holiday.jpg\n"
    "  umsctl push --internal /media/me/PHONE --card /media/me/CARD --to 1 trip.mp4";

constexpr auto kListEnding =
    "Hidden files and files in folders with a .nomedia marker are left out. Piped, each\n"
    "file is one line of fields with tabs between them: type, bytes, full path; with\n"
    "--tags also title, artist, album, genre, track, year, duration, pixels, date taken,\n"
    "camera, codecs. --long gives a table, cut to the width of a terminal and never cut\n"
    "elsewhere; a file whose tags cannot be read says so. Episodes whose files are gone\n"
    "leave the index of their podcast when it is listed.";

constexpr auto kSyncEnding =
    "Each file goes to the folder of its kind on the first volume; one that does not\n"
    "fit there goes to that folder of the other volume. Subtitles do not go along.\n"
    "\n"
    "Example:\n"
    "  umsctl sync --internal /media/me/PHONE --card /media/me/CARD *.mp3";

constexpr auto kRemoveEnding =
    "Only what lies on the volumes is deleted; folders stay. The .smi subtitles of a\n"
    "video go with it. Without a terminal nothing is deleted unless --yes is given.";

constexpr auto kPullEnding =
    "The files must lie on the volumes; they may be of any kind. A video takes the .smi\n"
    "subtitles beside it along.";

constexpr auto kSendEnding =
    "The files must lie on the volumes of the sending device (--from-internal,\n"
    "--from-card). Each goes to the folder of its kind on the other device. Subtitles do\n"
    "not go along.";

void addVolumes(CLI::App& command, VolumeFolders& volumes, bool required) {
  auto* internal =
      command.add_option("--internal", volumes.internal, "Folder of the internal memory")->type_name("DIR");
  auto* card = command.add_option("--card", volumes.card, "Folder of the memory card")->type_name("DIR");
  command.add_option("--profile", volumes.profile, "Default folders of the device, as JSON")
      ->type_name("FILE");
  if (!required) return;
  command.callback([internal, card] {
    if (internal->empty() && card->empty())
      throw CLI::ValidationError("no volume is given; name --internal DIR, --card DIR or both");
  });
}

void addOnConflict(CLI::App& command, OnConflict& onConflict) {
  static const std::map<std::string, OnConflict> choices{
      {"ask", OnConflict::Ask}, {"skip", OnConflict::Skip}, {"overwrite", OnConflict::Overwrite}};
  auto choose = [&onConflict](const std::string& word) {
    auto choice = choices.find(word);
    if (choice == choices.end())
      throw CLI::ValidationError("--on-conflict", word + " is none of ask, skip and overwrite");
    onConflict = choice->second;
  };
  command
      .add_option_function<std::string>("--on-conflict", choose,
                                        "What to do with a file that is there already")
      ->type_name("ask|skip|overwrite");
}

CLI::App& addCommand(CLI::App& app, const std::string& name, const std::string& about) {
  CLI::App* command = app.add_subcommand(name, about);
  return *command->group("Commands");
}

template <typename Options>
std::shared_ptr<Options> optionsOf(CLI::App& command, Command& chosen, ExitStatus (*run)(const Options&)) {
  auto options = std::make_shared<Options>();
  command.parse_complete_callback([options, run, &chosen] { chosen = [=] { return run(*options); }; });
  return options;
}

void addPush(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "push", "Copy media from the computer to the device");
  auto options = optionsOf(command, chosen, push);
  addVolumes(command, options->volumes, true);
  command.add_option("--to", options->to, "Volume to copy to; 0 unless said")->type_name("0|1");
  addOnConflict(command, options->onConflict);
  command.add_option("FILE", options->files, "Files to copy, in this order")->required()->type_name("");
  command.footer(kPushEnding);
}

void addList(CLI::App& app, Command& chosen) {
  static const std::map<std::string, uint32_t> types{
      {"all", 0}, {"music", 1}, {"image", 2}, {"video", 3}, {"podcast", 4}};
  CLI::App& command = addCommand(app, "ls", "List the media on the device");
  auto options = optionsOf(command, chosen, listMedia);
  addVolumes(command, options->volumes, true);
  auto choose = [options = options.get()](const std::string& word) {
    auto type = types.find(word);
    if (type == types.end())
      throw CLI::ValidationError("--type", word + " is none of music, image, video, podcast and all");
    options->mediaType = type->second;
  };
  command.add_option_function<std::string>("--type", choose, "Only media of this type; all unless said")
      ->type_name("music|image|video|podcast|all");
  command.add_flag("--tags", options->tags, "With the tags inside the files");
  command.add_flag("-l,--long", options->isLong, "As a table with title, artist, duration and the like");
  command.footer(kListEnding);
}

void addSync(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "sync", "Copy media to whichever volume has room");
  auto options = optionsOf(command, chosen, syncMedia);
  addVolumes(command, options->volumes, true);
  command.add_option("--first", options->first, "Volume to begin with; 0 unless said")->type_name("0|1");
  addOnConflict(command, options->onConflict);
  command.add_option("FILE", options->files, "Files to copy, in this order")->required()->type_name("");
  command.footer(kSyncEnding);
}

void addRemove(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "rm", "Delete files from the device");
  auto options = optionsOf(command, chosen, removeFiles);
  addVolumes(command, options->volumes, true);
  command.add_flag("-y,--yes", options->isAgreed, "Delete without a question");
  command.add_option("FILE", options->files, "Files on the device")->required()->type_name("");
  command.footer(kRemoveEnding);
}

void addPull(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "pull", "Copy files from the device to the computer");
  auto options = optionsOf(command, chosen, pull);
  addVolumes(command, options->volumes, true);
  command.add_option("--into", options->into, "Folder to copy into; made where it is missing")
      ->required()
      ->type_name("DIR");
  addOnConflict(command, options->onConflict);
  command.add_option("FILE", options->files, "Files on the device")->required()->type_name("");
  command.footer(kPullEnding);
}

void addPut(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "put", "Copy one file to a path on the device");
  auto options = optionsOf(command, chosen, put);
  addVolumes(command, options->volumes, true);
  addOnConflict(command, options->onConflict);
  command.add_option("FILE", options->from, "File on the computer")->required()->type_name("");
  command.add_option("DEVICE_PATH", options->to, "Where it goes: below a volume; a folder keeps its name")
      ->required()
      ->type_name("");
}

void addGet(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "get", "Copy one file from a path on the device");
  auto options = optionsOf(command, chosen, get);
  addVolumes(command, options->volumes, true);
  addOnConflict(command, options->onConflict);
  command.add_option("DEVICE_PATH", options->from, "File below a volume")->required()->type_name("");
  command.add_option("FILE", options->to, "Where it goes on the computer; a folder keeps its name")
      ->required()
      ->type_name("");
}

void addSend(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "send", "Copy media from one device to another");
  auto options = optionsOf(command, chosen, sendMedia);
  auto* internal = command.add_option("--from-internal", options->from.internal,
                                      "Folder of the sending device's internal memory");
  auto* card = command.add_option("--from-card", options->from.card, "Folder of its memory card");
  for (auto* option : {internal, card}) option->type_name("DIR");
  addVolumes(command, options->volumes, false);
  command.add_option("--to", options->to, "Volume to copy to; 0 unless said")->type_name("0|1");
  addOnConflict(command, options->onConflict);
  command.add_option("FILE", options->files, "Files on the sending device")->required()->type_name("");
  command.callback([options = options.get()] {
    if (options->from.none())
      throw CLI::ValidationError(
          "no sending volume is given; name --from-internal DIR, --from-card DIR or both");
    if (options->volumes.none())
      throw CLI::ValidationError("no receiving volume is given; name --internal DIR, --card DIR or both");
  });
  command.footer(kSendEnding);
}

void addDf(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "df", "Show the room on each volume");
  auto options = optionsOf(command, chosen, df);
  addVolumes(command, options->volumes, true);
  command.add_flag("-b,--bytes", options->inBytes, "Plain numbers of bytes");
}

void addMkdir(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "mkdir", "Make a folder, with those above it where they are missing");
  auto options = optionsOf(command, chosen, makeFolder);
  command.add_option("DIR", *options, "The folder; one that is there already is fine")
      ->required()
      ->type_name("");
}

void addRmdir(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "rmdir", "Remove a folder");
  auto options = optionsOf(command, chosen, removeFolder);
  command.add_option("DIR", options->folder, "The folder; it must be empty unless --recursive is given")
      ->required()
      ->type_name("");
  command.add_flag("-r,--recursive", options->recursive, "Remove it with everything in it");
}

void addTree(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "tree", "Show the folders and files of a device or of one folder");
  auto options = optionsOf(command, chosen, tree);
  addVolumes(command, options->volumes, false);
  command.add_option("DIR", options->folder, "Show this folder instead of volumes")->type_name("");
  command.callback([options] {
    if (options->volumes.none() == !options->folder)
      throw CLI::ValidationError("give either volumes (--internal DIR, --card DIR) or a folder DIR");
  });
  command.footer("Hidden folders and files (names that begin with a dot) are left out.");
}

/// For each command, and those below it.
void addNoColour(CLI::App& app) {
  for (CLI::App* command : app.get_subcommands({})) {
    command->add_flag_callback("--no-color", forbidColour,
                               "Without colour; so does NO_COLOR in the environment");
    addNoColour(*command);
  }
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

}  // namespace

ExitStatus runCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app(kAbout, "umsctl");
  app.require_subcommand(1);
  app.set_version_flag("--version", "umsctl " UMSCTL_VERSION, "Show the version and end");
  app.set_help_flag("-h,--help", "Show this help and end");
  app.footer(kEnding);
  app.get_formatter()->column_width(30);
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  Command chosen;
  for (auto add : {addPush, addSync, addPull, addSend, addPut, addGet, addList, addRemove}) add(app, chosen);
  for (auto add : {addDf, addTree, addMkdir, addRmdir}) add(app, chosen);
  addPodcast(app, chosen, {addVolumes, addOnConflict});
  addNoColour(app);

  try {
    app.parse(forParser(arguments));
  } catch (const CLI::ParseError& error) {
    return explained(app, error);
  }
  return chosen();
}

}  // namespace umsctl
