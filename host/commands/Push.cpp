#include "commands/Push.h"

#include "Transfer.h"

namespace umsctl {

ExitStatus push(const PushOptions& options, const Errand& errand) {
  // The request chooses the folder by the number of the volume as if it were its kind.
  Transfer transfer(errand, options.volumes.profileBy(ProfileChoice::NumberAsKind), options.files);
  const Device::Volume& target = transfer.device().volume(options.to);
  auto queue = [&](uint32_t serviceID, const umsservice::Array& contents) {
    // Each file goes by its own type; a request for videos takes their subtitles along.
    return transfer.device().service().copyContentsMacToDevice(serviceID, contents, umsservice::kMediaVideo,
                                                               target.index);
  };
  return transfer.run(queue, writtenVolume(target));
}

}  // namespace umsctl
