/// What the process writes to standard error while the object lives, log lines of the platform included.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "Sandbox.h"

namespace umsplugin::testing {

class StderrCapture {
 public:
  StderrCapture() : before_(dup(STDERR_FILENO)) {
    const int file = open(path_.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_APPEND, 0600);
    dup2(file, STDERR_FILENO);
    close(file);
  }
  ~StderrCapture() {
    dup2(before_, STDERR_FILENO);
    close(before_);
  }
  StderrCapture(const StderrCapture&) = delete;
  StderrCapture& operator=(const StderrCapture&) = delete;

  std::string text() const { return umsservice::testing::bytesOf(path_); }
  /// The lines so far that hold a text.
  std::vector<std::string> linesWith(const std::string& part) const {
    std::vector<std::string> found;
    std::istringstream stream(text());
    for (std::string line; std::getline(stream, line);) {
      if (line.find(part) != std::string::npos) found.push_back(line);
    }
    return found;
  }

 private:
  const umsservice::testing::Sandbox folder_;
  const std::string path_ = folder_.at("stderr");
  const int before_;
};

}  // namespace umsplugin::testing
