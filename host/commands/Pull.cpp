#include "commands/Pull.h"

#include "Paths.h"
#include "Subtitles.h"
#include "Transfer.h"
#include "VolumeBounds.h"

namespace umsctl {
namespace {

/// Subtitles replace those of the same name beside the copy without a question. Where these belong to nothing
/// that the copy replaces itself, the person is asked as about any other file.
bool mayBringSubtitles(Transfer& transfer, const std::string& video, const std::string& copy) {
  auto& files = transfer.device().files();
  auto brought = files.attributes(companionOf(video));
  auto existing = files.linkAttributes(companionOf(copy));
  if (!brought || !existing || brought->size == existing->size || files.linkAttributes(copy)) return true;
  bool isOverwrite = false, isNotAsk = false;
  transfer.policy().confirmOverwrite(companionOf(video), isOverwrite, isNotAsk);
  return isOverwrite;
}

}  // namespace

ExitStatus pull(const PullOptions& options, const Errand& errand) {
  const VolumeBounds bounds(options.volumes);
  const std::string into = withoutTrailingSlashes(absolutePath(options.into));
  auto objection = [&bounds](umsservice::FileSystem& files, const std::string& path) {
    return bounds.holdsContents(path) ? whyUnreadable(files, path) : VolumeBounds::kElsewhere;
  };
  Transfer transfer(errand, options.volumes, options.files, {.place = "there", .folder = "the folder"},
                    objection);
  Device& device = transfer.device();
  // Files of any kind come along. Subtitles that are in the list themselves are left to their own turn.
  auto sort = [&](size_t index) {
    const std::string& path = transfer.contents().paths[index];
    bool video = device.service().checkMediaType(path) == umsservice::kMediaVideo &&
                 !transfer.contents().has(companionOf(path)) &&
                 mayBringSubtitles(transfer, path, inFolder(into, lastComponent(path)));
    return Transfer::part(video);
  };
  auto queue = [&](uint32_t serviceID, const umsservice::Array& contents, uint32_t mediaType) {
    return device.service().copyContentsDeviceToMac(serviceID, contents, into, mediaType, std::nullopt);
  };
  return transfer.runByType(sort, queue, {{into, {}}});
}

}  // namespace umsctl
