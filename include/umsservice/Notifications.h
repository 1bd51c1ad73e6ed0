/// Names, keys and status codes of the three notifications. Number widths are given for each key. Hosts that
/// want structs instead read `TransferProgress.h`, `MediaResult.h` and `RequestResult.h`.
#pragma once

#include <cstdint>

namespace umsservice {

/// Progress of a transfer, also its cancellation and its end. Numbers are unsigned 32-bit.
inline constexpr auto kTransferProgressNotification = "QDORVEL_NOTI_TRANSFER_PROGRESS";
/// Result of one queued request. Numbers are signed 32-bit, "DiskSize" is unsigned 64-bit.
inline constexpr auto kUmsResultNotification = "QDORVEL_NOTI_UMS_RESULT";
/// Result of one media item, with its tag information. Numbers are unsigned 32-bit.
inline constexpr auto kMediaResultNotification = "QDORVEL_NOTI_MEDIA_TRASFER_RESULT";

namespace key {

inline constexpr auto kServiceID = "ServiceID";            ///< the host's number of the request
inline constexpr auto kEventType = "EventType";            ///< always 1
inline constexpr auto kStatus = "Status";                  ///< 0, or the error number of the command
inline constexpr auto kErrorNumber = "ErrorNumber";        ///< the platform's own code, see `FileError::code`
inline constexpr auto kDiskSize = "DiskSize";              ///< bytes, for the two space commands
inline constexpr auto kVolumeIndex = "VolumeIndex";        ///< 0-based volume index
inline constexpr auto kSourcePath = "SourcePath";          ///< only when the request has one
inline constexpr auto kDestPath = "DestPath";              ///< only when the request has one
inline constexpr auto kMediaNotiType = "MediaNotiType";    ///< media type code
inline constexpr auto kCurrent = "Current";                ///< 1-based number of the file in hand
inline constexpr auto kMax = "Max";                        ///< files of the request
inline constexpr auto kTransferStatus = "TransferStatus";  ///< see `TransferStatus`
inline constexpr auto kFail = "Fail";                      ///< files that failed so far
inline constexpr auto kCurrentProgress = "CurrentProgress";  ///< percent, 0 to 100
inline constexpr auto kMaxProgress = "MaxProgress";          ///< always 100
inline constexpr auto kLocationId = "LocationId";            ///< the device
inline constexpr auto kFileName = "FileName";                ///< last component of the current path
inline constexpr auto kDeviceName = "MN";                    ///< model name of the device
inline constexpr auto kResultStatus = "ResultStatus";        ///< 0x10000001, or the item's error number
inline constexpr auto kFilePath = "FilePath";                ///< full path of the item
inline constexpr auto kPlaylistName = "PlaylistName";
inline constexpr auto kChannelName = "ChannelName";        ///< podcast channel of the item
inline constexpr auto kPodcastXmlInfo = "PodcastXmlInfo";  ///< dictionary: the channel's record

}  // namespace key

/// Keys of the dictionaries that travel in requests and in the volume list.
namespace key {

inline constexpr auto kFileSize = "FileSize";      ///< bytes
inline constexpr auto kDiskType = "diskType";      ///< 1 internal memory, anything else a card
inline constexpr auto kVolumePath = "volumePath";  ///< where the volume is mounted
inline constexpr auto kDiskIndex = "diskIndex";    ///< 0-based, assigned by the service

}  // namespace key

/// The values of "TransferStatus".
enum TransferStatus : int32_t {
  kTransferInitial = 0,    ///< before an operation has set anything
  kTransferRunning = 2,    ///< set by every operation when it starts
  kTransferCancelled = 3,  ///< a progress callback that sees it stops the copy
  kTransferFinished = 4,   ///< the file count reached its maximum
};

}  // namespace umsservice
