/// Thrown where a command cannot go on; the command line tells it as "umsctl: PATH: cause" and ends with its
/// status.
#pragma once

#include <stdexcept>
#include <string>

#include "ExitStatus.h"

namespace umsctl {

class Refusal : public std::runtime_error {
 public:
  /// `subject` is what the cause is about, usually a path as the person wrote it.
  Refusal(ExitStatus exitStatus, std::string subject, const std::string& cause)
      : std::runtime_error(cause), exitStatus_(exitStatus), subject_(std::move(subject)) {}

  ExitStatus exitStatus() const { return exitStatus_; }
  const std::string& subject() const { return subject_; }

 private:
  ExitStatus exitStatus_;
  std::string subject_;
};

}  // namespace umsctl
