#include "umsservice/ErrorDescriptions.h"

#include <algorithm>
#include <cstdio>

namespace umsservice {
namespace {

std::string digitsOf(uint32_t number) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "0x%08x", static_cast<unsigned>(number));
  return digits;
}

const ErrorDescription* descriptionOf(uint32_t number) {
  const auto& all = errorDescriptions();
  auto found =
      std::find_if(all.begin(), all.end(), [number](const auto& one) { return one.number == number; });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace

const std::vector<ErrorDescription>& errorDescriptions() {
  static const std::vector<ErrorDescription> all{
      {kErrorNone, "kErrorNone", "no error"},
      {kItemTransferred, "kItemTransferred", "the item is on the volume"},
      {kErrorInvalidInput, "kErrorInvalidInput", "something is missing, unknown or cannot be opened"},
      {kErrorOverwriteNotAllowed, "kErrorOverwriteNotAllowed",
       "the destination exists and may not be overwritten"},
      {kErrorStopped, "kErrorStopped", "stopped before the end"},
      {kErrorStoppedByPeer, "kErrorStoppedByPeer", "stopped by the other side"},
      {kErrorVolumeFull, "kErrorVolumeFull", "the volume is full"},
      {kErrorReadFailed, "kErrorReadFailed", "the file cannot be read"},
      {kErrorWriteVolumeFull, "kErrorWriteVolumeFull", "the volume has no room for the file"},
      {kErrorUnknownMediaType, "kErrorUnknownMediaType", "by its name the file is no music, image or video"},
      {kErrorCreateFileFailed, "kErrorCreateFileFailed", "the file cannot be made"},
      {kErrorCreateFolderFailed, "kErrorCreateFolderFailed", "the folder cannot be made"},
      {kErrorDeleteFailed, "kErrorDeleteFailed", "the file cannot be removed"},
      {kErrorRenameFailed, "kErrorRenameFailed", "the item cannot be renamed"},
      {kErrorCopyFailed, "kErrorCopyFailed", "copying failed"},
      {kErrorAttributesUnreadable, "kErrorAttributesUnreadable",
       "the source is missing or cannot be looked at"},
      {kErrorFileExists, "kErrorFileExists", "the destination exists"},
      {kErrorOpenFailed, "kErrorOpenFailed", "the file cannot be opened"},
      {kErrorOperationFailed, "kErrorOperationFailed", "the operation failed"},
      {kErrorBadDeleteItem, "kErrorBadDeleteItem", "the item to delete is not described completely"},
      {kErrorBadSyncItem, "kErrorBadSyncItem",
       "the item to sync, or its folder, is not described completely"},
      {kErrorBadCopyItem, "kErrorBadCopyItem", "the item to copy is not described completely"},
  };
  return all;
}

std::string errorNumberName(uint32_t number) {
  const ErrorDescription* found = descriptionOf(number);
  return found ? std::string(found->name) : digitsOf(number);
}

std::string errorNumberText(uint32_t number) {
  const ErrorDescription* found = descriptionOf(number);
  return found ? std::string(found->text) : "unknown error " + digitsOf(number);
}

}  // namespace umsservice
