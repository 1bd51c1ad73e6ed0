#include "line/Surroundings.h"

namespace umsctl {

const char* const kEnvironmentEnding =
    "The width of a screen is asked of the terminal itself; COLUMNS is not read.";

const std::vector<Surrounding>& exitStatuses() {
  static const std::vector<Surrounding> statuses{
      {"0",
       "all done",
       {{{}, "Everything asked for is done."},
        {{"--on-conflict"}, "Files that were skipped because they are there already count as done."},
        {{"--yes"}, "An answer of no to the question whether to delete is no failure."},
        {{"ls"}, "A file whose tags cannot be read is listed without them, which is no failure."},
        {{"--dry-run"}, "A dry run ends with the status that the command would have."}}},
      {"1",
       "some failed",
       {{{}, "Something failed; standard error says what, and why."},
        {{"--on-conflict", "rm"}, "What could be done is done."},
        {{"--on-conflict"},
         "A copy that differs from its original (--verify) has failed, and so has a run after which the "
         "device "
         "could not write everything."},
        {{"push", "pull", "rm"}, "Subtitles that did not go with their video count as a failure."},
        {{"ls", "tree"}, "A folder could not be read; everything else is listed."},
        {{"rmdir"}, "The folder holds something, and --recursive is not given."},
        {{"ls", "podcast ls"}, "The index of a channel is damaged; the other channels are shown."},
        {{"--feed"}, "The feed or the JSON file cannot be read, or none of its episodes is here."},
        {{"podcast rm", "podcast send"}, "There is no such channel or episode."},
        {{}, "The result could not be written to standard output. A reader that has gone is no failure."}}},
      {"2",
       "usage",
       {{{}, "The command line makes no sense; nothing has been touched."},
        {{"--profile"}, "The profile cannot be read, or something in it is wrong."},
        {{"--yes"},
         "There is no terminal to ask at, and --yes is not given: nothing is deleted. A dry run asks "
         "nobody."}}},
      {"3",
       "no such volume",
       {{{"--internal"}, "The folder of a volume is not there, or is no folder."},
        {{"--to", "--first", "--on"}, "No volume has the number that is asked for."}}},
      {"130",
       "cancelled",
       {{{}, "Cancelled: by Ctrl-C, by SIGTERM, or by SIGHUP when the terminal goes away."},
        {{"--on-conflict"}, "The answer quit to the question about a file is a cancel too."},
        {{"--on-conflict"}, "The copy in hand is removed, those before it are whole."},
        {{}, "A second Ctrl-C ends at once, whatever the program is waiting for."},
        {{"--on-conflict"}, "It may leave a part of a file."}}},
  };
  return statuses;
}

const std::vector<Surrounding>& environmentVariables() {
  static const std::vector<Surrounding> variables{
      {"NO_COLOR", "", {{{}, "When it is not empty: no colour, as with --no-color."}}},
      {"TERM",
       "",
       {{{}, "When it is missing, empty or dumb: no colour, and no line that is drawn again."},
        {{"--on-conflict"}, "Instead of a bar each finished file is a line, as in a pipe."}}},
      {"LC_ALL, LC_CTYPE, LANG",
       "",
       {{{"tree"},
         "The first of them that is not empty tells whether the terminal shows UTF-8. Where it does not, "
         "branches "
         "are drawn in ASCII."}}},
      {"TMPDIR",
       "",
       {{{"--feed"},
         "Full path of a folder for links to episodes whose own paths the device's service does not take; "
         "/tmp "
         "without it."}}},
  };
  return variables;
}

}  // namespace umsctl
