#include "commands/Df.h"
#include "commands/List.h"
#include "commands/Tree.h"
#include "line/SharedOptions.h"

namespace umsctl {
namespace {

constexpr auto kListEnding =
    "Hidden files and files in folders with a .nomedia marker are left out. Piped, each\n"
    "file is one line of fields with tabs between them: type, bytes, full path; with\n"
    "--tags also title, artist, album, genre, track, year, duration. Episodes whose\n"
    "files are gone leave the index of their podcast when it is listed.";

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
  command.footer(kListEnding);
}

void addDf(CLI::App& app, Command& chosen) {
  CLI::App& command = addCommand(app, "df", "Show the room on each volume");
  auto options = optionsOf(command, chosen, df);
  addVolumes(command, options->volumes, true);
  command.add_flag("-b,--bytes", options->inBytes, "Plain numbers of bytes");
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

}  // namespace

void addLookCommands(CLI::App& app, Command& chosen) {
  for (auto add : {addList, addDf, addTree}) add(app, chosen);
}

}  // namespace umsctl
