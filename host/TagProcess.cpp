#include "TagProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <optional>
#include <utility>

#include "FileTags.h"

namespace umsctl {
namespace {

using umsservice::Data;
using umsservice::Dictionary;
using umsservice::MaybeDictionary;
using umsservice::Value;

/// Seconds after which the reader of a file is given up.
constexpr std::chrono::seconds kAnswerTime{10};
/// More than any path and any cover picture.
constexpr uint64_t kLargestMessage = 64u << 20;

/// The program's end of the line to the process; -1 where there is none.
int descriptor = -1;
std::mutex talking;

bool sendAll(int to, const void* bytes, size_t size) {
  const char* at = static_cast<const char*>(bytes);
  while (size > 0) {
    ssize_t length = ::write(to, at, size);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return false;
    at += length;
    size -= static_cast<size_t>(length);
  }
  return true;
}

using Clock = std::chrono::steady_clock;

/// Whether there is something to read, or an end of it, before a time.
bool isReadable(int from, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd waiting{from, POLLIN, 0};
    const int ready = ::poll(&waiting, 1, static_cast<int>(std::clamp<long long>(left, 0, 60'000)));
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) return false;
    if (left <= 0) return false;
  }
}

bool readAll(int from, void* bytes, size_t size, Clock::time_point deadline) {
  char* at = static_cast<char*>(bytes);
  while (size > 0) {
    if (!isReadable(from, deadline)) return false;
    ssize_t length = ::read(from, at, size);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return false;
    at += length;
    size -= static_cast<size_t>(length);
  }
  return true;
}

struct Message {
  uint64_t number = 0;  ///< of the question that it is or answers
  std::string text;
};

bool send(int to, const Message& message) {
  const uint64_t head[] = {message.number, message.text.size()};
  return sendAll(to, head, sizeof head) && sendAll(to, message.text.data(), message.text.size());
}

std::optional<Message> receive(int from, Clock::time_point deadline = Clock::time_point::max()) {
  uint64_t head[2] = {};
  if (!readAll(from, head, sizeof head, deadline) || head[1] > kLargestMessage) return std::nullopt;
  Message message{head[0], std::string(static_cast<size_t>(head[1]), '\0')};
  if (!readAll(from, message.text.data(), message.text.size(), deadline)) return std::nullopt;
  return message;
}

// The text of an answer is a letter, 'y' where there are some, and then for each its kind, its name and its
// bytes.

void addPart(std::string& message, const void* bytes, size_t size) {
  const uint64_t length = size;
  message.append(reinterpret_cast<const char*>(&length), sizeof length);
  message.append(static_cast<const char*>(bytes), size);
}

void addPart(std::string& message, const std::string& text) {
  addPart(message, text.data(), text.size());
}

std::string packed(const MaybeDictionary& tags) {
  if (!tags) return "n";
  std::string message = "y";
  for (const std::string& name : tags->keys()) {
    const Value value = tags->get(name);
    const auto text = value.string();
    const auto data = value.data();
    addPart(message, text ? "t" : data ? "d" : "n");
    addPart(message, name);
    if (text) {
      addPart(message, *text);
    } else if (data) {
      addPart(message, data->data(), data->size());
    } else {
      addPart(message, std::to_string(value.unsignedIntValue()));
    }
  }
  return message;
}

/// Takes a message apart; what comes from a reader that went wrong may be anything.
class Unpacking {
 public:
  explicit Unpacking(const std::string& message) : message_(message) {}

  bool isAtEnd() const { return at_ == message_.size(); }
  std::optional<std::string> part() {
    uint64_t size = 0;
    if (message_.size() - at_ < sizeof size) return std::nullopt;
    std::memcpy(&size, message_.data() + at_, sizeof size);
    at_ += sizeof size;
    if (message_.size() - at_ < size) return std::nullopt;
    std::string part = message_.substr(at_, static_cast<size_t>(size));
    at_ += static_cast<size_t>(size);
    return part;
  }

 private:
  const std::string& message_;
  size_t at_ = 1;
};

MaybeDictionary unpacked(const std::string& message) {
  if (!message.starts_with('y')) return std::nullopt;
  Dictionary tags;
  for (Unpacking parts(message); !parts.isAtEnd();) {
    const auto kind = parts.part(), name = parts.part(), bytes = parts.part();
    if (!kind || !name || !bytes) return std::nullopt;
    if (*kind == "t") {
      tags.set(*name, *bytes);
    } else if (*kind == "d") {
      const auto* first = reinterpret_cast<const std::byte*>(bytes->data());
      tags.set(*name, Data(first, first + bytes->size()));
    } else {
      tags.set(*name, static_cast<uint32_t>(std::strtoul(bytes->c_str(), nullptr, 10)));
    }
  }
  return tags;
}

/// In the process that reads: file by file, until one brings it down.
[[noreturn]] void answerAll(int line) {
  while (auto question = receive(line)) {
    if (!send(line, {question->number, packed(fileTags(question->text))})) break;
  }
  ::_exit(0);
}

/// The process that reads, and the server's line to it. Each has a line of its own: one that dies in the
/// middle of an answer ends it, and nothing of the half comes before another answer.
class Reader {
 public:
  ~Reader() { end(); }

  /// Whole, in time, or not at all; a reader that failed is replaced at the next question.
  std::optional<Message> answer(const Message& question, int serversLine) {
    // One that died since the last question has not seen this one.
    if (!isThere() || !send(line_, question)) {
      end();
      if (!start(serversLine) || !send(line_, question)) return std::nullopt;
    }
    auto answer = receive(line_, Clock::now() + kAnswerTime);
    if (answer && answer->number == question.number) return answer;
    end();
    return std::nullopt;
  }

 private:
  bool isThere() const { return process_ > 0; }

  bool start(int serversLine) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return false;
    process_ = ::fork();
    if (process_ == 0) {
      ::close(serversLine);
      ::close(ends[0]);
      answerAll(ends[1]);
    }
    ::close(ends[1]);
    line_ = ends[0];
    return isThere();
  }

  void end() {
    if (line_ >= 0) ::close(std::exchange(line_, -1));
    if (!isThere()) return;
    ::kill(process_, SIGKILL);
    while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) continue;
    process_ = -1;
  }

  pid_t process_ = -1;
  int line_ = -1;
};

/// In the process between: hands on questions and whole answers, and ends when the program has.
[[noreturn]] void serve(int line) {
  {
    Reader reader;
    while (auto question = receive(line)) {
      auto answer = reader.answer(*question, line);
      if (!send(line, answer.value_or(Message{question->number, "n"}))) break;
    }
  }
  ::_exit(0);
}

/// What a parent may have left behind must not decide whether a reader's end is heard.
void resetSignals() {
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::signal(SIGCHLD, SIG_DFL);
  for (int number : {SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGTSTP, SIGPIPE}) ::signal(number, SIG_IGN);
}

/// Nobody but the program is to notice the process: it holds no descriptor that others wait for and no
/// folder, and leaves Ctrl-C to the program.
[[noreturn]] void becomeServer(int line) {
  constexpr int kMostInherited = 1024;
  const int nowhere = ::open("/dev/null", O_RDWR);
  for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere, stream);
  for (int inherited = STDERR_FILENO + 1; inherited < kMostInherited; ++inherited) {
    if (inherited != line) ::close(inherited);
  }
  if (::chdir("/") != 0) ::_exit(1);
  resetSignals();
  const rlimit noCores{0, 0};
  ::setrlimit(RLIMIT_CORE, &noCores);
  serve(line);
}

}  // namespace

void TagProcess::start() {
  int ends[2];
  if (descriptor >= 0 || ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return;
  for (int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  const pid_t process = ::fork();
  if (process == 0) {
    ::close(ends[0]);
    becomeServer(ends[1]);
  }
  ::close(ends[1]);
  if (process > 0) {
    descriptor = ends[0];
  } else {
    ::close(ends[0]);
  }
}

MaybeDictionary TagProcess::read(const std::string& path) {
  static uint64_t number = 0;
  std::lock_guard lock(talking);
  if (descriptor < 0) return fileTags(path);
  if (!send(descriptor, {++number, path})) return std::nullopt;
  auto answer = receive(descriptor, Clock::now() + 2 * kAnswerTime);
  // An answer that did not come whole and in time would be taken for one to a later question.
  if (!answer || answer->number != number) ::shutdown(descriptor, SHUT_RDWR);
  return answer && answer->number == number ? unpacked(answer->text) : std::nullopt;
}

}  // namespace umsctl
