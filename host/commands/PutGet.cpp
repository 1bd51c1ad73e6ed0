#include "commands/PutGet.h"

#include "DirectCopy.h"
#include "EscapedName.h"
#include "Paths.h"
#include "Transfer.h"
#include "VolumeBounds.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using namespace umsservice;

/// As every copying program takes it: a folder gets the file under its own name.
std::string destinationOf(FileSystem& files, const DirectOptions& options) {
  std::string path = absolutePath(options.to);
  bool isFolder = path.ends_with('/') || files.isFolder(path);
  return isFolder ? inFolder(path, lastComponent(options.from)) : path;
}

bool isSameFile(FileSystem& files, const std::string& one, const std::string& other) {
  auto left = files.attributes(one);
  auto right = files.attributes(other);
  return left && right && left->device == right->device && left->inode == right->inode;
}

/// How the transfer ends before it begins, if it does: nothing is replaced without consent, nothing by
/// itself, and only files are.
std::optional<ItemOutcome> settledConflict(Transfer& transfer, const DirectCopy& copy, bool& isOverwrite) {
  FileSystem& files = transfer.device().files();
  auto existing = files.linkAttributes(copy.destination);
  if (!existing) return std::nullopt;
  ItemOutcome outcome;
  outcome.path = copy.source;
  outcome.destPath = copy.destination;
  outcome.errorNumber = kErrorFileExists;
  outcome.kind = ItemOutcome::Kind::Skipped;
  if (isSameFile(files, copy.source, copy.destination)) return outcome;
  if (existing->type != FileType::Regular) {
    outcome.kind = ItemOutcome::Kind::Failed;
    return outcome;
  }
  bool isNotAsk = false;
  transfer.policy().confirmOverwrite(copy.source, isOverwrite, isNotAsk);
  return isOverwrite ? std::nullopt : std::optional(outcome);
}

/// Reading from a device asks nobody about the room on the computer, and an existing file would be gone by
/// the time it runs out.
std::optional<ItemOutcome> withoutRoom(Device& device, const DirectCopy& copy) {
  if (device.service().volumeFreeSpace(copy.destination) >= device.service().fileSizeAtDevice(copy.source))
    return std::nullopt;
  ItemOutcome outcome;
  outcome.path = copy.source;
  outcome.destPath = copy.destination;
  outcome.kind = ItemOutcome::Kind::Failed;
  outcome.errorNumber = kErrorVolumeFull;
  return outcome;
}

/// The destination's volume, or a folder of the computer.
WrittenPlace placeOf(const Device& device, const std::string& destination) {
  for (const Device::Volume& volume : device.volumes()) {
    if (destination.starts_with(volume.path + "/")) return writtenVolume(volume);
  }
  return {destination.substr(0, destination.rfind('/') + 1), {}};
}

ExitStatus transferOne(Transfer& transfer, const WrittenPlace& written, const std::string& destination,
                       DirectCopy::Method method) {
  auto direct = [&](const std::function<bool()>& isWanted, const std::function<void(uint64_t)>& moved) {
    DirectCopy copy{transfer.contents().paths.front(), destination, isWanted, moved};
    bool isOverwrite = false;
    auto settled = settledConflict(transfer, copy, isOverwrite);
    if (!settled) settled = withoutRoom(transfer.device(), copy);
    return settled ? *settled : copy.run(transfer.device(), method, isOverwrite);
  };
  return transfer.runDirectly(direct, written);
}

}  // namespace

ExitStatus put(const DirectOptions& options, const Errand& errand) {
  const VolumeBounds bounds(options.volumes);
  auto objection = [&](FileSystem& files, const std::string& path) -> std::string {
    std::string cause = whyUnreadable(files, path);
    if (!cause.empty() || bounds.holdsItem(destinationOf(files, options))) return cause;
    return escaped(options.to) + VolumeBounds::kLeadsElsewhere;
  };
  Transfer transfer(errand, options.volumes, {options.from}, {.subtitles = Subtitles::StayBehind}, objection);
  const std::string destination = destinationOf(transfer.device().files(), options);
  return transferOne(transfer, placeOf(transfer.device(), destination), destination,
                     &UMSService::writeFileToDevice);
}

ExitStatus get(const DirectOptions& options, const Errand& errand) {
  const VolumeBounds bounds(options.volumes);
  auto objection = [&bounds](FileSystem& files, const std::string& path) {
    return bounds.holdsContents(path) ? whyUnreadable(files, path) : VolumeBounds::kElsewhere;
  };
  Transfer transfer(errand, options.volumes, {options.from},
                    {.place = "there", .folder = "its folder", .subtitles = Subtitles::StayBehind},
                    objection);
  const std::string destination = destinationOf(transfer.device().files(), options);
  return transferOne(transfer, {destination.substr(0, destination.rfind('/') + 1), {}}, destination,
                     &UMSService::readFileFromDevice);
}

}  // namespace umsctl
