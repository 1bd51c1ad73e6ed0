#include "Interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

#include "ExitStatus.h"
#include "Output.h"
#include "Terminal.h"

namespace umsctl {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

// All that a signal handler may touch.
std::atomic<int> signalCount{0};
std::atomic<int> wakeDescriptor{-1};
static_assert(std::atomic<int>::is_always_lock_free);

int readDescriptor = -1;
struct sigaction before[std::size(kSignals)];
sigset_t maskBefore;

void wake() {
  const char byte = 0;
  // A full pipe is readable already.
  [[maybe_unused]] ssize_t written = ::write(wakeDescriptor, &byte, 1);
}

extern "C" void takeSignal(int number) {
  int numberBefore = errno;
  // A terminal that goes away is told twice, by the system and by the shell; nobody is impatient then.
  if (++signalCount > 1 && number != SIGHUP) ::_exit(static_cast<int>(ExitStatus::Cancelled));
  wake();
  errno = numberBefore;
}

void openPipe() {
  int ends[2];
  if (::pipe(ends) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  for (int end : ends) {
    ::fcntl(end, F_SETFD, FD_CLOEXEC);
    ::fcntl(end, F_SETFL, O_NONBLOCK);
  }
  readDescriptor = ends[0];
  wakeDescriptor = ends[1];
}

void takeSignals() {
  struct sigaction handling {};
  handling.sa_handler = takeSignal;
  handling.sa_flags = SA_RESTART;
  ::sigemptyset(&handling.sa_mask);
  for (size_t i = 0; i < std::size(kSignals); ++i) {
    ::sigaction(kSignals[i], nullptr, &before[i]);
    if (before[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &handling, nullptr);
  }
}

/// The calling thread and those that it makes leave the signals to the one that waits for them: it is never
/// in the middle of something when one arrives.
void leaveSignalsToOthers() {
  sigset_t signals;
  ::sigemptyset(&signals);
  for (int number : kSignals) ::sigaddset(&signals, number);
  ::pthread_sigmask(SIG_BLOCK, &signals, &maskBefore);
}

}  // namespace

Interrupt::Interrupt() {
  signalCount = 0;
  openPipe();
  waiter_ = std::thread([this] { waitForSignal(); });
  leaveSignalsToOthers();
  takeSignals();
}

Interrupt::~Interrupt() {
  ::pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
  for (size_t i = 0; i < std::size(kSignals); ++i) ::sigaction(kSignals[i], &before[i], nullptr);
  setAction(nullptr);
  isOver_ = true;
  wake();
  waiter_.join();
  ::close(readDescriptor);
  ::close(wakeDescriptor.exchange(-1));
}

bool Interrupt::happened() const {
  return signalCount > 0;
}

void Interrupt::happen() {
  int none = 0;
  if (signalCount.compare_exchange_strong(none, 1)) wake();
}

int Interrupt::descriptor() const {
  return readDescriptor;
}

std::function<void()> Interrupt::setAction(std::function<void()> action) {
  std::lock_guard lock(mutex_);
  auto former = std::exchange(action_, std::move(action));
  if (happened()) runAction();
  return former;
}

void Interrupt::restoreAction(std::function<void()> former) {
  std::lock_guard lock(mutex_);
  const bool isAnswered = happened() && !action_;
  action_ = isAnswered ? nullptr : std::move(former);
  if (happened()) runAction();
}

void Interrupt::settle() {
  std::lock_guard lock(mutex_);
  if (happened()) runAction();
}

void Interrupt::runAction() {
  if (auto action = std::exchange(action_, nullptr)) action();
}

void Interrupt::waitForSignal() {
  pollfd pipeEnd{readDescriptor, POLLIN, 0};
  while (::poll(&pipeEnd, 1, -1) < 0 && errno == EINTR) continue;
  settle();
  constexpr int kBetweenLooks = 50;                    // milliseconds
  while (!isOver_) ::poll(nullptr, 0, kBetweenLooks);  // the second signal needs a thread to arrive at
}

void answerInterrupt(const std::string& what) {
  printToError(std::string(canRedrawError() ? kEraseLine : "") + "umsctl: " + what +
               "; once more to stop at once\n");
}

}  // namespace umsctl
