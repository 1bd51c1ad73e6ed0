#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace umsctl {
namespace {

size_t columnsOfScreen(int descriptor) {
  constexpr size_t kUsual = 80;
  winsize size{};
  if (::ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
  return size.ws_col;
}

}  // namespace

bool outputIsTerminal() {
  return ::isatty(STDOUT_FILENO) == 1;
}

bool errorIsTerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

bool terminalUnderstandsSequences() {
  const char* kind = std::getenv("TERM");
  return kind && *kind != '\0' && std::string_view(kind) != "dumb";
}

bool canRedrawError() {
  return terminalUnderstandsSequences() && errorIsTerminal();
}

bool canAsk() {
  return ::isatty(STDIN_FILENO) == 1 && errorIsTerminal();
}

size_t errorColumns() {
  return columnsOfScreen(STDERR_FILENO);
}

std::optional<size_t> outputColumns() {
  return outputIsTerminal() ? std::optional(columnsOfScreen(STDOUT_FILENO)) : std::nullopt;
}

/// By the variables themselves, in their order of rank: the program sets no locale.
bool showsUtf8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(name);
    if (!value || *value == '\0') continue;
    const std::string_view locale(value);
    for (const char* encoding : {"UTF-8", "utf-8", "UTF8", "utf8"}) {
      if (locale.find(encoding) != std::string_view::npos) return true;
    }
    return false;
  }
  return false;
}

}  // namespace umsctl
