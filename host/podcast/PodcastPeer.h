/// The device that receives podcasts from another one, as the sending device's service sees it.
///
/// A service that writes for another one replaces existing files without a word; here a file that is there is
/// reported, so that the person is asked, and replaced when the write comes again after a yes. A folder is
/// never replaced. Called on the sending service's worker thread; the device must outlive it.
#pragma once

#include "ConflictPolicy.h"
#include "Device.h"

namespace umsctl {

class PodcastPeer final : public umsservice::OVFileService {
 public:
  /// `podcastFolder` is where channels lie on the volume that receives.
  PodcastPeer(Device& device, std::string podcastFolder)
      : service_(device.service()), files_(device.files()), podcastFolder_(std::move(podcastFolder)) {}

  umsservice::MaybeArray diskInformation() override { return service_.diskInformation(); }
  umsservice::MaybeString modelName() override { return service_.modelName(); }
  bool createFolder(const umsservice::MaybeString& path) override { return service_.createFolder(path); }
  bool syncWriteFileToDevice(const umsservice::MaybeDictionary& fileInformation,
                             const umsservice::MaybeString& subFolderName, uint32_t diskIndex,
                             uint32_t mediaType, bool isOverWrite,
                             const std::shared_ptr<umsservice::TransferCallback>& callbackObject,
                             umsservice::TransferContext* context, uint32_t* error) override;

  /// What the person said about the file that was reported last.
  void hearAnswer(bool isYes) { isAgreed_ = isYes; }

 private:
  bool isInTheWay(const std::string& source, const std::string& place);

  umsservice::UMSService& service_;
  umsservice::FileSystem& files_;
  const std::string podcastFolder_;
  std::string reported_;   ///< source and place of the last report
  bool isAgreed_ = false;  ///< the answer to it
};

/// Answers for the sending device: questions go to the policy, which wants to hear of each file, and the
/// other device is the peer.
class PeerDelegate final : public umsservice::QDDeviceConfirmDelegate {
 public:
  PeerDelegate(std::shared_ptr<ConflictPolicy> policy, std::shared_ptr<PodcastPeer> peer)
      : policy_(std::move(policy)), peer_(std::move(peer)) {}

  bool confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) override {
    const bool goesOn = policy_->confirmOverwrite(path, isOverwrite, isNotAsk);
    peer_->hearAnswer(goesOn && isOverwrite);
    return goesOn;
  }
  std::shared_ptr<umsservice::OVFileService> getFileServiceObject(const umsservice::MaybeString&) override {
    return peer_;
  }

 private:
  const std::shared_ptr<ConflictPolicy> policy_;
  const std::shared_ptr<PodcastPeer> peer_;
};

}  // namespace umsctl
