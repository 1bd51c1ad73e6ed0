#include "ChannelIndex.h"

#include <algorithm>

#include "CaseFolding.h"
#include "StringPaths.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {}  // namespace

std::string fullEpisodePath(const std::string& channelFolder, const std::string& filePath) {
  bool isFull = filePath.size() >= channelFolder.size() &&
                equalIgnoringCase(filePath.substr(0, channelFolder.size()), channelFolder);
  return isFull ? filePath : joinedPath(channelFolder, filePath);
}

ChannelIndex::ChannelIndex(const QDUIPodcastXMLConverter& converter, const MaybeDictionary& podcast,
                           bool includeEpisode, std::string channelFolder, Origin origin)
    : converter_(converter),
      channelFolder_(std::move(channelFolder)),
      origin_(origin),
      document_(converter.makePodcastXMLFromPodcastDictionary(podcast, includeEpisode)) {
  for (auto child = document_.root().firstChild(); child; child = child->next()) {
    if (QDUIPodcastXMLConverter::isPost(*child)) {
      take({*child, QDUIPodcastXMLConverter::identityOf(*child)});
    } else {
      fields_.set(child->name(), QDUIPodcastXMLConverter::valueOf(*child));
    }
  }
}

void ChannelIndex::take(const Post& post) {
  Dictionary episode = QDUIPodcastXMLConverter::episodeOf(post.element);
  if (MaybeString filePath = episode.string(key::kFilePath))
    episode.set(key::kFilePath, fullEpisodePath(channelFolder_, *filePath));
  episodes_.append(episode);
  posts_.push_back(post);
  if (post.url) urls_.insert(*post.url);
}

void ChannelIndex::add(const Dictionary& episode) {
  MaybeString url = QDUIPodcastXMLConverter::identityOf(episode);
  if (url && urls_.contains(*url)) return converter_.reportSameEpisode(*url);
  take({converter_.appendPodcastEpisode(episode, document_), url});
}

void ChannelIndex::remove(const Dictionary& episode) {
  MaybeString url = QDUIPodcastXMLConverter::identityOf(episode);
  if (!url || !urls_.contains(*url)) return;
  auto post = std::find_if(posts_.begin(), posts_.end(), [&](const Post& held) { return held.url == url; });
  post->element.remove();
  episodes_.removeAt(static_cast<size_t>(post - posts_.begin()));
  posts_.erase(post);
  urls_.erase(urls_.find(*url));
}

Dictionary ChannelIndex::dictionary() const {
  Dictionary podcast = fields_.mutableCopy();
  podcast.set(kChildren, episodes_.snapshot());
  return podcast;
}

}  // namespace umsservice
