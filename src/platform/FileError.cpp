#include <cerrno>
#include <system_error>

#include "StringFormat.h"
#include "umsservice/FileSystem.h"

namespace umsservice {
namespace {

/// One row for each cause that the platform's file manager tells apart.
struct ErrorCodeRow {
  int systemNumber;
  uint32_t onReading;
  uint32_t onWriting;
};

constexpr ErrorCodeRow kErrorCodes[] = {
    {ENOENT, 260, 4},         {ENOTDIR, 260, 4},  {EACCES, 257, 513}, {EPERM, 257, 513}, {EEXIST, 516, 516},
    {ENAMETOOLONG, 514, 514}, {ENOSPC, 640, 640}, {EDQUOT, 640, 640}, {EROFS, 642, 642},
};

constexpr uint32_t kUnknownOnReading = 256;
constexpr uint32_t kUnknownOnWriting = 512;

}  // namespace

std::string FileError::words() const {
  return std::generic_category().message(systemNumber);
}

uint32_t FileError::code() const {
  bool reading = action == Action::Reading;
  for (const ErrorCodeRow& row : kErrorCodes) {
    if (row.systemNumber == systemNumber) return reading ? row.onReading : row.onWriting;
  }
  return reading ? kUnknownOnReading : kUnknownOnWriting;
}

std::string FileError::description() const {
  return stringWithFormat("Error Domain=NSCocoaErrorDomain Code=%d \"%s\" (%@)", {code(), words(), path});
}

}  // namespace umsservice
