#include "Lookups.h"

#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

MaybeString describedPath(const Log& log, const MaybeDictionary& fileInformation, const char* method) {
  if (!fileInformation) return std::nullopt;
  MaybeString path = fileInformation->string(key::kFilePath);
  if (!path) log.write(1, method, "Media File Path Value is nil");
  return path;
}

}  // namespace

MaybeString copyContentToPlay(const Log& log, const MaybeDictionary& fileInformation) {
  return describedPath(log, fileInformation,
                       "-[UMSService copyContentToPlay:diskIndex:mediaType:fileInformation:]");
}

bool isExistContentFromMac(const Log& log, const MaybeDictionary& fileInformation) {
  return describedPath(log, fileInformation,
                       "-[UMSService isExistContentFromMac:diskIndex:mediaType:fileInformation:returnNode:]")
      .has_value();
}

}  // namespace umsservice
