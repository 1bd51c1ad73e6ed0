/// The fixture of umsctl's tests: a device of two folders, and media on a computer.
#pragma once

#include <gtest/gtest.h>

#include "Program.h"
#include "Sandbox.h"

namespace umsservice::testing {

class HostTest : public ::testing::Test {
 protected:
  Sandbox sandbox;
  std::string phone = sandbox.folder("phone");
  std::string card = sandbox.folder("card");

  /// Full path of one of the media files that belong to the tests.
  static std::string media(const std::string& name) { return TEST_DATA "/" + name; }

  /// A file that takes seconds to copy and no time to make; empty where there is no room for such a copy.
  std::string hugeFile(const std::string& relative) const;

  /// "push --internal PHONE" and what follows.
  std::vector<std::string> pushing(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{"push", "--internal", phone};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
};

}  // namespace umsservice::testing
