/// Counts one transfer and tells the host about it: the operation says what happens (bytes sent, a file
/// finished, a file failed, cancelled), the notifier decides which notifications that is worth.
///
/// Made by an operation for one run; a host may use one by itself. Safe from any thread: every counter
/// update and its notification are one step. Handlers run inside that step, on the thread that caused it,
/// and may call the same notifier again. That step is the section of the notifier's synchronized object, so a
/// host that holds it keeps every step out. Notification names and keys stand in `Notifications.h`.
#pragma once

#include <memory>

#include "umsservice/Environment.h"
#include "umsservice/Export.h"
#include "umsservice/OVFileService.h"
#include "umsservice/SynchronizedObject.h"

namespace umsservice {

class UMS_EXPORT OVUmsDeviceNotifier final : public TransferContext {
 public:
  /// Everything zero or absent but the current file (1) and the result (0x10000001).
  /// `object` is what the host knows the notifier by; null for one that has the library's object only.
  explicit OVUmsDeviceNotifier(const Environment& environment,
                               std::shared_ptr<SynchronizedObject> object = nullptr);

  /// For one request: devices, request number, media type, model name, volume index, files and bytes of the
  /// whole request.
  OVUmsDeviceNotifier(const Environment& environment, const MaybeString& srcLocationID,
                      const MaybeString& destLocationID, uint32_t serviceID, uint32_t mediaType,
                      const MaybeString& deviceName, uint32_t storageIndex, uint32_t maxTransferFileCount,
                      uint64_t maxTransferSize, std::shared_ptr<SynchronizedObject> object = nullptr);
  /// The notifier of one run: made by the environment's factory where there is one.
  static std::shared_ptr<OVUmsDeviceNotifier> forRun(const Environment& environment,
                                                     const MaybeString& srcLocationID,
                                                     const MaybeString& destLocationID, uint32_t serviceID,
                                                     uint32_t mediaType, const MaybeString& deviceName,
                                                     uint32_t storageIndex, uint32_t maxTransferFileCount,
                                                     uint64_t maxTransferSize);
  ~OVUmsDeviceNotifier() override;
  OVUmsDeviceNotifier(const OVUmsDeviceNotifier&) = delete;
  OVUmsDeviceNotifier& operator=(const OVUmsDeviceNotifier&) = delete;

  /// Held while a step runs; lives as long as the notifier.
  SynchronizedObject& synchronizedSection() const;

  // Posting.

  /// Posts a progress notification with the present counts and the given percent.
  void sendTransferEvent(uint32_t maxProgress, uint32_t currentPersent);
  /// Posts the result of the current item, its tag information included.
  void sendResultEvent();
  /// The same, as one step with whatever other threads do to the notifier.
  void sendResultNotification();

  // Counting files. Reaching the maximum sets the status to 4 and posts progress at 100 percent.

  /// The current file is done: posts its result, then moves on to the next.
  void incCurrentTransferFileCount();
  /// The current file failed.
  void incFailTransferFileCount();
  /// `count` files failed at once.
  void addFailTransferFileCount(uint32_t count);
  /// `count` files are done, without results of their own.
  void addCurrentTransferFileCount(uint32_t count);

  // Counting bytes.

  /// `sentBytes` of the current file have been sent so far (a running count, not a difference). Posts after
  /// 1,000,000 bytes or more of progress and at the end of the file (`maxSendBytes`).
  void addCurrentSendBytesEx(uint64_t sentBytes);
  void addCurrentSendBytes(uint32_t sentBytes);

  // Ends of a run.

  /// Sets the status to 3 and posts progress at 100 percent.
  void cancelFileTransfer();
  /// Posts progress by files instead of bytes, as a delete has no bytes to send.
  void deleteFileTransfer();

  // Properties. Texts and dictionaries are copied.

  MaybeString srcLocationID() const;
  void setSrcLocationID(const MaybeString& value);
  MaybeString destLocationID() const;
  void setDestLocationID(const MaybeString& value);
  uint32_t serviceID() const;
  void setServiceID(uint32_t value);
  uint32_t storageIndex() const;
  void setStorageIndex(uint32_t value);
  uint32_t mediaType() const;
  void setMediaType(uint32_t value);
  uint32_t currentTransferFileCount() const;
  void setCurrentTransferFileCount(uint32_t value);
  uint32_t maxTransferFileCount() const;
  void setMaxTransferFileCount(uint32_t value);
  uint32_t failTransferFileCount() const;
  void setFailTransferFileCount(uint32_t value);
  MaybeString filePath() const;
  void setFilePath(const MaybeString& value);
  MaybeString deviceName() const;
  void setDeviceName(const MaybeString& value);
  uint64_t currentTransferSize() const;
  void setCurrentTransferSize(uint64_t value);
  uint64_t maxTransferSize() const;
  void setMaxTransferSize(uint64_t value);
  /// Size of the file being copied; 0 between files.
  uint64_t maxSendBytes() const;
  void setMaxSendBytes(uint64_t value);
  /// Bytes of the whole request at the last posted progress.
  uint64_t prevTransferFileSize() const;
  void setPrevTransferFileSize(uint64_t value);
  /// Running count of the current file at the previous call.
  uint64_t prevSendBytes() const;
  void setPrevSendBytes(uint64_t value);
  MaybeString playlistName() const;
  void setPlaylistName(const MaybeString& value);
  MaybeString channelName() const;
  void setChannelName(const MaybeString& value);
  /// Tag information of the current item; its entries lead the item's result.
  MaybeDictionary mediaInfo() const;
  void setMediaInfo(const MaybeDictionary& value);
  /// See `TransferStatus`.
  int32_t currentTransferStatus() const;
  void setCurrentTransferStatus(int32_t value);
  /// Result of the current item. A stored 0 is posted as 0x10000001, the only success code a host knows.
  uint32_t transferResult() const;
  void setTransferResult(uint32_t value);
  /// The podcast channel that item results carry from now on.
  void setPodcastXmlData(const MaybeDictionary& value);

 private:
  struct UMS_HIDDEN State;
  std::unique_ptr<State> state_;
};

}  // namespace umsservice
