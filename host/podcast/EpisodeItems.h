/// What a podcast command hands to the service: channels with their episodes, and for each episode what its
/// report needs. Episodes are counted through all channels, as the service counts them.
///
/// Made from a feed with the downloads of its episodes, or from a podcast dictionary written as JSON. Both
/// are somebody else's words; what is no podcast is a `Refusal` before anything is asked of a device.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "podcast/CleanLinks.h"
#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsctl {

/// The options by which a person says where the podcasts come from.
struct PodcastInput {
  std::optional<std::string> feed;
  std::optional<std::string> episodes;  ///< folder of the downloads
  std::optional<std::string> json;
};

struct EpisodeItems {
  umsservice::Array channels;
  std::vector<std::string> names;       ///< what a person knows each episode by
  std::vector<uint64_t> sizes;          ///< bytes; 0 where not known
  std::vector<std::string> objections;  ///< why a file cannot be read; empty for one that can

  /// Adds an episode whose file lies at `path` to those of a channel. One whose file cannot be read has its
  /// place, but no path: the service counts it as failed, and the others go on. `links` are for requests
  /// whose paths the service cleans.
  void add(umsservice::FileSystem& files, const umsservice::Dictionary& episode, const std::string& path,
           CleanLinks* links = nullptr);
  /// The same for one that cannot be taken, whatever its file.
  void addRefused(const umsservice::Dictionary& episode, const std::string& name,
                  const std::string& objection);
};

/// Tells of episodes that were left out because nobody has downloaded them. The links serve for as long as
/// the episodes do.
EpisodeItems episodeItems(const Errand& errand, CleanLinks& links, const PodcastInput& input);

}  // namespace umsctl
