#include "Causes.h"

#include <cstdio>

#include "Amounts.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using namespace umsservice;

std::string withReason(const std::string& words, const std::string& reason) {
  return reason.empty() ? words : words + ": " + reason;
}

std::string causeOfConflict(Device& device, const ItemOutcome& outcome) {
  auto existing = device.files().linkAttributes(outcome.destPath.value_or(""));
  if (existing && existing->type == FileType::Directory) return "a folder of that name is in its place";
  return "it is already there";
}

std::string causeOfFullVolume(Device& device, const ItemOutcome& outcome) {
  if (outcome.kind == ItemOutcome::Kind::NotReached) return "not tried, the volume is full";
  uint64_t needed = device.service().fileSizeAtDevice(outcome.path);
  uint64_t free = device.service().volumeFreeSpace(outcome.destPath);
  return "not enough room on the volume: " + byteText(needed) + " needed, " + byteText(free) + " free";
}

std::string causeByNumber(const ItemOutcome& outcome) {
  switch (outcome.errorNumber) {
    case kErrorStopped:
    case kErrorStoppedByPeer:
      return "cancelled";
    case kErrorUnknownMediaType:
      return "by its name it is no music, image or video file";
    case kErrorCreateFolderFailed:
      return withReason("its folder on the device cannot be made", outcome.reason);
    case kErrorAttributesUnreadable:
      return outcome.reason.empty() ? "it cannot be looked at" : outcome.reason;
    case kErrorOpenFailed:
      return withReason("it cannot be opened", outcome.reason);
    case kErrorCopyFailed:
      return withReason("copying failed", outcome.reason);
    case kErrorDeleteFailed:
      return withReason("what is there cannot be removed", outcome.reason);
    default:
      char number[16];
      std::snprintf(number, sizeof number, "0x%08x", static_cast<unsigned>(outcome.errorNumber));
      return withReason(std::string("error ") + number, outcome.reason);
  }
}

}  // namespace

std::string causeOf(Device& device, const ItemOutcome& outcome) {
  switch (outcome.errorNumber) {
    case kErrorFileExists:
      return causeOfConflict(device, outcome);
    case kErrorVolumeFull:
      return causeOfFullVolume(device, outcome);
    default:
      return causeByNumber(outcome);
  }
}

}  // namespace umsctl
