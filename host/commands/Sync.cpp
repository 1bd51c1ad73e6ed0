#include "commands/Sync.h"

#include "StrayParts.h"
#include "Transfer.h"

namespace umsctl {

ExitStatus syncMedia(const SyncOptions& options, const Errand& errand) {
  Transfer transfer(errand, options.volumes.profileBy(ProfileChoice::Number), options.files,
                    {.subtitles = Subtitles::StayBehind, .tellsPlaces = true});
  Device& device = transfer.device();
  const bool isStartInternal = device.volume(options.first).kind == "internal";
  auto strays = std::make_shared<StrayParts>(device, transfer.contents());
  transfer.setCleaner(
      [strays](const umsservice::ItemOutcome& outcome) { return strays->removeAfter(outcome); });
  auto sort = [&](size_t index) {
    Transfer::Part part = transfer.partByName(index);
    if (!part.settled) strays->expect(index, part.mediaType);
    return part;
  };
  auto queue = [&](uint32_t serviceID, const umsservice::Array& contents, uint32_t mediaType) {
    return device.service().syncContents(serviceID, contents, mediaType, isStartInternal);
  };
  return transfer.runByType(sort, queue, writtenVolumes(device));
}

}  // namespace umsctl
