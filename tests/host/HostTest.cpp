#include "HostTest.h"

#include <sys/statvfs.h>
#include <unistd.h>

namespace umsservice::testing {

std::string HostTest::hugeFile(const std::string& relative) const {
  // Holes are read in no time but written like other bytes.
  struct statvfs space {};
  if (statvfs(sandbox.path().c_str(), &space) != 0) return "";
  uint64_t size = std::min<uint64_t>(uint64_t{space.f_bavail} * space.f_frsize / 2, 8'000'000'000);
  std::string path = sandbox.file(relative, "");
  if (size < 500'000'000 || truncate(path.c_str(), static_cast<off_t>(size)) != 0) return "";
  return path;
}

}  // namespace umsservice::testing
