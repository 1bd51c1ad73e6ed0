/// A channel and an episode of a podcast request while they are in hand.
#pragma once

#include "umsservice/Value.h"

namespace umsservice {

/// What holds a channel's episodes in its dictionary.
inline constexpr auto kChildren = "children";

struct PodcastChannel {
  size_t index = 0;                            ///< 0-based position in the request's list
  MaybeDictionary dictionary;                  ///< nil for an element that is no channel
  std::optional<std::vector<Value>> episodes;  ///< nothing where there are no "children"
};

/// Where a channel lies, or is to lie.
struct ChannelPlace {
  std::string folder;  ///< full path
  std::string name;    ///< cleaned; also the name of the index
};

struct PodcastEpisode {
  MaybeDictionary dictionary;
  MaybeString source;  ///< full path
  MaybeString target;  ///< full path
};

}  // namespace umsservice
