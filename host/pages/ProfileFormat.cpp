#include "pages/ProfileFormat.h"

namespace umsctl {

const std::vector<ProfileChapter>& profileFormat() {
  static const std::vector<ProfileChapter> chapters{
      {"Description",
       "A profile tells umsctl which folders of a device hold which kind of media, for a\n"
       "device that does not keep them in the usual ones. It is a file on the computer, of\n"
       "any name, in JSON (UTF-8, at most 1 MiB):\n"
       "\n"
       "  {\n"
       "    \"internal\": { \"music\": \"/Songs\", \"image\": \"/DCIM\",\n"
       "                  \"video\": \"/Films\", \"podcast\": \"/Podcasts\" },\n"
       "    \"card\":     { \"music\": \"/Songs\" }\n"
       "  }\n"
       "\n"
       "It is given with --profile:\n"
       "\n"
       "  umsctl push --internal /media/me/PHONE --profile player.json *.mp3\n"},
      {"Format",
       "The file is one object with two parts. Each part is an object of folders, and all of\n"
       "it may be left out; what is not there stays as usual.\n"
       "\n"
       "  internal   folders of the volume that is given with --internal\n"
       "  card       folders of the volume that is given with --card\n"
       "\n"
       "  music      Music unless said\n"
       "  image      DCIM/Camera unless said\n"
       "  video      DCIM/Camera unless said\n"
       "  podcast    Podcast unless said\n"
       "\n"
       "A folder is a text: its path from the volume on, such as \"/Media/Songs\". The \"/\" at\n"
       "the beginning may be missing, one at the end does no harm. \".\" and \"..\" are not\n"
       "taken. A folder that is not there yet is made when something is copied into it.\n"},
      {"Use",
       "push, sync, send and the podcast commands copy into these folders; the podcast\n"
       "commands and ls look for podcasts there. Other media are listed wherever they are.\n"
       "put, get, pull, rm, df and tree go by the paths that they are given: they read the\n"
       "profile, and it changes nothing.\n"
       "\n"
       "Of two devices --profile describes the one that is copied to; podcast send has\n"
       "--from-profile for the other.\n"},
      {"Errors",
       "Anything else in the file is an error, so that a slip of the pen moves no files: a\n"
       "name that is not above, or is there twice, or holds something else. The line and the\n"
       "cause are told, nothing is touched, and the exit status is 2:\n"
       "\n"
       "  umsctl: player.json: line 3: \"musik\" is none of music, image, video and podcast\n"},
  };
  return chapters;
}

}  // namespace umsctl
