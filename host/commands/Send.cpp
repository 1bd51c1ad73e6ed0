#include "commands/Send.h"

#include "AskingDevice.h"
#include "Paths.h"
#include "Transfer.h"
#include "VolumeBounds.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using namespace umsservice;

/// A file that stays where it is, and what no file can replace, need no request.
std::optional<ItemOutcome> settledAt(FileSystem& files, const std::string& source, const std::string& place) {
  auto existing = files.linkAttributes(place);
  if (!existing) return std::nullopt;
  auto from = files.attributes(source);
  auto there = files.attributes(place);
  bool isItself = from && there && from->device == there->device && from->inode == there->inode;
  if (existing->type == FileType::Regular && !isItself) return std::nullopt;
  ItemOutcome outcome;
  outcome.kind = isItself ? ItemOutcome::Kind::Skipped : ItemOutcome::Kind::Failed;
  outcome.errorNumber = kErrorFileExists;
  outcome.path = source;
  outcome.destPath = place;
  return outcome;
}

}  // namespace

ExitStatus sendMedia(const SendOptions& options, const Errand& errand) {
  Device destination(options.volumes, errand);
  const Device::Volume& target = destination.volume(options.to);
  auto receiver = std::make_shared<AskingDevice>(destination);
  const VolumeBounds bounds(options.from);
  auto objection = [&bounds](FileSystem& files, const std::string& path) {
    return bounds.holdsContents(path) ? whyUnreadable(files, path) : VolumeBounds::kElsewhere;
  };
  // The sender chooses the folders on the receiver.
  VolumeFolders from = options.from;
  from.profile = options.volumes.profile;
  Transfer transfer(errand, from, options.files, {.subtitles = Subtitles::StayBehind}, objection);
  transfer.policy().setOtherDevice(receiver);
  UMSService& source = transfer.device().service();
  auto sort = [&](size_t index) {
    Transfer::Part part = transfer.partByName(index);
    if (part.settled) return part;
    const std::string& path = transfer.contents().paths[index];
    auto place = receiver->placeOf(lastComponent(path), part.mediaType, target.index);
    if (place) part.settled = settledAt(transfer.device().files(), path, *place);
    return part;
  };
  auto queue = [&](uint32_t serviceID, const Array& contents, uint32_t mediaType) {
    return source.copyContentsDeviceToDevice(serviceID, contents, source.locationID(),
                                             destination.service().locationID(), mediaType, target.index);
  };
  return transfer.runByType(sort, queue, {writtenVolume(target)});
}

}  // namespace umsctl
