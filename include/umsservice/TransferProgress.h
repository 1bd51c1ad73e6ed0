/// "QDORVEL_NOTI_TRANSFER_PROGRESS" as a struct: how far a request has come.
///
/// The dictionary of the notification stays the contract; this reads it once, and nothing refers to it
/// afterwards. Reading is safe from any thread and never fails: a key that is missing or holds no number
/// gives 0, text of digits counts as its number, and a key that is missing or holds no text gives an absent
/// one.
#pragma once

#include <cstdint>
#include <optional>

#include "umsservice/Export.h"
#include "umsservice/NotificationCenter.h"
#include "umsservice/Notifications.h"
#include "umsservice/ServiceInfo.h"

namespace umsservice {

struct UMS_EXPORT TransferProgress {
  uint32_t serviceID = 0;               ///< the host's number of the request
  MediaType mediaType = kMediaUnknown;  ///< a code without a name of its own stays as it is
  uint32_t current = 0;  ///< 1-based number of the file in hand; 0 for a request that never ran
  uint32_t max = 0;      ///< files of the request; 0 for a request that never ran
  uint32_t fail = 0;     ///< files that failed so far
  TransferStatus transferStatus = kTransferInitial;
  uint32_t currentProgress = 0;  ///< of `maxProgress`
  uint32_t maxProgress = 0;      ///< 100; 0 for a request that never ran
  MaybeString locationID;        ///< the device that the files come from
  MaybeString fileName;          ///< last component of the current file's path
  MaybeString deviceName;        ///< model name of the device

  /// Whether the request is finished or cancelled. A request whose last file but one failed says so one file
  /// early.
  bool isEnd() const { return transferStatus == kTransferFinished || transferStatus == kTransferCancelled; }

  /// From the dictionary of such a notification.
  static TransferProgress read(const Dictionary& userInfo);
  /// From a notification of any name; absent for another one.
  static std::optional<TransferProgress> read(const Notification& notification);
};

}  // namespace umsservice
