#include "PodcastFallOver.h"

#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

/// Paths are used as they are given, and only the count tells the host of an episode without one.
constexpr PodcastChannelSync::Manner kFallOverManner = {
    "-[UMSService syncUmsPodcastFile:index:mediaType:podcastInfo:xmlConverter:context:]",
    {std::nullopt, std::nullopt, std::nullopt, false},
    true};

}  // namespace

uint32_t PodcastFallOver::place(const PodcastChannel& channel, uint32_t failedIndex) {
  written_ = false;
  tried_ = false;
  if (!isPossible(channel, failedIndex)) {
    run_.ledger().settle(channel, {ItemOutcome::Kind::Failed, kErrorInvalidInput});
    return kErrorInvalidInput;
  }
  rememberPaths(channel);
  const uint32_t before = run_.error();
  run_.setError(kErrorNone);
  Step step = Step::NextVolume;
  const auto volumes = static_cast<uint32_t>(context_.volumes.count());
  for (uint32_t i = failedIndex + 1; i < volumes && step == Step::NextVolume; ++i)
    step = tryVolume(channel, failedIndex, i);
  const uint32_t answer = run_.error();
  run_.setError(before);
  uint32_t observed = answer == kErrorNone ? uint32_t{kErrorVolumeFull} : answer;
  run_.ledger().settle(channel, run_.isOver()
                                    ? EpisodeLedger::Ending{ItemOutcome::Kind::NotReached, kErrorStopped}
                                    : EpisodeLedger::Ending{ItemOutcome::Kind::Failed, observed});
  return answer;
}

bool PodcastFallOver::isPossible(const PodcastChannel& channel, uint32_t failedIndex) const {
  if (!channel.dictionary) {
    context_.log.write(1, kFallOverManner.method, "Input Parameter is invalid.");
    return false;
  }
  size_t count = context_.volumes.count();
  if (failedIndex < count) return true;
  context_.log.write(1, kFallOverManner.method,
                     "Input Parameter is invalid. Volume is not support. volumeIndex = %d, disk count = %d",
                     failedIndex, count);
  return false;
}

/// A sync leaves bare names in the host's episodes; a further volume needs the full paths once more.
void PodcastFallOver::rememberPaths(const PodcastChannel& channel) {
  paths_.clear();
  if (!channel.episodes) return;
  for (const Value& element : *channel.episodes) {
    auto episode = element.dictionary();
    paths_.push_back(episode ? episode->get(key::kFilePath) : Value());
  }
}

void PodcastFallOver::restorePaths(const PodcastChannel& channel) const {
  for (size_t i = 0; i < paths_.size(); ++i) {
    if (auto episode = (*channel.episodes)[i].dictionary()) episode->set(key::kFilePath, paths_[i]);
  }
}

PodcastFallOver::Step PodcastFallOver::tryVolume(const PodcastChannel& channel, uint32_t failedIndex,
                                                 uint32_t index) {
  const PlacementRules& placement = *context_.environment.placementRules;
  MaybeString volumePath = context_.volumes.volumePath(placement.fallOverVolume(failedIndex, index));
  if (!volumePath) {
    context_.log.write(3, kFallOverManner.method, "Get Volume Path is failed.");
    return Step::NextVolume;
  }
  run_.notifier().setStorageIndex(index);
  MaybeString folder = context_.defaultFolders.defaultUmsMediaPath(index, request_.mediaType);
  MaybeString podcastFolder = folder ? MaybeString(placement.syncFolder(*volumePath, *folder)) : std::nullopt;
  if (!podcastFolder) {
    context_.log.write(3, kFallOverManner.method, "Consist of Podcast Default Path is failed.");
    run_.notifier().incFailTransferFileCount();
    return Step::NextVolume;
  }
  if (!run_.hasEpisodes(channel, kFallOverManner.method)) return Step::NextVolume;
  if (!tools_.sizes.checkUmsPodcastEpisodeSize(volumePath, Array(*channel.episodes))) {
    context_.log.write(5, kFallOverManner.method, "%@ volume not enought memory. Send Next volume",
                       volumePath);
    return Step::NextVolume;
  }
  auto place = run_.placeOf(channel, podcastFolder);
  if (!place) return Step::NextVolume;
  restorePaths(channel);
  run_.ledger().attempt(channel);
  PodcastChannelSync sync(tools_, run_, request_.serviceID, kFallOverManner);
  auto end = sync.sync(channel, *place, placement.fallOverFolder(*podcastFolder, *folder));
  tried_ = true;
  written_ = end == PodcastChannelSync::End::Written;
  return written_ || run_.isOver() ? Step::Finished : Step::NextVolume;
}

}  // namespace umsservice
