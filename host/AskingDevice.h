/// The destination of a copy from device to device, as the source's service sees it. A service that writes
/// for another one replaces existing files without a word; here they are reported, so that the person is
/// asked.
///
/// Called on the source's worker thread. The device must outlive it.
#pragma once

#include "Device.h"

namespace umsctl {

class AskingDevice final : public umsservice::OVFileService {
 public:
  explicit AskingDevice(Device& device) : service_(device.service()), files_(device.files()) {}

  /// Where a file of that name and media type goes on a volume; nothing for types without a folder.
  umsservice::MaybeString placeOf(const std::string& name, uint32_t mediaType, uint32_t diskIndex);

  umsservice::MaybeArray diskInformation() override { return service_.diskInformation(); }
  umsservice::MaybeString modelName() override { return service_.modelName(); }
  bool createFolder(const umsservice::MaybeString& path) override { return service_.createFolder(path); }
  bool syncWriteFileToDevice(const umsservice::MaybeDictionary& fileInformation,
                             const umsservice::MaybeString& subFolderName, uint32_t diskIndex,
                             uint32_t mediaType, bool isOverWrite,
                             const std::shared_ptr<umsservice::TransferCallback>& callbackObject,
                             umsservice::TransferContext* context, uint32_t* error) override;

 private:
  umsservice::UMSService& service_;
  umsservice::FileSystem& files_;
};

}  // namespace umsctl
