/// The error numbers that requests and items end with, as "Status" and "ResultStatus" carry them.
/// The high byte tells the class: 0x10 transfer conditions, 0x11 reading, 0x13 direct write, 0x14 media
/// type, 0x20 file system, 0x21 existing file or file handle, 0x23 bad request content. `ErrorDescriptions.h`
/// has names and texts.
#pragma once

#include <cstdint>

namespace umsservice {

enum ErrorNumber : uint32_t {
  kErrorNone = 0,
  kItemTransferred = 0x10000001,           ///< the only success code of an item
  kErrorInvalidInput = 0x10000002,         ///< missing input, unknown volume, files that cannot be opened
  kErrorOverwriteNotAllowed = 0x10000005,  ///< direct transfer: the destination exists
  kErrorStopped = 0x10000008,              ///< cancelled, shutting down, or a callback answered NO
  kErrorStoppedByPeer = 0x10000009,        ///< the second stop code; treated like the first
  kErrorVolumeFull = 0x1000000a,           ///< not enough free space on the destination volume
  kErrorReadFailed = 0x11000004,           ///< reading a file for the host failed
  kErrorWriteVolumeFull = 0x1310000a,      ///< direct write: "FileSize" exceeds the free space
  kErrorUnknownMediaType = 0x14000002,     ///< the name is of unknown or podcast type
  kErrorCreateFileFailed = 0x20000001,
  kErrorCreateFolderFailed = 0x20000002,
  kErrorDeleteFailed = 0x20000003,
  kErrorRenameFailed = 0x20000004,
  kErrorCopyFailed = 0x20000005,            ///< reading or writing failed in mid-copy
  kErrorAttributesUnreadable = 0x20000008,  ///< the source is missing or cannot be looked at
  kErrorFileExists = 0x21000002,            ///< copy or move: the destination exists
  kErrorOpenFailed = 0x21000004,            ///< a file could not be opened
  kErrorOperationFailed = 0x23000001,       ///< a long command ended with NO
  kErrorBadDeleteItem = 0x23000003,         ///< delete: item or one of its keys missing
  kErrorBadSyncItem = 0x23000004,           ///< sync: folder, item, key or target path missing
  kErrorBadCopyItem = 0x23000005,           ///< copy: item, key or target path missing
};

/// Whether a copy that ended with this number was stopped rather than failed.
constexpr bool isStopCode(uint32_t number) {
  return number == kErrorStopped || number == kErrorStoppedByPeer;
}

}  // namespace umsservice
