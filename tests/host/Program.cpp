#include "Program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <regex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace umsservice::testing {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kPatience{60};

/// Only calls that are allowed between fork and exec from here on.
void becomeOrdinary(const Setting& setting) {
  if (setting.withoutRootPowers) {
    // Out of the bounding set, so that root does not get them back with the new program.
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
    prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
  }
  for (int number : setting.ignoredSignals) signal(number, SIG_IGN);
  if (!setting.folder.empty() && chdir(setting.folder.c_str()) != 0) _exit(127);
}

[[noreturn]] void become(const Setting& setting, char* const* arguments) {
  becomeOrdinary(setting);
  execv(setting.program.c_str(), arguments);
  _exit(127);
}

struct Pipe {
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
  int& reading() { return ends[0]; }
  int& writing() { return ends[1]; }
  int ends[2];
};

size_t occurrences(const std::string& text, const std::string& seen) {
  size_t found = 0;
  for (size_t at = seen.find(text); at != std::string::npos; at = seen.find(text, at + text.size())) ++found;
  return found;
}

void closeOnce(int& descriptor) {
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
}

}  // namespace

RunningProgram::RunningProgram(const std::vector<std::string>& arguments, const Setting& setting) {
  signal(SIGPIPE, SIG_IGN);
  setenv("TERM", "xterm", 1);
  setenv("LC_ALL", "C.UTF-8", 1);
  for (const auto& variable : setting.environment) setenv(variable.first.c_str(), variable.second.c_str(), 1);
  std::vector<char*> pointers{const_cast<char*>(setting.program.c_str())};
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  if (setting.atTerminal) {
    startAtTerminal(setting, pointers.data());
  } else {
    startWithPipes(setting, pointers.data());
  }
  for (const auto& variable : setting.environment) unsetenv(variable.first.c_str());
}

RunningProgram::~RunningProgram() {
  endSlowness();
  if (!hasExited_) {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  closeOnce(output_);
  closeOnce(error_);
  closeOnce(input_);
}

void RunningProgram::startAtTerminal(const Setting& setting, char* const* arguments) {
  output_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (output_ < 0 || grantpt(output_) != 0 || unlockpt(output_) != 0)
    throw std::runtime_error("no pseudo-terminal");
  winsize size{24, setting.columns, 0, 0};
  ioctl(output_, TIOCSWINSZ, &size);
  std::string name = ptsname(output_);
  process_ = fork();
  if (process_ != 0) return;
  setsid();
  int screen = open(name.c_str(), O_RDWR);
  ioctl(screen, TIOCSCTTY, 0);
  for (int descriptor : {0, 1, 2}) dup2(screen, descriptor);
  if (screen > 2) close(screen);
  become(setting, arguments);
}

void RunningProgram::startWithPipes(const Setting& setting, char* const* arguments) {
  Pipe in, out, err;
  if (setting.smallOutputPipe) fcntl(out.writing(), F_SETPIPE_SZ, 4096);
  int outputFile = setting.outputFile.empty() ? -1 : open(setting.outputFile.c_str(), O_WRONLY | O_CLOEXEC);
  process_ = fork();
  if (process_ == 0) {
    dup2(in.reading(), 0);
    dup2(outputFile >= 0 ? outputFile : out.writing(), 1);
    dup2(err.writing(), 2);
    become(setting, arguments);
  }
  // Small enough for the pipe, so it never blocks here.
  if (write(in.writing(), setting.input.data(), setting.input.size()) < 0) giveUp("cannot type ahead");
  if (setting.openInput) input_ = std::exchange(in.writing(), -1);
  for (int* descriptor : {&in.reading(), &in.writing(), &out.writing(), &err.writing(), &outputFile})
    closeOnce(*descriptor);
  output_ = out.reading();
  error_ = err.reading();
}

void RunningProgram::giveUp(const std::string& reason) {
  if (!hasExited_) kill(process_, SIGKILL);
  throw std::runtime_error(reason + "\noutput so far: " + ended_.output + "\nerror so far: " + ended_.error);
}

bool RunningProgram::readSome(int& descriptor, std::string& seen) {
  char buffer[4096];
  ssize_t length = read(descriptor, buffer, sizeof buffer);
  if (length < 0 && errno == EINTR) return true;
  if (length <= 0) {  // a terminal whose program has gone answers with an error
    closeOnce(descriptor);
    return false;
  }
  seen.append(buffer, static_cast<size_t>(length));
  return true;
}

void RunningProgram::waitFor(const std::string& text, size_t times, int& descriptor, std::string& seen) {
  const auto deadline = Clock::now() + kPatience;
  while (occurrences(text, seen) < times) {
    pollfd waiting{descriptor, POLLIN, 0};
    if (poll(&waiting, 1, 100) > 0 && !readSome(descriptor, seen)) giveUp("ended without: " + text);
    if (Clock::now() > deadline) giveUp("waited in vain for: " + text);
  }
}

void RunningProgram::type(const std::string& text) {
  if (write(output_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) giveUp("cannot type");
}

void RunningProgram::resize(unsigned short columns) {
  winsize size{24, columns, 0, 0};
  if (ioctl(output_, TIOCSWINSZ, &size) != 0) giveUp("cannot resize");
}

void RunningProgram::sendSignal(int number) {
  kill(process_, number);
}

void RunningProgram::slowDown() {
  isSlow_ = true;
  slowness_ = std::thread([this] {
    while (isSlow_) {
      kill(process_, SIGSTOP);
      std::this_thread::sleep_for(std::chrono::milliseconds(60));
      kill(process_, SIGCONT);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
}

/// Before the process is waited for: afterwards its number may be another's.
void RunningProgram::endSlowness() {
  isSlow_ = false;
  if (slowness_.joinable()) slowness_.join();
}

/// Through an end of its own: what does not block here must still block the program.
void RunningProgram::fillOutput() {
  int writing = open(("/proc/self/fd/" + std::to_string(output_)).c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  while (write(writing, " ", 1) == 1) {
  }
  if (errno != EAGAIN) giveUp("cannot fill the output");
  closeOnce(writing);
}

void RunningProgram::closeOutput() {
  closeOnce(output_);
}

int RunningProgram::waitForExit() {
  endSlowness();
  const auto deadline = Clock::now() + kPatience;
  int state = 0;
  while (waitpid(process_, &state, WNOHANG) == 0) {
    if (Clock::now() > deadline) giveUp("does not end");
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  hasExited_ = true;
  ended_.status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
  return ended_.status;
}

Ended RunningProgram::wait() {
  endSlowness();
  const auto deadline = Clock::now() + kPatience;
  while (output_ >= 0 || error_ >= 0) {
    pollfd waiting[] = {{output_, POLLIN, 0}, {error_, POLLIN, 0}};
    if (poll(waiting, 2, 100) > 0) {
      if (waiting[0].revents != 0) readSome(output_, ended_.output);
      if (waiting[1].revents != 0) readSome(error_, ended_.error);
    }
    if (Clock::now() > deadline) giveUp("does not end");
  }
  if (!hasExited_) waitForExit();
  return ended_;
}

std::string Ended::causes() const {
  static const std::regex numberAndAdvice(" \\(0x[0-9a-f]{8}\\); [^\n]*");
  return std::regex_replace(error, numberAndAdvice, "");
}

std::string Ended::screen() const {
  const std::string erasure = "\r\x1b[K";
  std::string shown;
  for (size_t at = 0; at < output.size();) {
    if (output.compare(at, erasure.size(), erasure) == 0) {
      shown.erase(shown.rfind('\n') + 1);  // everything, where there is no line above
      at += erasure.size();
    } else {
      shown += output[at++];
    }
  }
  return shown;
}

Ended umsctl(const std::vector<std::string>& arguments, const Setting& setting) {
  return RunningProgram(arguments, setting).wait();
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0; at < text.size();) {
    size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

}  // namespace umsservice::testing
