#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace umsctl {

bool outputIsTerminal() {
  return ::isatty(STDOUT_FILENO) == 1;
}

bool canRedrawError() {
  const char* kind = std::getenv("TERM");
  bool isDumb = !kind || std::string_view(kind).empty() || std::string_view(kind) == "dumb";
  return !isDumb && ::isatty(STDERR_FILENO) == 1;
}

bool canAsk() {
  return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

size_t errorColumns() {
  constexpr size_t kUsual = 80;
  winsize size{};
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
  return size.ws_col;
}

}  // namespace umsctl
