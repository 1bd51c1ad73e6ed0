/// What the copy, sync, delete and device-to-device runs share: one run over a list of content dictionaries
/// with its notifier, its item observer, and the ways in which an item or the whole run can end.
///
/// Made by an operation for one request; used by the worker thread only. Each item is counted exactly once,
/// on the notifier and for the observer. The observer hears of an item after the host, and also when a
/// handler of the host's throws.
#pragma once

#include <functional>

#include "OverwriteConversation.h"
#include "ServiceReports.h"
#include "SingleFile.h"
#include "SubtitleCompanion.h"

namespace umsservice {

/// The file steps that runs are made of; one set for each service.
struct MediaTools {
  MediaTools(ServiceContext& shared, const FolderOperations& folderOperations, ServiceReports& serviceReports)
      : context(shared), folders(folderOperations), reports(serviceReports) {}

  ServiceContext& context;
  const FolderOperations& folders;
  ServiceReports& reports;
  SingleFile files{context, folders};
  SubtitleCompanion companions{context};
};

/// What the host hears of a file whose destination stays as it is: a full step of progress over the source's
/// size, and done.
void notifySkipped(MediaTools& tools, OVUmsDeviceNotifier& notifier, uint64_t size);

/// Tells the host of a run's end as a cancel does, unless it has heard of one: for a run that an exception of
/// the host's stops. A cancel of the request has been for this run.
void endForException(ServiceContext& context, const _serviceinfo& request, OVUmsDeviceNotifier& notifier);

/// Hands the tags of a file to a notifier, when the host's reader knows it. `shownPath`, where given, takes
/// the place of the path in them.
void attachMediaInfo(const MediaTools& tools, OVUmsDeviceNotifier& notifier, const std::string& path,
                     const MaybeString& shownPath = std::nullopt);

/// One item of the list while it is in hand.
struct MediaItem {
  size_t index = 0;
  MaybeDictionary content;
  MaybeString filePath;
  MaybeString fileName;
  MaybeString destFolder;  ///< full path
  MaybeString destPath;    ///< folder and name joined
};

class MediaRun {
 public:
  /// After an item: on to the next, or the end of the run.
  enum class Next { GoOn, EndRun };

  /// `method` is the operation's name in log lines.
  MediaRun(MediaTools& tools, const _serviceinfo& request, const char* method,
           const MaybeString& srcLocationID, const MaybeString& destLocationID,
           const MaybeString& deviceName);

  size_t count() const { return contents_->size(); }
  OVUmsDeviceNotifier& notifier() { return notifier_; }

  /// Takes the items in hand one by one, once `prepare` (may be empty) has said yes, and answers the last
  /// result; false without that yes. An exception of the host's ends the run like a cancel does, and goes on.
  bool carryOut(const std::function<bool()>& prepare, const std::function<Next(MediaItem)>& step);

  /// The item at an index; its fields are absent where the element is nil or has no such text.
  MediaItem item(size_t index) const;
  /// Takes the next item in hand: no result carries the tags of the item before it.
  void begin();

  /// Counts an item without a dictionary, path or name as failed; nothing for a complete one.
  std::optional<Next> refuseIncomplete(const MediaItem& item, uint32_t errorNumber);
  /// Joins folder and name to the item's destination, or counts the item as failed.
  std::optional<Next> formTarget(MediaItem& item, uint32_t errorNumber);

  /// Copies the item to its destination.
  FileOutcome copyFile(const MediaItem& item);
  /// Deletes what is at the item's destination (see `SingleFile::removeInFavourOf`) and copies once more. The
  /// outcome is the delete's when that failed; `Next` when the run has to end in between.
  std::optional<Next> replaceExisting(const MediaItem& item, FileOutcome& outcome);
  /// The destination exists: asks, then replaces it or counts the item as skipped. Without a delegate, and
  /// where nothing may be replaced, the conflict stays the outcome.
  std::optional<Next> settleConflict(const MediaItem& item, OverwriteConversation& conversation,
                                     FileOutcome& outcome);
  /// The result of the last file step; what an operation answers.
  bool lastResult() const { return lastResult_; }
  void setLastResult(bool result) { lastResult_ = result; }

  /// Looks at the cancel list. True ends the run: the cancellation is posted and answered.
  bool endsForCancel();
  /// Looks at the release flag. True ends the run, with a line about the device.
  bool endsForRelease(const MediaItem& item);
  /// Ends the run for a copy that was stopped.
  Next stopped(const MediaItem& item, const FileOutcome& outcome);
  /// Ends the run for a full volume: this item and all behind it count as failed, and the result goes out.
  Next volumeFull(const MediaItem& item, const FileOutcome& outcome);
  /// Counts an item that failed.
  Next failed(const MediaItem& item, const FileOutcome& outcome);
  /// Counts an item that failed before any file step, with its result.
  Next refused(const MediaItem& item, uint32_t errorNumber, const std::string& reason = {});
  /// Counts an item whose destination stays as it is: done, not failed. `size` is the source's.
  Next skipped(const MediaItem& item, uint64_t size);
  /// Counts an item that is on the volume.
  Next done(const MediaItem& item, const FileOutcome& outcome);
  /// Counts the whole list as failed before the first item.
  void allFailed(uint32_t errorNumber, const std::string& reason = {});
  /// Tells the item observer the same of every item.
  void tellAll(ItemOutcome::Kind kind, uint32_t errorNumber, const std::string& reason = {});
  /// Bytes of a regular file, for the observer's sake only: 0 when nobody listens.
  uint64_t observedSize(const std::string& path) const;

  void attachMediaInfo(const std::string& path, const MaybeString& shownPath = std::nullopt) {
    umsservice::attachMediaInfo(tools_, notifier_, path, shownPath);
  }
  /// Tells the item observer how an item ended.
  void tell(const MediaItem& item, ItemOutcome::Kind kind, uint32_t errorNumber, uint64_t bytes = 0,
            const std::string& reason = {});

 private:
  void tellRestNotReached(uint32_t errorNumber);
  MediaItem readableItem(size_t index) const;

  MediaTools& tools_;
  ServiceContext& context_;
  CancelList& cancelList_;
  const _serviceinfo& request_;
  const char* const method_;
  const std::shared_ptr<const std::vector<Value>> contents_;
  const std::shared_ptr<OVUmsDeviceNotifier> ownNotifier_;
  OVUmsDeviceNotifier& notifier_;
  size_t untold_ = 0;  ///< the first item that the observer has not heard of
  bool lastResult_ = false;
};

}  // namespace umsservice
