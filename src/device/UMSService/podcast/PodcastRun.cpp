#include "PodcastRun.h"

#include "FileNames.h"
#include "OnException.h"
#include "StringPaths.h"
#include "TargetPath.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

using Kind = ItemOutcome::Kind;

std::vector<PodcastChannel> channelsOf(const MaybeArray& contents) {
  std::vector<PodcastChannel> channels;
  if (!contents) return channels;
  for (const Value& element : contents->snapshot()) {
    PodcastChannel channel{channels.size(), element.dictionary(), std::nullopt};
    auto episodes = channel.dictionary ? channel.dictionary->get(kChildren).array() : std::nullopt;
    if (episodes) channel.episodes = episodes->snapshot();
    channels.push_back(std::move(channel));
  }
  return channels;
}

/// A path without empty components, as cleaning gives it.
std::string withSingleSeparators(const std::string& path) {
  std::string tidy;
  for (const std::string& component : pathComponents(path)) {
    if (component != "/") tidy += "/" + component;
  }
  return tidy;
}

}  // namespace

MaybeString episodeTarget(const Log& log, const std::string& channelFolder, const std::string& source,
                          bool cleansName) {
  MaybeString target = targetPath(channelFolder, lastPathComponent(source));
  if (!target || !cleansName) return target;
  std::string cleaned = convertAvailableString(log, target).value_or("");
  if (stringByDeletingLastPathComponent(cleaned) == withSingleSeparators(channelFolder)) return cleaned;
  // A mount point may have characters in it that names on a player may not have; it stays as it is.
  return targetPath(channelFolder, lastPathComponent(cleaned));
}

PodcastRun::PodcastRun(PodcastTools& tools, const _serviceinfo& request, const Scope& scope)
    : tools_(tools),
      context_(tools.context),
      request_(request),
      channels_(channelsOf(request.contents)),
      ownNotifier_(OVUmsDeviceNotifier::forRun(
          context_.environment, scope.srcLocationID, scope.destLocationID, request.serviceID,
          request.mediaType, scope.deviceName, scope.storageIndex, scope.episodes, scope.bytes)),
      notifier_(*ownNotifier_),
      converter_(context_.log),
      ledger_(context_, request.serviceID, channels_) {
  notifier_.setCurrentTransferStatus(kTransferRunning);
}

PodcastRun::PodcastRun(PodcastTools& tools, const _serviceinfo& request, OVUmsDeviceNotifier& notifier)
    : tools_(tools),
      context_(tools.context),
      request_(request),
      channels_(channelsOf(request.contents)),
      notifier_(notifier),
      converter_(context_.log),
      ledger_(context_, request.serviceID, channels_) {}

bool PodcastRun::isForPodcasts(const ServiceContext& context, const _serviceinfo& request,
                               const char* method) {
  if (request.mediaType == kMediaPodcast) return true;
  context.log.write(3, method, "Media Type is not podcast. Media Type = %d", request.mediaType);
  return false;
}

PodcastRun::Scope PodcastRun::onThisDevice(const ServiceContext& context, const _serviceinfo& request) {
  MaybeString location = context.identity.currentLocationID();
  return {location, location, context.identity.modelName(), request.storageIndex};
}

bool PodcastRun::endsForCancel(const char* method) {
  if (!context_.cancelList.isCancelServiceId(request_.serviceID)) return stopped_ && !context_.isReleased();
  context_.log.write(1, method, "Cancel Podcast Processing.");
  notifier_.cancelFileTransfer();
  cancelled_ = true;
  return true;
}

bool PodcastRun::endsForRelease(const char* method) {
  if (!context_.isReleased()) return false;
  context_.log.write(5, method, "Device Disconnected - %@", context_.identity.currentLocationID());
  notifier_.cancelFileTransfer();
  return true;
}

void PodcastRun::carryOut(const char* method, const std::function<bool(const PodcastChannel&)>& step) {
  OnException end(context_, [this] {
    inAnyCase(
        context_, [this] { endForException(context_, request_, notifier_); },
        [this] {
          ledger_.countRest({Kind::NotReached, kErrorOperationFailed});
        });
  });
  for (const PodcastChannel& channel : channels_) {
    if (endsForCancel(method) || !step(channel)) break;
  }
  finish();
  end.over();
}

/// Tells of what was never reached, and answers the cancellation.
void PodcastRun::finish() {
  ledger_.countRest({Kind::NotReached, kErrorStopped});
  if (!cancelled_) return;
  context_.cancelList.removeEvery(request_.serviceID);
}

void PodcastRun::forEachEpisode(const PodcastChannel& channel, const std::function<Next(const Value&)>& step,
                                const std::function<void()>& settle) const {
  auto episodes = [&] {
    for (const Value& element : *channel.episodes) {
      if (step(element) == Next::EndOfChannel) break;
    }
  };
  inAnyCase(context_, episodes, settle);
}

std::optional<ChannelPlace> PodcastRun::placeOf(const PodcastChannel& channel,
                                                const MaybeString& podcastFolder) const {
  MaybeString name = convertAvailableFileName(context_.log, channel.dictionary->string("Title"));
  if (!name || !podcastFolder || podcastFolder->empty()) return std::nullopt;
  MaybeString folder = targetPath(podcastFolder, *name);
  if (!folder) return std::nullopt;
  return ChannelPlace{*folder, *name};
}

bool PodcastRun::hasEpisodes(const PodcastChannel& channel, const char* method) const {
  if (!channel.episodes) context_.log.write(3, method, "Podcast Episode is NULL");
  return channel.episodes.has_value();
}

void PodcastRun::refuseChannel(const PodcastChannel& channel, uint32_t errorNumber,
                               const std::string& reason) {
  notifier_.setTransferResult(errorNumber);
  inAnyCase(
      context_, [&] { notifier_.incFailTransferFileCount(); },
      [&] {
        ledger_.countRestOf(channel, {Kind::Failed, errorNumber, std::nullopt, 0, reason});
      });
}

void PodcastRun::refuseNilChannel(const PodcastChannel& channel, uint32_t errorNumber, const char* method) {
  context_.log.write(1, method, "Podcast data is nil. Next Podcast search");
  refuseChannel(channel, errorNumber);
}

void PodcastRun::folderFailed(const PodcastChannel& channel, const ChannelPlace& place,
                              const std::string& reason, const char* method) {
  context_.log.write(1, method, "Create Folder for %@ is failed", place.name);
  notifier_.setTransferResult(error_);
  notifier_.setFilePath(place.folder);
  notifier_.setChannelName(place.name);
  inAnyCase(
      context_,
      [&] {
        for (size_t i = 0; i < channel.episodes->size(); ++i) notifier_.incFailTransferFileCount();
      },
      [&] {
        ledger_.countRestOf(channel, {Kind::Failed, kErrorCreateFolderFailed, std::nullopt, 0, reason});
      });
}

void PodcastRun::show(const ChannelPlace& place, const ChannelIndex& index) {
  notifier_.setChannelName(place.name);
  notifier_.setPodcastXmlData(index.dictionary());
}

bool PodcastRun::writeIndex(const ChannelIndex& index, const ChannelPlace& place, const char* method) {
  if (tools_.indexes.write(index, place.folder, place.name)) return true;
  context_.log.write(3, method, "Podcast XML Data send is failed.");
  return false;
}

std::optional<PodcastRun::Next> PodcastRun::resolve(const Value& element, const ChannelPlace& place,
                                                    const Refusals& refusals, PodcastEpisode& episode,
                                                    const char* method) {
  notifier_.setMediaInfo(std::nullopt);  // no result carries the tags of the episode before it
  const uint32_t observed = refusals.nilEpisode.value_or(kErrorBadSyncItem);
  episode.dictionary = element.dictionary();
  if (!episode.dictionary) {
    context_.log.write(1, method, "Episode Data is nil.");
    return refused(refusals.nilEpisode, observed);
  }
  episode.source = episode.dictionary->string(key::kFilePath);
  if (refusals.cleansNames) episode.source = convertAvailableString(context_.log, episode.source);
  if (!episode.source) {
    context_.log.write(1, method, "Episode Medias File Path is nil.");
    return refused(refusals.nilSource, observed);
  }
  // A name of blanks alone is cleaned away, and what is left names the folder. The index's name is its own:
  // an episode in its place would cost the channel.
  if (!episode.source->ends_with('/'))
    episode.target = episodeTarget(context_.log, place.folder, *episode.source, refusals.cleansNames);
  if (!episode.target || PodcastIndexFiles::isNameOfIndex(lastPathComponent(*episode.target), place.name)) {
    context_.log.write(1, method, "Target Episode Path is nil. Next episode processing.");
    return refused(refusals.nilTarget, observed);
  }
  notifier_.setFilePath(episode.source);
  return std::nullopt;
}

FileOutcome PodcastRun::copyFile(const PodcastEpisode& episode) {
  FileOutcome outcome =
      tools_.media.files.copy(request_.serviceID, episode.source, episode.target, &notifier_);
  error_ = outcome.errorNumber.value_or(error_);
  return outcome;
}

std::optional<PodcastRun::Next> PodcastRun::settleConflict(const PodcastEpisode& episode,
                                                           FileOutcome& outcome, const char* method) {
  auto delegate = context_.identity.confirmDelegate();
  if (!delegate || !tools_.media.files.isReplaceable(episode.target)) return std::nullopt;
  const uint64_t size = tools_.media.files.mediaFileSize(episode.source);
  if (tools_.media.files.isSameFile(episode.source, episode.target) ||
      !conversation_.replaces(*delegate, *episode.source))
    return skipped(episode, size);
  return replaceExisting(episode, outcome, method);
}

std::optional<PodcastRun::Next> PodcastRun::replaceExisting(const PodcastEpisode& episode,
                                                            FileOutcome& outcome, const char* method) {
  // The question may have been open for long: nothing is removed any more for a copy that will not be made.
  if (endsForRelease(method)) return Next::EndOfChannel;
  if (context_.cancelList.isCancelServiceId(request_.serviceID))
    return stopped(episode, {.errorNumber = kErrorStopped});
  outcome = tools_.media.files.removeInFavourOf(*episode.source, *episode.target);
  error_ = outcome.errorNumber.value_or(error_);
  if (!outcome.result) return std::nullopt;
  if (endsForRelease(method)) return Next::EndOfChannel;
  outcome = copyFile(episode);
  if (isStopCode(outcome.errorNumber.value_or(kErrorNone))) return stopped(episode, outcome);
  return std::nullopt;
}

PodcastRun::Next PodcastRun::refused(std::optional<uint32_t> errorNumber, uint32_t observedNumber) {
  if (errorNumber) notifier_.setTransferResult(*errorNumber);
  inAnyCase(
      context_, [&] { notifier_.incFailTransferFileCount(); },
      [&] {
        ledger_.count({Kind::Failed, observedNumber});
      });
  return Next::GoOn;
}

PodcastRun::Next PodcastRun::failed(const PodcastEpisode& episode, const ChannelPlace& place,
                                    const FileOutcome& outcome) {
  uint32_t errorNumber = outcome.errorNumber.value_or(kErrorNone);
  if (errorNumber == kErrorNone) errorNumber = kErrorCopyFailed;
  notifier_.setFilePath(episode.target);
  notifier_.setChannelName(place.name);
  inAnyCase(
      context_, [&] { notifier_.incFailTransferFileCount(); },
      [&] {
        ledger_.count({Kind::Failed, errorNumber, episode.target, outcome.bytes, outcome.reason});
      });
  return Next::GoOn;
}

PodcastRun::Next PodcastRun::skipped(const PodcastEpisode& episode, uint64_t size) {
  inAnyCase(
      context_, [&] { notifySkipped(tools_.media, notifier_, size); },
      [&] {
        ledger_.count({Kind::Skipped, kErrorFileExists, episode.target});
      });
  return Next::GoOn;
}

PodcastRun::Next PodcastRun::stopped(const PodcastEpisode& episode, const FileOutcome& outcome) {
  const uint32_t errorNumber = outcome.errorNumber.value_or(kErrorStopped);
  inAnyCase(
      context_, [&] { notifier_.cancelFileTransfer(); },
      [&] {
        ledger_.count({Kind::NotReached, errorNumber, episode.target, outcome.bytes});
      });
  cancelled_ = stopped_ = true;
  return Next::EndOfChannel;
}

PodcastRun::Next PodcastRun::volumeFull(const PodcastChannel& channel, const PodcastEpisode& episode,
                                        const FileOutcome& outcome) {
  inAnyCase(
      context_,
      [&] {
        // Channels, not episodes: hosts add up what they are told.
        notifier_.addFailTransferFileCount(static_cast<uint32_t>(channels_.size() - channel.index));
        notifier_.sendResultNotification();
      },
      [&] {
        ledger_.count({Kind::Failed, kErrorVolumeFull, episode.target, outcome.bytes, outcome.reason});
        ledger_.countRestOf(channel, {Kind::NotReached, kErrorVolumeFull});
      });
  return Next::EndOfChannel;
}

PodcastRun::Next PodcastRun::done(const PodcastEpisode& episode, const FileOutcome& outcome) {
  inAnyCase(
      context_, [&] { notifier_.incCurrentTransferFileCount(); },
      [&] {
        ledger_.count({Kind::Done, kErrorNone, episode.target, outcome.bytes});
      });
  return Next::GoOn;
}

}  // namespace umsservice
