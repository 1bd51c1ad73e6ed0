/// What is said at the end of a podcast command: each episode that failed, with its cause, then the numbers.
#pragma once

#include <map>

#include "Device.h"
#include "ExitStatus.h"
#include "Outcomes.h"
#include "ProgressDisplay.h"
#include "podcast/EpisodeItems.h"

namespace umsctl {

/// What took part in a copy.
struct ReportedEpisodes {
  const Errand& errand;
  Device& device;
  const EpisodeItems& items;
  const Outcomes& outcomes;
  ProgressDisplay& display;
  std::map<size_t, std::string> mismatches;  ///< copies that differ, with the cause, by number
};

/// For commands that copy. Gives the exit status.
ExitStatus reportEpisodes(const ReportedEpisodes& parts, bool wasCancelled);

/// Why an episode failed, in words for a person.
std::string causeOfEpisode(Device& device, const umsservice::ItemOutcome& outcome);

}  // namespace umsctl
