/// umsctl, the command-line host of the service.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <system_error>

#include "Output.h"
#include "Refusal.h"
#include "line/CommandLine.h"

namespace {

using umsctl::ExitStatus;

ExitStatus runGuarded(const std::vector<std::string>& arguments) {
  try {
    return umsctl::runCommandLine(arguments);
  } catch (const umsctl::Refusal& refusal) {
    umsctl::complain(refusal.subject(), refusal.what());
    return refusal.exitStatus();
  } catch (const std::exception& failure) {
    umsctl::complain("", failure.what());
    return ExitStatus::SomeFailed;
  }
}

/// A standard stream that was closed gets a place to go, before a file of the device takes its number and
/// whatever is said goes into the file.
void occupyStandardStreams() {
  int descriptor = 0;
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = ::open("/dev/null", O_RDWR);
  ::close(descriptor);
}

/// A result that could not be written is a failure; a reader that has read enough is none.
ExitStatus withOutputChecked(ExitStatus status) {
  int failure = umsctl::outputError();
  if (failure == 0 || failure == EPIPE) return status;
  umsctl::complain("standard output", std::generic_category().message(failure));
  return status == ExitStatus::AllDone ? ExitStatus::SomeFailed : status;
}

}  // namespace

int main(int argc, char** argv) {
  occupyStandardStreams();
  // A reader that goes away must not end a transfer halfway.
  std::signal(SIGPIPE, SIG_IGN);
  std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return static_cast<int>(withOutputChecked(runGuarded(arguments)));
}
