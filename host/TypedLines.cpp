#include "TypedLines.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace umsctl {

std::optional<std::string> TypedLines::next() {
  for (;;) {
    if (size_t end = typed_.find('\n'); end != std::string::npos) {
      std::string line = typed_.substr(0, end);
      typed_.erase(0, end + 1);
      return line;
    }
    pollfd waiting[] = {{STDIN_FILENO, POLLIN, 0}, {interrupt_.descriptor(), POLLIN, 0}};
    if (::poll(waiting, 2, -1) < 0 && errno == EINTR) continue;
    if (interrupt_.happened()) {
      interrupt_.settle();  // a run must be cancelled before it goes on to the next file
      return std::nullopt;
    }
    char buffer[256];
    ssize_t length = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return std::nullopt;
    typed_.append(buffer, static_cast<size_t>(length));
  }
}

}  // namespace umsctl
