/// Direct transfers across the two worlds: who is told of progress, with which context.
///
/// A host's callback object and context reach the library as `HostCallback` and `HostContext`; those of the
/// library reach a file service of the host as a `UMSTransferProgress` and an `OVUmsDeviceNotifier`. All four
/// are made for one call. Where both ends are services of this bundle, the calls cross twice.
#pragma once

#import <Foundation/Foundation.h>

#import "UMSServiceBundle/OVFileService.h"
#include "umsservice/OVFileService.h"
#include "umsservice/OVUmsDeviceNotifier.h"

namespace umsplugin {

/// A host's context object: given back to its callback as it came. Owned by the call.
class HostContext final : public umsservice::TransferContext {
 public:
  explicit HostContext(id context) : context_(context) {}
  id context() const { return context_; }

 private:
  const id context_;  ///< the caller's, who waits for the transfer
};

/// A host's callback object, retained for the transfer. One without the method lets the copy go on.
class HostCallback final : public umsservice::TransferCallback {
 public:
  /// Null for nil.
  static std::shared_ptr<HostCallback> over(id callback);

  explicit HostCallback(id callback) : callback_([callback retain]) {}
  ~HostCallback() override;
  HostCallback(const HostCallback&) = delete;
  HostCallback& operator=(const HostCallback&) = delete;

  bool transferProgressInfo(umsservice::TransferContext* context, uint32_t maxTransferSize,
                            uint32_t currentTransferSize) override;
  bool transferProgressInfoEx(umsservice::TransferContext* context, uint64_t maxTransferSize,
                              uint64_t currentTransferSize) override;

 private:
  const id callback_;
};

/// A file service of the host, as the destination of a device-to-device copy.
class HostFileService final : public umsservice::OVFileService {
 public:
  explicit HostFileService(id service) : service_([service retain]) {}
  ~HostFileService() override;
  HostFileService(const HostFileService&) = delete;
  HostFileService& operator=(const HostFileService&) = delete;

  umsservice::MaybeArray diskInformation() override;
  umsservice::MaybeString modelName() override;
  bool createFolder(const umsservice::MaybeString& path) override;
  bool syncWriteFileToDevice(const umsservice::MaybeDictionary& fileInformation,
                             const umsservice::MaybeString& subFolderName, uint32_t diskIndex,
                             uint32_t mediaType, bool isOverWrite,
                             const std::shared_ptr<umsservice::TransferCallback>& callbackObject,
                             umsservice::TransferContext* context, uint32_t* error) override;

 private:
  const id service_;
};

}  // namespace umsplugin

/// What a file service of the host tells of a device-to-device copy. Good for the length of the call; later
/// it answers NO.
@interface UMSTransferProgress : NSObject <UMSTransferCallback> {
 @private
  umsservice::TransferCallback* _callback;
}
- (id)initWithCallback:(umsservice::TransferCallback*)callback;
- (void)transferHasEnded;
@end
