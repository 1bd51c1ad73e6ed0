#include <gtest/gtest.h>

#include "Sandbox.h"

int main(int argc, char** argv) {
  umsservice::testing::enterPrivateMountNamespace();
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
