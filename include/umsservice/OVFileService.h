/// What one device's service asks of another device's service, and of the callbacks of direct transfers.
#pragma once

#include <cstdint>
#include <memory>

#include "umsservice/Export.h"
#include "umsservice/Value.h"

namespace umsservice {

/// Base of the context objects that travel with a direct transfer; the callback gets back what was given.
class UMS_EXPORT TransferContext {
 public:
  virtual ~TransferContext() = default;
};

/// Hears of a direct transfer after each 4096 bytes, on the thread that copies; NO stops the copy.
class UMS_EXPORT TransferCallback {
 public:
  virtual ~TransferCallback() = default;
  /// Sizes in bytes, cut to 32 bits; the current size counts from the start of the file.
  virtual bool transferProgressInfo(TransferContext* context, uint32_t maxTransferSize,
                                    uint32_t currentTransferSize) = 0;
  /// The same with full sizes.
  virtual bool transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                                      uint64_t currentTransferSize) = 0;
};

/// The part of the file-service protocol that a source device's service uses on the destination device's
/// service during a device-to-device copy. `UMSService` is one; a host may supply others.
class UMS_EXPORT OVFileService {
 public:
  virtual ~OVFileService() = default;
  /// The device's volumes (see `UMSService::diskInformation`), or nothing.
  virtual MaybeArray diskInformation() = 0;
  virtual MaybeString modelName() = 0;
  /// Makes a folder on the device, and all folders above it.
  virtual bool createFolder(const MaybeString& path) = 0;
  /// See `UMSService::syncWriteFileToDevice`. `callbackObject` and `context` are valid until this call
  /// returns and are called on the calling thread only.
  virtual bool syncWriteFileToDevice(const MaybeDictionary& fileInformation, const MaybeString& subFolderName,
                                     uint32_t diskIndex, uint32_t mediaType, bool isOverWrite,
                                     const std::shared_ptr<TransferCallback>& callbackObject,
                                     TransferContext* context, uint32_t* error) = 0;
};

}  // namespace umsservice
