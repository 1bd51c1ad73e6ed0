/// Ctrl-C (also a request to terminate, and a terminal that goes away): the first one stops what runs in an
/// orderly way, the second ends the program at once, whatever it is waiting for.
///
/// The command line makes one for each command; see `Errand`. At most one exists at a time. A signal that was
/// ignored when the program started stays ignored.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace umsctl {

class Interrupt {
 public:
  Interrupt();
  /// Gives the signals back to the system.
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  bool happened() const;
  /// What a first interrupt would do; for a person who asks for the end in words. Nothing after a real one.
  void happen();
  /// Becomes readable with the first interrupt and stays so; nobody reads from it. For use with `poll`.
  int descriptor() const;
  /// What the first interrupt does; runs on a thread of its own, or at once where it has come already. Waits
  /// for one that is under way, and gives the action that was there before.
  std::function<void()> setAction(std::function<void()> action);
  /// The action that was there before counts again, unless an interrupt has been answered meanwhile.
  void restoreAction(std::function<void()> former);
  /// Returns once the action of an interrupt that has happened is done.
  void settle();

 private:
  void waitForSignal();
  void runAction();

  std::mutex mutex_;
  std::function<void()> action_;
  std::atomic<bool> isOver_{false};
  std::thread waiter_;
};

/// What an interrupt does for as long as this lives, in place of what it did before.
class InterruptAction {
 public:
  InterruptAction(Interrupt& interrupt, std::function<void()> action)
      : interrupt_(interrupt), before_(interrupt.setAction(std::move(action))) {}
  ~InterruptAction() { interrupt_.restoreAction(std::move(before_)); }
  InterruptAction(const InterruptAction&) = delete;
  InterruptAction& operator=(const InterruptAction&) = delete;

 private:
  Interrupt& interrupt_;
  std::function<void()> before_;
};

/// Tells the person that an interrupt has been heard. Straight to the terminal: the display may be waiting
/// for a reader that has stopped reading.
void answerInterrupt(const std::string& what);

}  // namespace umsctl
