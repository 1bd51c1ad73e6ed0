/// System calls that a signal interrupted are made again.
#pragma once

#include <cerrno>

namespace umsservice {

template <typename Call>
auto retried(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

}  // namespace umsservice
