#include "commands/Push.h"

#include "Transfer.h"

namespace umsctl {

ExitStatus push(const PushOptions& options, const Errand& errand) {
  Transfer transfer(errand, options.volumes, options.files);
  const Device::Volume& target = transfer.device().volume(options.to);
  auto queue = [&](uint32_t serviceID, const umsservice::Array& contents) {
    // Each file goes by its own type; a request for videos takes their subtitles along.
    return transfer.device().service().copyContentsMacToDevice(serviceID, contents, umsservice::kMediaVideo,
                                                               target.index);
  };
  return transfer.run(queue, writtenVolume(target));
}

}  // namespace umsctl
