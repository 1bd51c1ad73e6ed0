#include "PodcastSizes.h"

#include "PodcastChannel.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kCountMethod = "-[UMSService totalPodcastCount:]";
constexpr auto kSizeMethod = "-[UMSService totalPodcastFileSize:sendCount:]";
constexpr auto kEpisodesMethod = "-[UMSService totalUmsPodcastEpisodeDataSize:]";

/// An index has a null object for a "Length" that it does not know.
Value lengthOf(const Dictionary& episode) {
  Value length = episode.get("Length");
  return length.kind() == Value::Kind::Null ? Value() : length;
}

}  // namespace

/// Calls `visit` with each channel and its episodes; what is no channel, or has none, is logged and passed
/// over.
template <typename Visit>
void PodcastSizes::visitChannels(const MaybeArray& podcasts, const char* method, Visit visit) const {
  if (!podcasts) return;
  for (const Value& element : podcasts->snapshot()) {
    auto podcast = element.dictionary();
    auto episodes = podcast ? podcast->get(kChildren).array() : std::nullopt;
    if (!podcast) {
      context_.log.write(1, method, "Contents data is nil. Next data search");
    } else if (!episodes) {
      context_.log.write(3, method, "Podcast Episode is NULL");
    } else {
      visit(*podcast, *episodes);
    }
  }
}

uint32_t PodcastSizes::totalPodcastCount(const MaybeArray& podcasts) const {
  uint32_t count = 0;
  visitChannels(podcasts, kCountMethod, [&](const Dictionary&, const Array& episodes) {
    count += static_cast<uint32_t>(episodes.count());
  });
  context_.log.write(7, kCountMethod, "Total Podcast Episode Count = 0x%08x", count);
  return count;
}

uint64_t PodcastSizes::totalPodcastFileSize(const MaybeArray& podcasts, uint32_t& sendCount) const {
  uint64_t total = 0;
  uint32_t count = 0;
  visitChannels(podcasts, kSizeMethod, [&](const Dictionary& podcast, const Array& episodes) {
    auto elements = episodes.snapshot();
    for (const Value& element : elements) total += sizeInRequest(element, podcast);
    count += static_cast<uint32_t>(elements.size());
  });
  sendCount = count;
  return total;
}

uint64_t PodcastSizes::sizeInRequest(const Value& element, const Dictionary& podcast) const {
  auto episode = element.dictionary();
  if (!episode) {
    context_.log.write(1, kSizeMethod, "Episode Dictionary Data is nil.");
    return 0;
  }
  Value length = lengthOf(*episode);
  if (!length.isNil()) return static_cast<uint32_t>(length.intValue());
  context_.log.write(3, kSizeMethod, "Episode File Length value is nil");
  // Of the channel, not of the episode: hosts rely on the total that this gives.
  MaybeString filePath = podcast.string(key::kFilePath);
  return filePath ? files_.mediaFileSize(filePath) : 0;
}

uint64_t PodcastSizes::totalUmsPodcastEpisodeDataSize(const MaybeArray& episodes) const {
  uint64_t total = 0;
  if (!episodes) return total;
  for (const Value& element : episodes->snapshot()) total += sizeOnVolume(element);
  return total;
}

uint64_t PodcastSizes::sizeOnVolume(const Value& element) const {
  auto episode = element.dictionary();
  if (!episode) {
    context_.log.write(1, kEpisodesMethod, "Episode Dictionary Data is nil.");
    return 0;
  }
  Value length = lengthOf(*episode);
  if (!length.isNil()) return static_cast<uint64_t>(int64_t{length.intValue()});
  context_.log.write(3, kEpisodesMethod, "Episode File Length value is nil");
  MaybeString filePath = episode->string(key::kFilePath);
  return filePath ? files_.mediaFileSize(filePath) : 0;
}

bool PodcastSizes::checkUmsPodcastEpisodeSize(const MaybeString& volumePath,
                                              const MaybeArray& episodes) const {
  return totalUmsPodcastEpisodeDataSize(episodes) < context_.spaces.volumeFreeSpace(volumePath);
}

}  // namespace umsservice
