#include "Output.h"

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "EscapedName.h"

namespace umsctl {
namespace {

std::atomic<int> firstOutputError{0};

/// A terminal or pipe that another program made non-blocking is waited for.
bool waitUntilWritable(int descriptor) {
  pollfd ready{descriptor, POLLOUT, 0};
  return ::poll(&ready, 1, -1) > 0 || errno == EINTR;
}

/// 0, or the system's number of the failure.
int writeAll(int descriptor, const std::string& text) {
  size_t written = 0;
  while (written < text.size()) {
    ssize_t length = ::write(descriptor, text.data() + written, text.size() - written);
    if (length >= 0) {
      written += static_cast<size_t>(length);
    } else if (errno == EAGAIN) {
      if (!waitUntilWritable(descriptor)) return errno;
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace

void print(const std::string& text) {
  int none = 0;
  if (int failure = writeAll(STDOUT_FILENO, text)) firstOutputError.compare_exchange_strong(none, failure);
}

void printToError(const std::string& text) {
  writeAll(STDERR_FILENO, text);  // nobody can be told that nobody can be told
}

void complain(const std::string& subject, const std::string& cause) {
  printToError("umsctl: " + (subject.empty() ? "" : escaped(subject) + ": ") + cause + "\n");
}

int outputError() {
  return firstOutputError;
}

}  // namespace umsctl
