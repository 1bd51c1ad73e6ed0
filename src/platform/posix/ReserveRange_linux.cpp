#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>

#include <cerrno>

#include "ReserveRange.h"

namespace umsservice {
namespace {

/// Nothing comes to lie together in memory, where setting each page aside first only takes time.
bool isInMemory(int descriptor) {
  struct statfs volume {};
  return ::fstatfs(descriptor, &volume) == 0 && volume.f_type == TMPFS_MAGIC;
}

}  // namespace

int reserveRange(int descriptor, uint64_t position, uint64_t size) {
  if (isInMemory(descriptor)) {
    errno = EOPNOTSUPP;
    return -1;
  }
  return ::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(position), static_cast<off_t>(size));
}

}  // namespace umsservice
