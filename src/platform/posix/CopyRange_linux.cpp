#include <unistd.h>

#include "CopyRange.h"

namespace umsservice {

ssize_t copyRange(int source, int destination, size_t size) {
  return ::copy_file_range(source, nullptr, destination, nullptr, size, 0);
}

}  // namespace umsservice
