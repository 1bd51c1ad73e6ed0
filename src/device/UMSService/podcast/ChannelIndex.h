/// The index of one channel while a request changes it: the document that will be written, and the dictionary
/// that the host gets to see after each change.
///
/// Both are kept step by step, so that a change costs the same whatever the channel holds. Made by an
/// operation for one channel of its request; used by one thread. Where index files lie is the business of
/// `PodcastIndexFiles`.
#pragma once

#include <unordered_set>

#include "EpisodeList.h"
#include "PodcastChannel.h"
#include "QDUIPodcastXMLConverter.h"

namespace umsservice {

/// The full path of an episode, given the one that an index holds. A path that begins with the channel's
/// folder (in any letter case) is full already.
std::string fullEpisodePath(const std::string& channelFolder, const std::string& filePath);

class ChannelIndex {
 public:
  /// Whether the document takes over what the index file on the device says.
  enum class Origin { DeviceFile, HostDictionary };

  ChannelIndex(const QDUIPodcastXMLConverter& converter, const MaybeDictionary& podcast, bool includeEpisode,
               std::string channelFolder, Origin origin);

  /// Appends an episode, unless one with its "Url" is there.
  void add(const Dictionary& episode);
  /// Removes the first episode with that "Url", if there is one.
  void remove(const Dictionary& episode);

  size_t episodeCount() const { return episodes_.count(); }
  Origin origin() const { return origin_; }
  const XMLDocument& document() const { return document_; }
  /// The channel as it is now, with full paths; later changes do not show in it.
  Dictionary dictionary() const;

 private:
  /// A "Post" of the document, in the order of the episodes.
  struct Post {
    XMLElement element;
    MaybeString url;
  };

  void take(const Post& post);

  const QDUIPodcastXMLConverter& converter_;
  const std::string channelFolder_;
  const Origin origin_;
  XMLDocument document_;
  Dictionary fields_;  ///< the channel without its episodes
  EpisodeList episodes_;
  std::vector<Post> posts_;
  std::unordered_multiset<std::string> urls_;  ///< of the posts
};

}  // namespace umsservice
