#include "commands/PodcastList.h"
#include "commands/PodcastPush.h"
#include "commands/PodcastRemove.h"
#include "commands/PodcastSend.h"
#include "line/SharedOptions.h"

namespace umsctl {
namespace {

constexpr auto kInputEnding =
    "--feed is an RSS 2.0 feed; each episode's file is looked for in the folder of the\n"
    "downloads, under the last part of the address of its enclosure. Episodes that are\n"
    "not there are left out. --from-json takes the channel itself, or a list of\n"
    "channels: texts under the names of the index (Title, Link, ...) and the episodes\n"
    "under children, each with FilePath, and with Url unless its file's name may stand\n"
    "for it.\n"
    "\n"
    "An episode whose file name is in the channel already is treated as by push.\n"
    "\n"
    "Example:\n"
    "  umsctl podcast push --internal /media/me/PHONE --feed news.rss --episodes ~/casts";

constexpr auto kPodcastRemoveEnding =
    "Without episodes the whole channel goes, its folder with everything in it. Without\n"
    "a terminal nothing is deleted unless --yes is given.";

void addInput(CLI::App& command, PodcastInput& input) {
  command.add_option("--feed", input.feed, "Feed of the channel")->type_name("FILE");
  command.add_option("--episodes", input.episodes, "Folder of the downloaded episodes")->type_name("DIR");
  command.add_option("--from-json", input.json, "Channel or channels written as JSON")->type_name("FILE");
}

void requireInput(const PodcastInput& input) {
  if (input.feed.has_value() == input.json.has_value())
    throw CLI::ValidationError("give either --feed FILE with --episodes DIR, or --from-json FILE");
  if (input.feed && !input.episodes) throw CLI::ValidationError("--feed needs --episodes DIR");
}

void addPushing(CLI::App& podcast, Command& chosen, bool isSync) {
  CLI::App& command = *podcast.add_subcommand(
      isSync ? "sync" : "push",
      isSync ? "Copy episodes to whichever volume has room" : "Copy episodes from the computer to a volume");
  auto options = optionsOf(command, chosen, isSync ? podcastSync : podcastPush);
  addVolumes(command, options->volumes, false);
  command
      .add_option(isSync ? "--first" : "--to", options->to,
                  isSync ? "Volume to begin with; 0 unless said" : "Volume to copy to; 0 unless said")
      ->type_name("0|1");
  addCopying(command, chosen.wishes);
  addInput(command, options->input);
  command.callback([options = options.get()] {
    requireVolumes(options->volumes);
    requireInput(options->input);
  });
  command.footer(kInputEnding);
}

void addPodcastPush(CLI::App& podcast, Command& chosen) {
  addPushing(podcast, chosen, false);
}

void addPodcastSync(CLI::App& podcast, Command& chosen) {
  addPushing(podcast, chosen, true);
}

void addPodcastList(CLI::App& podcast, Command& chosen) {
  CLI::App& command = *podcast.add_subcommand("ls", "Show channels and episodes with date, duration, size");
  auto options = optionsOf(command, chosen, podcastList);
  addVolumes(command, *options, true);
}

void addPodcastRemove(CLI::App& podcast, Command& chosen) {
  CLI::App& command = *podcast.add_subcommand("rm", "Delete a channel, or some of its episodes");
  auto options = optionsOf(command, chosen, podcastRemove);
  addVolumes(command, options->volumes, true);
  command.add_option("--on", options->on, "Volume of the channel; 0 unless said")->type_name("0|1");
  addDeleting(command, chosen.wishes);
  command.add_option("CHANNEL", options->channel, "Title or folder of the channel")
      ->required()
      ->type_name("");
  command.add_option("EPISODE", options->episodes, "Titles or file names; all unless said")->type_name("");
  command.footer(kPodcastRemoveEnding);
}

void addPodcastSend(CLI::App& podcast, Command& chosen) {
  CLI::App& command = *podcast.add_subcommand("send", "Copy channels from one device to another");
  auto options = optionsOf(command, chosen, podcastSend);
  addSendingVolumes(command, options->from);
  command.add_option("--from-profile", options->from.profile, "Default folders of that device")
      ->type_name("FILE");
  command.add_option("--on", options->on, "Volume of the channels; 0 unless said")->type_name("0|1");
  addVolumes(command, options->volumes, false);
  command.add_option("--to", options->to, "Volume to copy to; 0 unless said")->type_name("0|1");
  addCopying(command, chosen.wishes);
  command.add_option("CHANNEL", options->channels, "Titles or folders of the channels")
      ->required()
      ->type_name("");
  command.callback([options = options.get()] {
    requireSendingVolumes(options->from);
    requireVolumes(options->volumes);
  });
}

}  // namespace

void addPodcastCommands(CLI::App& app, Command& chosen) {
  CLI::App& podcast =
      *app.add_subcommand("podcast", "Bring podcasts to the device: push, sync, ls, rm, send");
  podcast.group("Commands");
  podcast.require_subcommand(0, 1);
  podcast.callback([&podcast] {
    if (podcast.get_subcommands().empty() && podcast.remaining().empty())
      throw CLI::ValidationError("a podcast command is missing: push, sync, ls, rm or send");
  });
  for (auto add : {addPodcastPush, addPodcastSync, addPodcastList, addPodcastRemove, addPodcastSend})
    add(podcast, chosen);
}

}  // namespace umsctl
