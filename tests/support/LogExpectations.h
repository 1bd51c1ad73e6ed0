/// Checks of single log lines: the exact words, the method that writes them, and the lowest debug level that
/// shows them.
#pragma once

#include <algorithm>
#include <regex>

#include "TestDevice.h"

namespace umsservice::testing {

/// A text with the sandbox's path as "$" and addresses as "<address>".
inline std::string plain(const TestSurroundings& surroundings, std::string text) {
  const std::string& path = surroundings.sandbox.path();
  for (size_t at = text.find(path); at != std::string::npos; at = text.find(path, at)) {
    text.replace(at, path.size(), "$");
  }
  static const std::regex address("0x[0-9a-f]{9,}");
  return std::regex_replace(text, address, "<address>");
}

/// Every log line as "method message", plain.
inline std::vector<std::string> plainLines(const TestSurroundings& surroundings) {
  std::vector<std::string> lines = surroundings.log->messages();
  for (std::string& line : lines) line = plain(surroundings, line);
  return lines;
}

/// The messages that one method wrote, in order.
inline std::vector<std::string> linesOf(const TestSurroundings& surroundings, const std::string& method) {
  std::vector<std::string> messages;
  for (const std::string& line : plainLines(surroundings)) {
    if (line.starts_with(method + " ")) messages.push_back(line.substr(method.size() + 1));
  }
  return messages;
}

/// Runs the action at the debug level `level`, where the line must be written once, and one below, where it
/// must not be written. The action must do the same both times.
template <typename Action>
void expectLine(const TestSurroundings& surroundings, int level, const std::string& method,
                const std::string& message, Action action) {
  const std::pair<int, std::ptrdiff_t> expectations[] = {{level, 1}, {level - 1, 0}};
  for (auto [debugLevel, times] : expectations) {
    surroundings.level->level = debugLevel;
    surroundings.log->clear();
    action();
    std::vector<std::string> lines = linesOf(surroundings, method);
    std::string all;
    for (const std::string& line : plainLines(surroundings)) all += line + "\n";
    EXPECT_EQ(std::count(lines.begin(), lines.end(), message), times)
        << message << "\nat level " << debugLevel << " among\n"
        << all;
  }
  surroundings.level->level = 7;
}

/// How log lines show an error of the file system.
inline std::string errorText(int number, FileError::Action action, const std::string& path) {
  return FileError{number, action, path}.description();
}

}  // namespace umsservice::testing
