#include "commands/Pull.h"
#include "commands/Push.h"
#include "commands/PutGet.h"
#include "commands/Send.h"
#include "commands/Sync.h"
#include "line/SharedOptions.h"

namespace umsctl {
namespace {

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

constexpr auto kSyncEnding =
    "Each file goes to the folder of its kind on the first volume; one that does not\n"
    "fit there goes to that folder of the other volume. Subtitles do not go along.\n"
    "\n"
    "Example:\n"
    "  umsctl sync --internal /media/me/PHONE --card /media/me/CARD *.mp3";

constexpr auto kPullEnding =
    "The files must lie on the volumes; they may be of any kind. A video takes the .smi\n"
    "subtitles beside it along.";

constexpr auto kSendEnding =
    "The files must lie on the volumes of the sending device (--from-internal,\n"
    "--from-card). Each goes to the folder of its kind on the other device. Subtitles do\n"
    "not go along.";

void addPush(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "push", "Copy media from the computer to the device");
  auto options = optionsOf(command, chosen, push);
  addVolumes(command, options->volumes, true);
  command.add_option("--to", options->to, "Volume to copy to; 0 unless said")->type_name("0|1");
  addCopying(command, chosen.wishes);
  command.add_option("FILE", options->files, "Files to copy, in this order")->required()->type_name("");
  command.footer(kPushEnding);
}

void addSync(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "sync", "Copy media to whichever volume has room");
  auto options = optionsOf(command, chosen, syncMedia);
  addVolumes(command, options->volumes, true);
  command.add_option("--first", options->first, "Volume to begin with; 0 unless said")->type_name("0|1");
  addCopying(command, chosen.wishes);
  command.add_option("FILE", options->files, "Files to copy, in this order")->required()->type_name("");
  command.footer(kSyncEnding);
}

void addPull(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "pull", "Copy files from the device to the computer");
  auto options = optionsOf(command, chosen, pull);
  addVolumes(command, options->volumes, true);
  command.add_option("--into", options->into, "Folder to copy into; made where it is missing")
      ->required()
      ->type_name("DIR");
  addCopying(command, chosen.wishes);
  command.add_option("FILE", options->files, "Files on the device")->required()->type_name("");
  command.footer(kPullEnding);
}

void addSend(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "send", "Copy media from one device to another");
  auto options = optionsOf(command, chosen, sendMedia);
  addSendingVolumes(command, options->from);
  addVolumes(command, options->volumes, false);
  command.add_option("--to", options->to, "Volume to copy to; 0 unless said")->type_name("0|1");
  addCopying(command, chosen.wishes);
  command.add_option("FILE", options->files, "Files on the sending device")->required()->type_name("");
  command.callback([options = options.get()] {
    requireSendingVolumes(options->from);
    if (options->volumes.none())
      throw CLI::ValidationError("no receiving volume is given; name --internal DIR, --card DIR or both");
  });
  command.footer(kSendEnding);
}

void addPut(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "put", "Copy one file to a path on the device");
  auto options = optionsOf(command, chosen, put);
  addVolumes(command, options->volumes, true);
  addCopying(command, chosen.wishes);
  command.add_option("FILE", options->from, "File on the computer")->required()->type_name("");
  command
      .add_option("DEVICE_PATH", options->to,
                  "Where it goes, below a volume; into a folder under its own name")
      ->required()
      ->type_name("");
}

void addGet(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "get", "Copy one file from a path on the device");
  auto options = optionsOf(command, chosen, get);
  addVolumes(command, options->volumes, true);
  addCopying(command, chosen.wishes);
  command.add_option("DEVICE_PATH", options->from, "File below a volume")->required()->type_name("");
  command.add_option("FILE", options->to, "Where it goes on the computer; into a folder under its own name")
      ->required()
      ->type_name("");
}

}  // namespace

void addCopyCommands(CLI::App& app, Command& chosen) {
  for (auto add : {addPush, addSync, addPull, addSend, addPut, addGet}) add(app, chosen);
}

}  // namespace umsctl
