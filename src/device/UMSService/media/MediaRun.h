/// What the copy, sync, delete and device-to-device runs share: one run over a list of content dictionaries
/// with its notifier, its item observer, and the ways in which an item or the whole run can end.
///
/// Made by an operation for one request; used by the worker thread only. Each item is counted exactly once,
/// on the notifier and for the observer.
#pragma once

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

/// One item of the list while it is in hand.
struct MediaItem {
  size_t index = 0;
  MaybeDictionary content;
  MaybeString filePath;
  MaybeString fileName;
  MaybeString destFolder;
  MaybeString destPath;
};

class MediaRun {
 public:
  /// After an item: on to the next, or the end of the run.
  enum class Next { GoOn, EndRun };

  /// `method` is the operation's name in log lines.
  MediaRun(MediaTools& tools, const _serviceinfo& request, const char* method,
           const MaybeString& srcLocationID, const MaybeString& destLocationID,
           const MaybeString& deviceName);

  size_t count() const { return contents_.size(); }
  OVUmsDeviceNotifier& notifier() { return notifier_; }

  /// The item at an index; its fields are absent where the element is nil or has no such text.
  MediaItem item(size_t index) const;
  /// Takes the next item in hand: no result carries the tags of the item before it.
  void begin();

  /// Looks at the cancel list. True ends the run: the cancellation is posted and answered.
  bool endsForCancel(const MediaItem& item);
  /// Looks at the release flag. True ends the run, with a line about the device.
  bool endsForRelease(const MediaItem& item);
  /// Ends the run for a copy that was stopped.
  Next stopped(const MediaItem& item, const FileOutcome& outcome);
  /// Ends the run for a full volume: this item and all behind it count as failed, and the result goes out.
  Next volumeFull(const MediaItem& item, const FileOutcome& outcome);
  /// Counts an item that failed.
  Next failed(const MediaItem& item, const FileOutcome& outcome);
  /// Counts an item that failed before any file step, with its result.
  Next refused(const MediaItem& item, uint32_t errorNumber);
  /// Counts an item whose destination stays as it is: done, not failed.
  Next skipped(const MediaItem& item);
  /// Counts an item that is on the volume.
  Next done(const MediaItem& item, const FileOutcome& outcome);
  /// Counts the whole list as failed before the first item.
  void allFailed(uint32_t errorNumber);

  /// Whether a conflict is one that a question may be about. A folder is never given up for a file, and a
  /// file is never deleted in order to be replaced by itself.
  bool isReplaceable(const MediaItem& item) const;
  /// Whether source and destination are one and the same file.
  bool isSameFile(const MediaItem& item) const;
  /// Hands the tags of a file to the notifier, when the host's reader knows it.
  void attachMediaInfo(const std::string& path);

 private:
  void tell(const MediaItem& item, ItemOutcome::Kind kind, uint32_t errorNumber, uint64_t bytes = 0,
            const std::string& reason = {});
  void tellRestNotReached(size_t from, uint32_t errorNumber);

  MediaTools& tools_;
  const ServiceContext& context_;
  CancelList& cancelList_;
  const _serviceinfo& request_;
  const char* const method_;
  const std::vector<Value> contents_;
  OVUmsDeviceNotifier notifier_;
};

}  // namespace umsservice
