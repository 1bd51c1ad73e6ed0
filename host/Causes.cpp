#include "Causes.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Amounts.h"
#include "VolumeBounds.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using namespace umsservice;

constexpr auto kReadOnly = "the volume is read-only";

std::string withReason(const std::string& words, const std::string& reason) {
  return reason.empty() ? words : words + ": " + reason;
}

std::string causeOfConflict(Device& device, const ItemOutcome& outcome) {
  auto existing = device.files().linkAttributes(outcome.destPath.value_or(""));
  if (existing && existing->type == FileType::Directory) return "a folder of that name is in its place";
  if (existing && existing->type != FileType::Regular) return "no ordinary file of that name is in its place";
  return "it is already there";
}

std::string causeOfFullVolume(Device& device, const ItemOutcome& outcome) {
  if (outcome.kind == ItemOutcome::Kind::NotReached) return "not tried, the volume is full";
  if (!outcome.destPath) return "not enough room on the volume";
  uint64_t needed = device.service().fileSizeAtDevice(outcome.path);
  uint64_t free = device.service().volumeFreeSpace(outcome.destPath);
  return "not enough room on the volume: " + byteText(needed) + " needed, " + byteText(free) + " free";
}

std::string causeByNumber(const ItemOutcome& outcome, const std::string& folder) {
  switch (outcome.errorNumber) {
    case kErrorStopped:
    case kErrorStoppedByPeer:
      return "cancelled";
    case kErrorUnknownMediaType:
      return "by its name it is no music, image or video file";
    case kErrorCreateFolderFailed:
      return withReason(folder + " cannot be made", outcome.reason);
    case kErrorAttributesUnreadable:
      return outcome.reason.empty() ? "it cannot be looked at" : outcome.reason;
    case kErrorOpenFailed:
      return withReason("it cannot be opened", outcome.reason);
    case kErrorCopyFailed:
      return withReason("copying failed", outcome.reason);
    case kErrorDeleteFailed:
      return withReason(outcome.destPath ? "what is there cannot be removed" : "it cannot be removed",
                        outcome.reason);
    case kErrorInvalidInput:
      return "the device has no place for it";
    default:
      char number[16];
      std::snprintf(number, sizeof number, "0x%08x", static_cast<unsigned>(outcome.errorNumber));
      return withReason(std::string("error ") + number, outcome.reason);
  }
}

/// What one device writes for another is told with a number at most; a look at both ends tells the rest.
std::string causeOfSilentFailure(Device& device, const ItemOutcome& outcome, const std::string& folderText) {
  FileSystem& files = device.files();
  auto opened = files.openForReading(*outcome.path);
  if (!opened) return withReason("it cannot be opened", opened.error().words());
  std::string folder = outcome.destPath->substr(0, outcome.destPath->rfind('/'));
  auto made = files.createFolders(folder);
  if (!made) return withReason(folderText + " cannot be made", made.error().words());
  auto existing = files.linkAttributes(*outcome.destPath);
  if (!existing && existing.error().systemNumber != ENOENT)
    return withReason("it cannot be made", existing.error().words());
  for (const std::string& written : {folder, existing ? *outcome.destPath : folder}) {
    if (::faccessat(AT_FDCWD, written.c_str(), W_OK, AT_EACCESS) != 0)
      return errno == EROFS ? kReadOnly : withReason("it cannot be written", std::strerror(errno));
  }
  auto size = files.attributes(*outcome.path);
  auto space = files.space(folder);
  if (size && space && space->free < size->size) return causeOfFullVolume(device, outcome);
  return outcome.errorNumber == kErrorAttributesUnreadable ? causeByNumber(outcome, folderText)
                                                           : "copying failed";
}

}  // namespace

std::string causeOf(Device& device, const ItemOutcome& outcome, const std::string& folder) {
  bool isSilent = outcome.reason.empty() && outcome.path && outcome.destPath;
  switch (outcome.errorNumber) {
    case kErrorFileExists:
    case kErrorOverwriteNotAllowed:
      return causeOfConflict(device, outcome);
    case kErrorCopyFailed:
    case kErrorCreateFolderFailed:
    case kErrorAttributesUnreadable:  // a file that could not be replaced, too
      return isSilent ? causeOfSilentFailure(device, outcome, folder) : causeByNumber(outcome, folder);
    case kErrorWriteVolumeFull:
    case kErrorVolumeFull:
      return causeOfFullVolume(device, outcome);
    default:
      return causeByNumber(outcome, folder);
  }
}

std::string adviceFor(const ItemOutcome& outcome, const std::string& cause) {
  if (cause == "it is a folder") return "name the files in it";
  if (cause == "it is no ordinary file") return "only ordinary files can be copied";
  if (cause.ends_with(VolumeBounds::kLeadsElsewhere)) return "name a file below the folder of a volume";
  if (cause.ends_with("umsctl rmdir removes folders")) return "use umsctl rmdir";
  if (cause == kReadOnly) return "take its write protection off, or choose another volume";
  if (cause == "it is not a folder") return "use umsctl rm";
  if (cause == "it must be given by its name") return "name the folder itself";
  if (cause.starts_with("it is not empty; ")) return "empty it, or use --recursive";
  switch (outcome.errorNumber) {
    case kErrorFileExists:
    case kErrorOverwriteNotAllowed:
      return "rename the file, or move away what is in its place";
    case kErrorWriteVolumeFull:
    case kErrorVolumeFull:
      return outcome.kind == ItemOutcome::Kind::NotReached
                 ? "run it again once there is room"
                 : "make room (umsctl rm), or choose another volume";
    case kErrorUnknownMediaType:
      return "umsctl put copies any file";
    case kErrorCreateFolderFailed:
      return "see what stands in the way of the folder, and whether the volume can be written to";
    case kErrorAttributesUnreadable:
      return "check the name, and that the device is still there";
    case kErrorOpenFailed:
    case kErrorDeleteFailed:
      return "check permissions, and that the volume can be written to";
    case kErrorCopyFailed:
      return "check the cable and the card, then run it again";
    case kErrorInvalidInput:
    case kErrorBadCopyItem:
    case kErrorBadSyncItem:
    case kErrorBadDeleteItem:
      return "check the name and its permissions";
    default:
      return "take the device off and on, then run it again";
  }
}

}  // namespace umsctl
