/// "QDORVEL_NOTI_UMS_RESULT" as a struct: how one queued request ended.
///
/// The dictionary of the notification stays the contract; this reads it once, and nothing refers to it
/// afterwards. Reading is safe from any thread and never fails: a key that is missing or holds no number
/// gives 0, text of digits counts as its number, and a key that is missing or holds no text gives an absent
/// one.
#pragma once

#include <cstdint>
#include <optional>

#include "umsservice/ErrorNumbers.h"
#include "umsservice/Export.h"
#include "umsservice/NotificationCenter.h"

namespace umsservice {

struct UMS_EXPORT RequestResult {
  uint32_t serviceID = 0;           ///< the host's number of the request
  int32_t eventType = 0;            ///< always 1
  ErrorNumber status = kErrorNone;  ///< of the command
  int32_t errorNumber = 0;          ///< the platform's own code, see `FileError::code`, or 0
  uint64_t diskSize = 0;            ///< bytes: the answer of the two space commands
  uint32_t volumeIndex = 0;         ///< always 0
  MaybeString sourcePath;           ///< of the request
  MaybeString destPath;             ///< of the request

  /// Whether the command did what it was asked for.
  bool isDone() const { return status == kErrorNone; }

  /// From the dictionary of such a notification.
  static RequestResult read(const Dictionary& userInfo);
  /// From a notification of any name; absent for another one.
  static std::optional<RequestResult> read(const Notification& notification);
};

}  // namespace umsservice
