/// Timing of whole processes, ours against a peer's, in one run.
///
/// Each round runs ours, the peer and the peer once more, in turn; a ratio is the median over the rounds of
/// the two times of one round, and peer against peer beside it tells how much of it is noise. Our
/// calls on files may be run by themselves in each round: what the whole cannot go below.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace umsservice::bench {

/// One command line; the first word is the program.
using Command = std::vector<std::string>;

/// What one process took.
struct Cost {
  double seconds = 0;
  long peakKiB = 0;  ///< largest resident size
};

/// Runs a process to its end with its output thrown away; ends the program when it fails.
Cost runProcess(const Command& command);

struct Contest {
  std::string name;
  Command ours;
  Command theirs;
  std::function<void()> before;  ///< not timed, before each process
  int rounds = 9;
  double goal = 0;          ///< ours / theirs at most; 0 for none
  Command callsAlone = {};  ///< our calls on files by themselves; empty for none
};

/// Runs a contest and prints one line.
void compare(const Contest& contest);

}  // namespace umsservice::bench
