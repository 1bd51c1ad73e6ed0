#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>
#include <thread>

#include "DebugLevelPath.h"
#include "Sandbox.h"
#include "umsservice/Environment.h"

namespace umsservice::testing {
namespace {

TEST(RunningSystem, HasEverythingThatIsRequiredAndNothingOptional) {
  Environment environment = Environment::forRunningSystem();
  EXPECT_EQ(environment.fileSystem, posixFileSystem());
  EXPECT_EQ(environment.notificationCenter, defaultNotificationCenter());
  EXPECT_NE(environment.logSink, nullptr);
  ASSERT_NE(environment.debugLevelSource, nullptr);
  EXPECT_EQ(environment.placementRules, hostPlacementRules());
  EXPECT_EQ(environment.profileInfo, nullptr);
  EXPECT_EQ(environment.mediaInfoFactory, nullptr);
  EXPECT_EQ(environment.itemObserver, nullptr);
}

TEST(DebugLevelPath, LiesBesideTheProgramOrAmongTheResourcesOfItsBundle) {
  EXPECT_EQ(debugLevelPath("/usr/bin"), "/usr/bin/DEBUG.plist");
  EXPECT_EQ(debugLevelPath("/Apps/Host.app/Contents/MacOS"), "/Apps/Host.app/Contents/Resources/DEBUG.plist");
  EXPECT_EQ(debugLevelPath("/Contents/MacOS/bin"), "/Contents/MacOS/bin/DEBUG.plist");
}

/// Everything that a body writes to standard error.
std::string standardErrorOf(const std::function<void()>& body) {
  Sandbox sandbox;
  std::string path = sandbox.at("stderr");
  int before = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 10);
  int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  EXPECT_EQ(dup2(file, STDERR_FILENO), STDERR_FILENO);
  close(file);
  body();
  dup2(before, STDERR_FILENO);
  close(before);
  return bytesOf(path);
}

TEST(StandardErrorLog, WritesEachLineWhole) {
  auto sink = standardErrorLogSink();
  EXPECT_EQ(standardErrorOf([&] {
              sink->write("[a.cpp:-[X y]-(1)] text");
              sink->write("");
              sink->write("100%d \xff");
            }),
            "[a.cpp:-[X y]-(1)] text\n\n100%d \xff\n");
}

TEST(StandardErrorLog, DoesNotMixTheLinesOfSeveralThreads) {
  auto sink = standardErrorLogSink();
  std::string written = standardErrorOf([&] {
    std::vector<std::thread> threads;
    for (char letter : {'a', 'b', 'c'}) {
      threads.emplace_back([&sink, letter] {
        for (int i = 0; i < 100; ++i) sink->write(std::string(200, letter));
      });
    }
    for (std::thread& thread : threads) thread.join();
  });
  std::istringstream lines(written);
  std::string line;
  int count = 0;
  while (std::getline(lines, line)) {
    ++count;
    EXPECT_EQ(line, std::string(200, line.empty() ? '?' : line.front()));
  }
  EXPECT_EQ(count, 300);
}

}  // namespace
}  // namespace umsservice::testing
