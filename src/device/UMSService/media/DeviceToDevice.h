/// The queued copy of music, images and video from this device to another one.
///
/// Runs on the source device's worker. The files are written by the destination device's own service, which
/// the host's delegate hands out by location; this side keeps the notifier, the counts, the overwrite
/// question and the cancellation, which reaches the destination through its next progress call. Nothing is
/// stored in between, companions stay behind.
#pragma once

#include "MediaRun.h"
#include "umsservice/OVFileService.h"

namespace umsservice {

class DeviceToDevice {
 public:
  DeviceToDevice(MediaTools& tools, const _serviceinfo& request)
      : tools_(tools), context_(tools.context), request_(request) {}

  /// The result of the last write.
  bool run();

 private:
  using Next = MediaRun::Next;

  bool findDestination();
  Next sendItem(MediaRun& run, MediaItem item);
  FileOutcome write(MediaRun& run, const MediaItem& item, bool isOverWrite);
  std::optional<Next> settleConflict(MediaRun& run, const MediaItem& item, FileOutcome& outcome);
  Next conclude(MediaRun& run, const MediaItem& item, const FileOutcome& outcome);
  bool hasArrived(const MediaItem& item, const FileOutcome& outcome) const;

  MediaTools& tools_;
  const ServiceContext& context_;
  const _serviceinfo& request_;
  std::shared_ptr<QDDeviceConfirmDelegate> delegate_;
  std::shared_ptr<OVFileService> destination_;
  std::shared_ptr<TransferCallback> progress_;
  OverwriteConversation conversation_;
};

}  // namespace umsservice
