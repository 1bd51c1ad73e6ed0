/// What is said at the end of a podcast command: each episode that failed, with its cause, then the numbers.
#pragma once

#include "Device.h"
#include "ExitStatus.h"
#include "FailureTable.h"
#include "Outcomes.h"
#include "podcast/EpisodeItems.h"

namespace umsctl {

/// For commands that copy. Gives the exit status.
ExitStatus reportEpisodes(Device& device, const EpisodeItems& items, const Outcomes& outcomes,
                          bool wasCancelled);

/// Why an episode failed, in words for a person.
std::string causeOfEpisode(Device& device, const umsservice::ItemOutcome& outcome);

/// What is told of an episode that failed; nothing for one that did not, or that a person cancelled.
std::optional<Failure> failureOf(Device& device, const std::string& name, const std::string& objection,
                                 const umsservice::ItemOutcome& outcome);

}  // namespace umsctl
