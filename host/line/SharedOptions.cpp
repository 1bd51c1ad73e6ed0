#include "line/SharedOptions.h"

#include <map>

namespace umsctl {

CLI::App& addCommand(CLI::App& app, const std::string& name, const std::string& about) {
  CLI::App* command = app.add_subcommand(name, about);
  return *command->group("Commands");
}

void addVolumes(CLI::App& command, VolumeFolders& volumes, bool required) {
  command.add_option("--internal", volumes.internal, "Folder of the internal memory")->type_name("DIR");
  command.add_option("--card", volumes.card, "Folder of the memory card")->type_name("DIR");
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

void addYes(CLI::App& command, bool& isAgreed) {
  command.add_flag("-y,--yes", isAgreed, "Delete without a question");
}

}  // namespace umsctl
