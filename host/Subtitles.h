/// Subtitles ride along with their video without being counted; nobody hears when they do not arrive.
#pragma once

#include "Device.h"
#include "Events.h"
#include "umsservice/ItemObserver.h"

namespace umsctl {

/// "/films/trip.mp4" has its subtitles in "/films/trip.smi".
std::string companionOf(const std::string& path);

/// Names the ".smi" companion of a copied file when it is not beside the copy, and gives
/// the number of such companions.
size_t reportLostSubtitles(Events& events, Device& device, const umsservice::ItemOutcome& outcome);

/// The same for one that is still there although its video has been deleted.
size_t reportKeptSubtitles(Events& events, Device& device, const umsservice::ItemOutcome& outcome);

}  // namespace umsctl
