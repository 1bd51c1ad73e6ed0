/// How one command differs from another in what it says and looks after.
#pragma once

namespace umsctl {

/// What becomes of the ".smi" companion of a video.
enum class Subtitles {
  Travel,      ///< it is copied with the video
  StayBehind,  ///< only the file itself goes
  AreRemoved,  ///< it is deleted with the video
};

struct TransferManner {
  const char* done = "copied";                      ///< "copied   PATH", "3 copied (1.2 MB)", "2 not copied"
  const char* planned = "copy";                     ///< the same before it is done
  const char* place = "on the device";              ///< where a file that is in the way already is
  const char* folder = "its folder on the device";  ///< what a file goes into
  Subtitles subtitles = Subtitles::Travel;
  bool isTold = true;        ///< what went well is worth a line; programs hear of it anyway
  bool tellsPlaces = false;  ///< finished files are listed on a terminal too: nobody knows where they went
};

}  // namespace umsctl
