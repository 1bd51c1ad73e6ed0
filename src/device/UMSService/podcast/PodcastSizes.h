/// What a podcast request amounts to, before it starts: episodes, bytes, and whether a channel fits.
/// Stateless but for what it borrows; safe from any thread.
#pragma once

#include "SingleFile.h"

namespace umsservice {

class PodcastSizes {
 public:
  PodcastSizes(const ServiceContext& context, const SingleFile& files) : context_(context), files_(files) {}

  /// Episodes of a list of channels.
  uint32_t totalPodcastCount(const MaybeArray& podcasts) const;
  /// Bytes of a list of channels: "Length" as an unsigned 32-bit number where an episode has one. `sendCount`
  /// becomes the number of episodes.
  uint64_t totalPodcastFileSize(const MaybeArray& podcasts, uint32_t& sendCount) const;
  /// Bytes of a list of episodes: "Length" as a signed number, else the size of the file.
  uint64_t totalUmsPodcastEpisodeDataSize(const MaybeArray& episodes) const;
  /// Whether the episodes take less than what is free on the volume that holds a path.
  bool checkUmsPodcastEpisodeSize(const MaybeString& volumePath, const MaybeArray& episodes) const;

 private:
  template <typename Visit>
  void visitChannels(const MaybeArray& podcasts, const char* method, Visit visit) const;
  uint64_t sizeInRequest(const Value& element, const Dictionary& podcast) const;
  uint64_t sizeOnVolume(const Value& element) const;

  const ServiceContext& context_;
  const SingleFile& files_;
};

}  // namespace umsservice
