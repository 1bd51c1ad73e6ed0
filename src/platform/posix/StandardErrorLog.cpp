#include <unistd.h>

#include <cerrno>

#include "umsservice/Log.h"

namespace umsservice {
namespace {

class StandardErrorLogSink final : public LogSink {
 public:
  void write(const std::string& line) override {
    std::string text = line + "\n";
    size_t written = 0;
    while (written < text.size()) {
      ssize_t length = ::write(STDERR_FILENO, text.data() + written, text.size() - written);
      if (length < 0 && errno == EINTR) continue;
      if (length <= 0) return;  // nobody can be told that the log cannot be written
      written += static_cast<size_t>(length);
    }
  }
};

}  // namespace

std::shared_ptr<LogSink> standardErrorLogSink() {
  return std::make_shared<StandardErrorLogSink>();
}

}  // namespace umsservice
