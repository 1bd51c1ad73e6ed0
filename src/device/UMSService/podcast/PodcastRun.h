/// What the copy, sync, delete and device-to-device runs of podcasts share: one run over a list of channels
/// with its notifier, its item observer, and the ways in which an episode, a channel or the whole run can
/// end.
///
/// Made by an operation for one request; used by the worker thread only. `method` is always the name under
/// which a line is logged.
#pragma once

#include <functional>

#include "EpisodeLedger.h"
#include "MediaRun.h"
#include "PodcastIndexFiles.h"
#include "PodcastSizes.h"

namespace umsservice {

/// The steps that podcast runs are made of; one set for each service.
struct PodcastTools {
  explicit PodcastTools(MediaTools& mediaTools) : media(mediaTools), context(mediaTools.context) {}

  MediaTools& media;
  ServiceContext& context;
  PodcastIndexFiles indexes{context, media.folders};
  PodcastSizes sizes{context, media.files};
};

class PodcastRun {
 public:
  /// After an episode: on to the next, or to the channel's index.
  enum class Next { GoOn, EndOfChannel };
  using Ending = EpisodeLedger::Ending;

  /// Who takes part in a run, and how much there is to do.
  struct Scope {
    MaybeString srcLocationID;
    MaybeString destLocationID;
    MaybeString deviceName;
    uint32_t storageIndex = 0;
    uint32_t episodes = 0;
    uint64_t bytes = 0;
  };

  PodcastRun(PodcastTools& tools, const _serviceinfo& request, const Scope& scope);
  /// A part of a run whose notifier somebody else has made.
  PodcastRun(PodcastTools& tools, const _serviceinfo& request, OVUmsDeviceNotifier& notifier);

  /// False, and a line, for a request that is none about podcasts.
  static bool isForPodcasts(const ServiceContext& context, const _serviceinfo& request, const char* method);
  /// The device itself on both sides; nothing measured yet.
  static Scope onThisDevice(const ServiceContext& context, const _serviceinfo& request);

  const std::vector<PodcastChannel>& channels() const { return channels_; }
  OVUmsDeviceNotifier& notifier() { return notifier_; }
  const QDUIPodcastXMLConverter& converter() const { return converter_; }
  EpisodeLedger& ledger() { return ledger_; }
  /// The number of the last file step that had one; it stays from episode to episode.
  uint32_t error() const { return error_; }
  void setError(uint32_t error) { error_ = error; }

  // The run.

  /// Takes the channels in hand one by one, until `step` says no. An exception of the host's ends the run
  /// like a cancel does, and goes on.
  void carryOut(const char* method, const std::function<bool(const PodcastChannel&)>& step);
  /// Looks at the cancel list. True ends the episodes, or the run: the cancellation is logged and posted.
  /// True without another word when a copy was stopped by somebody who is neither this list nor a release.
  bool endsForCancel(const char* method);
  /// Looks at the release flag, with a line about the device.
  bool endsForRelease(const char* method);
  /// Whether nothing is to be begun any more.
  bool isOver() const { return cancelled_ || context_.isReleased(); }

  // One channel.

  /// Where a channel lies in a podcast folder. Nothing for one whose title is no name for a folder: such a
  /// name would lead to the podcast folder itself, or out of it.
  std::optional<ChannelPlace> placeOf(const PodcastChannel& channel, const MaybeString& podcastFolder) const;
  /// False, and a line, for a channel without episodes.
  bool hasEpisodes(const PodcastChannel& channel, const char* method) const;
  /// Counts one failure for the whole channel.
  void refuseChannel(const PodcastChannel& channel, uint32_t errorNumber, const std::string& reason = {});
  /// The same for an element that is no channel, with a line.
  void refuseNilChannel(const PodcastChannel& channel, uint32_t errorNumber, const char* method);
  /// Counts every episode of a channel whose folder cannot be made.
  void folderFailed(const PodcastChannel& channel, const ChannelPlace& place, const std::string& reason,
                    const char* method);
  /// Item results carry this channel from now on, as its index is at this moment.
  void show(const ChannelPlace& place, const ChannelIndex& index);
  bool writeIndex(const ChannelIndex& index, const ChannelPlace& place, const char* method);

  /// Takes the episodes of a channel in hand one by one. `settle` comes last, also when an exception of the
  /// host's ends the channel: what lies on the volume has to be in the index.
  void forEachEpisode(const PodcastChannel& channel, const std::function<Next(const Value&)>& step,
                      const std::function<void()>& settle) const;

  // One episode.

  /// What an operation does with an episode that lacks something; no number where the result stays.
  struct Refusals {
    std::optional<uint32_t> nilEpisode;
    std::optional<uint32_t> nilSource;
    std::optional<uint32_t> nilTarget;
    bool cleansNames = true;  ///< source and target are made fit for a player's file system
  };

  /// Takes the next episode in hand: finds its source and its target, or counts it as failed.
  std::optional<Next> resolve(const Value& element, const ChannelPlace& place, const Refusals& refusals,
                              PodcastEpisode& episode, const char* method);
  FileOutcome copyFile(const PodcastEpisode& episode);
  /// The target exists: asks, then replaces it or counts the episode as skipped. Without a delegate, and
  /// where nothing may be replaced, the conflict stays the outcome.
  std::optional<Next> settleConflict(const PodcastEpisode& episode, FileOutcome& outcome, const char* method);
  /// Replaces what is at the target; `Next` when the channel ends in between.
  std::optional<Next> replaceExisting(const PodcastEpisode& episode, FileOutcome& outcome,
                                      const char* method);
  OverwriteConversation& conversation() { return conversation_; }

  /// Counts an episode that failed before any file step.
  Next refused(std::optional<uint32_t> errorNumber, uint32_t observedNumber);
  /// Counts an episode that failed; results then carry its target and channel.
  Next failed(const PodcastEpisode& episode, const ChannelPlace& place, const FileOutcome& outcome);
  /// Counts an episode of that size whose target stays as it is: done, not failed.
  Next skipped(const PodcastEpisode& episode, uint64_t size);
  /// Ends the run for a copy that was stopped.
  Next stopped(const PodcastEpisode& episode, const FileOutcome& outcome);
  /// Ends the channel for a full volume; one failure is counted for this and each later channel.
  Next volumeFull(const PodcastChannel& channel, const PodcastEpisode& episode, const FileOutcome& outcome);
  Next done(const PodcastEpisode& episode, const FileOutcome& outcome);

 private:
  void finish();

  PodcastTools& tools_;
  ServiceContext& context_;
  const _serviceinfo& request_;
  const std::vector<PodcastChannel> channels_;
  const std::shared_ptr<OVUmsDeviceNotifier> ownNotifier_;
  OVUmsDeviceNotifier& notifier_;
  const QDUIPodcastXMLConverter converter_;
  EpisodeLedger ledger_;
  OverwriteConversation conversation_;
  uint32_t error_ = 0;
  bool cancelled_ = false;
  bool stopped_ = false;
};

/// Where an episode of that source goes in a channel's folder; nil when the name would lead back to a folder.
MaybeString episodeTarget(const Log& log, const std::string& channelFolder, const std::string& source,
                          bool cleansName);

}  // namespace umsservice
