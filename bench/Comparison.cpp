#include "Comparison.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace umsservice::bench {
namespace {

[[noreturn]] void execute(const Command& command) {
  int nowhere = ::open("/dev/null", O_WRONLY);
  ::dup2(nowhere, STDOUT_FILENO);
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  ::execvp(words[0], words.data());
  ::_exit(127);
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

Cost runProcess(const Command& command) {
  auto start = std::chrono::steady_clock::now();
  pid_t child = ::fork();
  if (child == 0) execute(command);
  int status = 0;
  rusage usage{};
  if (::wait4(child, &status, 0, &usage) < 0 || status != 0) {
    std::fprintf(stderr, "%s failed\n", command.front().c_str());
    std::exit(1);
  }
  std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  return {taken.count(), usage.ru_maxrss};
}

void compare(const Contest& contest) {
  std::vector<double> ratios, noise, callsAlone, ours, theirs;
  long ourPeak = 0;
  long theirPeak = 0;
  auto run = [&](const Command& command) {
    if (contest.before) contest.before();
    return runProcess(command);
  };
  for (int round = 0; round < contest.rounds; ++round) {
    Cost first = run(contest.ours);
    Cost second = run(contest.theirs);
    Cost third = run(contest.theirs);
    if (!contest.callsAlone.empty()) callsAlone.push_back(run(contest.callsAlone).seconds / second.seconds);
    ratios.push_back(first.seconds / second.seconds);
    noise.push_back(third.seconds / second.seconds);
    ours.push_back(first.seconds);
    theirs.push_back(second.seconds);
    ourPeak = std::max(ourPeak, first.peakKiB);
    theirPeak = std::max(theirPeak, second.peakKiB);
  }
  std::printf("%-46s ours %8.1f ms  theirs %8.1f ms  ours/theirs %.3f", contest.name.c_str(),
              median(ours) * 1000, median(theirs) * 1000, median(ratios));
  if (contest.goal > 0) std::printf(" (goal %.2f)", contest.goal);
  if (!callsAlone.empty()) std::printf("  calls on files alone %.3f", median(callsAlone));
  std::printf("  theirs/theirs %.3f  peak %ld / %ld KiB\n", median(noise), ourPeak, theirPeak);
  std::fflush(stdout);
}

}  // namespace umsservice::bench
