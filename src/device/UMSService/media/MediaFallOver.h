/// One file of a sync that did not go onto its volume, tried on each other volume in turn.
///
/// Made for one file; runs on the worker thread. Talks about existing files afresh, so that a host may be
/// asked again about the same file. Which volume's path a candidate uses is a matter of the environment's
/// placement rules.
#pragma once

#include "MediaRun.h"

namespace umsservice {

class MediaFallOver {
 public:
  MediaFallOver(MediaTools& tools, OVUmsDeviceNotifier& notifier, uint32_t serviceID, uint32_t failedIndex,
                uint32_t mediaType)
      : tools_(tools),
        context_(tools.context),
        notifier_(notifier),
        serviceID_(serviceID),
        failedIndex_(failedIndex),
        mediaType_(mediaType) {}

  /// Answers with number 0 when the file was placed, otherwise with the number as it stands after the last
  /// volume: it starts as the notifier's present result, and hosts take a 0 that was never replaced for done.
  /// `first` is what came of the first volume.
  FileOutcome place(const MaybeString& srcPath, const FileOutcome& first = {});

  /// Where the last copy went.
  const MaybeString& destPath() const { return destPath_; }
  /// Whether the host kept an existing file on one of the volumes.
  bool wasDeclined() const { return declined_; }

 private:
  enum class Step { NextVolume, Placed, Stop };

  bool isPossible() const;
  Step tryVolume(uint32_t index);
  bool prepareFolder(uint32_t index);
  bool isCancelled();
  bool isReleased();
  std::optional<Step> settleConflict();
  std::optional<uint32_t> copyNow();

  MediaTools& tools_;
  const ServiceContext& context_;
  OVUmsDeviceNotifier& notifier_;
  const uint32_t serviceID_;
  const uint32_t failedIndex_;
  const uint32_t mediaType_;
  MaybeString srcPath_;
  MaybeString destFolder_;
  MaybeString destPath_;
  FileOutcome outcome_;
  OverwriteConversation conversation_;
  bool declined_ = false;
};

}  // namespace umsservice
