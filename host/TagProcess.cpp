#include "TagProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <optional>

#include "FileTags.h"

namespace umsctl {
namespace {

using umsservice::Data;
using umsservice::Dictionary;
using umsservice::MaybeDictionary;
using umsservice::Value;

/// Seconds after which the reader of a file is given up.
constexpr unsigned kPatience = 10;
/// More than any path and any cover picture.
constexpr uint64_t kLargestMessage = 64u << 20;

/// The program's end of the line to the process; -1 where there is none.
int descriptor = -1;
std::mutex talking;

bool writeAll(int to, const void* bytes, size_t size) {
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

bool readAll(int from, void* bytes, size_t size) {
  char* at = static_cast<char*>(bytes);
  while (size > 0) {
    ssize_t length = ::read(from, at, size);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return false;
    at += length;
    size -= static_cast<size_t>(length);
  }
  return true;
}

struct Message {
  uint64_t number = 0;  ///< of the question that it is or answers; 0 where a reader died over one
  std::string text;
};

bool send(int to, const Message& message) {
  const uint64_t head[] = {message.number, message.text.size()};
  return writeAll(to, head, sizeof head) && writeAll(to, message.text.data(), message.text.size());
}

std::optional<Message> receive(int from) {
  uint64_t head[2] = {};
  if (!readAll(from, head, sizeof head) || head[1] > kLargestMessage) return std::nullopt;
  Message message{head[0], std::string(static_cast<size_t>(head[1]), '\0')};
  if (!readAll(from, message.text.data(), message.text.size())) return std::nullopt;
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
    ::alarm(kPatience);  // ends the process
    Message answer{question->number, packed(fileTags(question->text))};
    ::alarm(0);
    if (!send(line, answer)) break;
  }
  ::_exit(0);
}

/// In the process that starts another reader wherever one has died. Ends when the program has.
[[noreturn]] void serve(int line) {
  for (;;) {
    const pid_t reader = ::fork();
    if (reader == 0) answerAll(line);
    if (reader < 0) ::_exit(1);
    int state = 0;
    while (::waitpid(reader, &state, 0) < 0 && errno == EINTR) continue;
    if (WIFEXITED(state) && WEXITSTATUS(state) == 0) ::_exit(0);
    if (!send(line, {0, "n"})) ::_exit(0);
  }
}

/// Nobody but the program is to notice the process: it holds no stream that others wait for and no folder,
/// and leaves Ctrl-C to the program.
[[noreturn]] void becomeServer(int line) {
  const int nowhere = ::open("/dev/null", O_RDWR);
  for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere, stream);
  if (::chdir("/") != 0) ::_exit(1);
  for (int number : {SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGTSTP, SIGPIPE}) ::signal(number, SIG_IGN);
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
  auto answer = receive(descriptor);
  // One to an earlier question is late: its reader was taken for dead.
  while (answer && answer->number != 0 && answer->number != number) answer = receive(descriptor);
  return answer ? unpacked(answer->text) : std::nullopt;
}

}  // namespace umsctl
