#include "line/SharedOptions.h"

#include <map>

#include "Colour.h"

namespace umsctl {

CLI::App& addCommand(CLI::App& app, const std::string& name, const std::string& about) {
  CLI::App* command = app.add_subcommand(name, about);
  return *command->group("Commands");
}

void addVolumes(CLI::App& command, VolumeFolders& volumes, bool required) {
  command.add_option("--internal", volumes.internal, "Folder of the internal memory")->type_name("DIR");
  command.add_option("--card", volumes.card, "Folder of the memory card")->type_name("DIR");
  command.add_option("--profile", volumes.profile, "Default folders of the device; see man umsctl-profile")
      ->type_name("FILE");
  if (required) command.callback([&volumes] { requireVolumes(volumes); });
}

void requireVolumes(const VolumeFolders& volumes) {
  if (volumes.none())
    throw CLI::ValidationError("no volume is given; name --internal DIR, --card DIR or both");
}

void addSendingVolumes(CLI::App& command, VolumeFolders& from) {
  command.add_option("--from-internal", from.internal, "Folder of the sending device's internal memory")
      ->type_name("DIR");
  command.add_option("--from-card", from.card, "Folder of its memory card")->type_name("DIR");
}

void requireSendingVolumes(const VolumeFolders& from) {
  if (from.none())
    throw CLI::ValidationError(
        "no sending volume is given; name --from-internal DIR, --from-card DIR or both");
}

void addTelling(CLI::App& command, Wishes& wishes) {
  constexpr auto kGroup = "Options of every command";
  command
      .add_flag_callback("--no-color", forbidColour, "Without colour; so does NO_COLOR in the environment")
      ->group(kGroup);
  command.add_flag("--json", wishes.json, "Tell programs: JSON objects, one on a line")->group(kGroup);
  command.add_flag("-q,--quiet", wishes.quiet, "Say only what went wrong")->group(kGroup);
  command.add_flag("-v,--verbose", wishes.verbose, "Show the service's log on standard error")->group(kGroup);
}

void addDryRun(CLI::App& command, Wishes& wishes) {
  command.add_flag("-n,--dry-run", wishes.dryRun, "Show what would happen and change nothing");
}

void addCopying(CLI::App& command, Wishes& wishes) {
  static const std::map<std::string, OnConflict> choices{
      {"ask", OnConflict::Ask}, {"skip", OnConflict::Skip}, {"overwrite", OnConflict::Overwrite}};
  auto choose = [&wishes](const std::string& word) {
    auto choice = choices.find(word);
    if (choice == choices.end())
      throw CLI::ValidationError("--on-conflict", word + " is none of ask, skip and overwrite");
    wishes.onConflict = choice->second;
  };
  command
      .add_option_function<std::string>("--on-conflict", choose,
                                        "For names that are taken; unless said, ask at a terminal, else skip")
      ->type_name("ask|skip|overwrite");
  command.add_flag("--verify", wishes.verifies, "Read back what was written and compare");
  addDryRun(command, wishes);
}

void addDeleting(CLI::App& command, Wishes& wishes) {
  command.add_flag("-y,--yes", wishes.isAgreed, "Delete without a question");
  addDryRun(command, wishes);
}

}  // namespace umsctl
