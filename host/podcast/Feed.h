/// An RSS 2.0 feed as a podcast dictionary: the fields of the channel, and its episodes under "children".
///
/// A feed comes from the network: it is read in bounded time and memory, and its texts are only texts. Which
/// file belongs to an episode is the business of `Enclosures`. No state; safe from any thread.
#pragma once

#include <string_view>

#include "umsservice/Value.h"

namespace umsctl {

struct Feed {
  /// The channel; absent when the bytes are no feed.
  umsservice::MaybeDictionary podcast;
  /// In words, why they are none.
  std::string error;
};

/// Every field of a channel and of an episode that the feed has. Items without an enclosure are no episodes
/// and are left out.
Feed readFeed(std::string_view bytes);

}  // namespace umsctl
