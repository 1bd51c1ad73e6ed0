/// Direct transfers across the two worlds: who is told of progress, with which context.
///
/// A host's callback object and context reach the library as `HostCallback` and `HostContext`, made for one
/// call. A file service of the host is told through a `UMSTransferPeer`, which stands for the service that
/// the run belongs to, and through the run's own `OVUmsDeviceNotifier`. Where both ends are services of this
/// bundle, the calls cross twice.
#pragma once

#import <Foundation/Foundation.h>

#import "UMSServiceBundle/OVFileService.h"
#include "service/ObjectSection.h"
#include "umsservice/OVFileService.h"
#include "umsservice/OVUmsDeviceNotifier.h"

struct UMSTransferPeerParts;

/// The service that a run of a device-to-device copy belongs to, as the callback object of its writes.
///
/// To its progress it answers with the run's own test of cancels on top, as the destination knows nothing of
/// them. For everything else it is the service: it answers every selector, and is equal to it. It may outlive
/// the service, whose end it does not hold up; it answers NO, 0 and nil then. Safe from any thread.
@interface UMSTransferPeer : NSProxy <UMSTransferCallback> {
 @private
  struct UMSTransferPeerParts* _parts;
}
- (id)initWithSource:(const std::shared_ptr<umsplugin::ObjectSection>&)source
            callback:(const std::shared_ptr<umsservice::TransferCallback>&)callback;
/// From now on the service itself answers to progress.
- (void)runHasEnded;
@end

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

/// A file service of the host, as the destination of one run of a device-to-device copy.
class HostFileService final : public umsservice::OVFileService {
 public:
  /// `source` is the service that copies.
  HostFileService(id service, std::shared_ptr<ObjectSection> source)
      : service_([service retain]), source_(std::move(source)) {}
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
  UMSTransferPeer* peerFor(const std::shared_ptr<umsservice::TransferCallback>& callback);

  const id service_;
  const std::shared_ptr<ObjectSection> source_;
  UMSTransferPeer* peer_ = nil;  ///< made at the run's first write
};

}  // namespace umsplugin
