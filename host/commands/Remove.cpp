#include "commands/Remove.h"

#include <set>

#include "Amounts.h"
#include "Consent.h"
#include "Paths.h"
#include "Subtitles.h"
#include "Transfer.h"
#include "VolumeBounds.h"

namespace umsctl {
namespace {

using umsservice::FileSystem;
using umsservice::FileType;

/// Nothing outside the volumes is deleted, whatever it is called. A link goes, what it leads to stays.
std::string whyNotDeleted(const VolumeBounds& bounds, FileSystem& files, const std::string& path) {
  if (!bounds.holdsItem(path)) return VolumeBounds::kElsewhere;
  auto found = files.linkAttributes(path);
  if (!found) return found.error().words();
  return found->type == FileType::Directory ? "it is a folder; umsctl rmdir removes folders" : "";
}

bool isVideo(Device& device, const std::string& path) {
  return device.service().checkMediaType(path) == umsservice::kMediaVideo;
}

/// What is to go, in words; empty when nothing can.
std::string planned(Device& device, const Contents& contents) {
  size_t files = 0, companions = 0;
  uint64_t bytes = 0;
  for (size_t i = 0; i < contents.paths.size(); ++i) {
    if (!contents.objections[i].empty()) continue;
    ++files;
    bytes += contents.sizes[i];
    std::string companion = companionOf(contents.paths[i]);
    bool isTaken = isVideo(device, contents.paths[i]) && !contents.has(companion);
    if (isTaken && device.files().exists(companion)) ++companions;
  }
  if (files == 0) return "";
  std::string text = countText(files, "file") + " (" + byteText(bytes) + ")";
  return companions == 0 ? text : text + " and " + countText(companions, "subtitle file");
}

bool isAgreed(const RemoveOptions& options, const Errand& errand, const Objection& objection) {
  if (errand.wishes().isAgreed || errand.rehearsal()) return true;
  Device device(options.volumes, errand);
  std::string plan = planned(device, Contents(errand, device.files(), options.files, objection));
  if (plan.empty()) return true;  // each file is told with what stands against it
  return agreesTo(errand, "Delete " + plan + " from the device?");
}

/// A file that is named twice goes once.
RemoveOptions withoutRepetitions(const RemoveOptions& options) {
  RemoveOptions once = options;
  std::set<std::string> known;
  std::erase_if(once.files,
                [&](const std::string& file) { return !known.insert(absolutePath(file)).second; });
  return once;
}

}  // namespace

ExitStatus removeFiles(const RemoveOptions& given, const Errand& errand) {
  const RemoveOptions options = withoutRepetitions(given);
  const VolumeBounds bounds(options.volumes);
  auto objection = [&bounds](FileSystem& files, const std::string& path) {
    return whyNotDeleted(bounds, files, path);
  };
  if (!isAgreed(options, errand, objection)) return ExitStatus::AllDone;
  Transfer transfer(errand, options.volumes, options.files,
                    {.done = "deleted", .planned = "delete", .subtitles = Subtitles::AreRemoved}, objection);
  Device& device = transfer.device();
  // A request for videos takes a ".smi" of the same name along; that of a song would be somebody else's, and
  // one in the list has its own turn.
  auto sort = [&](size_t index) {
    const std::string& path = transfer.contents().paths[index];
    return Transfer::part(isVideo(device, path) && !transfer.contents().has(companionOf(path)));
  };
  auto queue = [&](uint32_t serviceID, const umsservice::Array& contents, uint32_t mediaType) {
    return device.service().deleteContents(serviceID, contents, mediaType, 0);
  };
  return transfer.runByType(sort, queue, writtenVolumes(device));
}

}  // namespace umsctl
