/// umsctl as a person runs it: through pipes, or at a terminal of its own.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace umsservice::testing {

/// Columns in which a progress line shortens no name.
constexpr unsigned short kRoomy = 200;

/// How and where a program is started.
struct Setting {
  bool atTerminal = false;      ///< otherwise standard output and error are two pipes
  unsigned short columns = 80;  ///< of the terminal
  bool withoutRootPowers = false;
  bool smallOutputPipe = false;  ///< holds one page, so that a reader who stops is soon felt
  std::map<std::string, std::string> environment{};  ///< besides the test's own; over TERM and LC_ALL
  std::vector<int> ignoredSignals{};                 ///< as a parent may leave them behind
  std::string folder;                                ///< working folder; empty for the test's own
  std::string program = TEST_UMSCTL;
  std::string input;       ///< typed ahead on standard input, which then ends; pipes only
  bool openInput = false;  ///< standard input does not end, as that of a program that goes on; pipes only
  std::string outputFile;  ///< standard output goes here instead
};

/// What a program left behind. A terminal shows both streams, as `output`.
struct Ended {
  int status = -1;  ///< as a shell sees it: 128 more than the signal for a program that was killed
  std::string output;
  std::string error;

  /// What was said on standard error, without the numbers and advices of failed items.
  std::string causes() const;
  /// What is left on a terminal's screen: lines that were drawn and erased again, as a slow machine shows
  /// them while it looks around, are gone.
  std::string screen() const;
};

/// A program while it runs. Waits last a minute at most; then the program is killed and the test fails.
class RunningProgram {
 public:
  RunningProgram(const std::vector<std::string>& arguments, const Setting& setting = {});
  ~RunningProgram();
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  /// Waits until the text has appeared so many times; reads that stream only.
  void waitForOutput(const std::string& text, size_t times = 1) {
    waitFor(text, times, output_, ended_.output);
  }
  void waitForError(const std::string& text) { waitFor(text, 1, error_, ended_.error); }
  /// Types at the terminal; "\x03" is Ctrl-C.
  void type(const std::string& text);
  /// Makes the terminal's window so many columns wide; the program is told as by any terminal.
  void resize(unsigned short columns);
  void sendSignal(int number);
  pid_t process() const { return process_; }
  /// From here on the program runs as on a much slower machine, until its end is waited for.
  void slowDown();
  /// Leaves no room for another byte in the pipe of standard output.
  void fillOutput();
  /// Takes the reader of standard output away.
  void closeOutput();
  /// Waits for the end without reading anything.
  int waitForExit();
  /// Reads everything to the end.
  Ended wait();

 private:
  void startAtTerminal(const Setting& setting, char* const* arguments);
  void startWithPipes(const Setting& setting, char* const* arguments);
  void waitFor(const std::string& text, size_t times, int& descriptor, std::string& seen);
  /// False at the end of the stream.
  bool readSome(int& descriptor, std::string& seen);
  void giveUp(const std::string& reason);

  void endSlowness();

  pid_t process_ = -1;
  int output_ = -1;  ///< the terminal's own side where there is one
  int error_ = -1;
  int input_ = -1;  ///< kept open where that is wished for
  std::atomic<bool> isSlow_{false};
  std::thread slowness_;
  bool hasExited_ = false;
  Ended ended_;
};

/// Runs umsctl to its end.
Ended umsctl(const std::vector<std::string>& arguments, const Setting& setting = {});

/// Lines of a text, without their ends.
std::vector<std::string> linesOf(const std::string& text);

}  // namespace umsservice::testing
