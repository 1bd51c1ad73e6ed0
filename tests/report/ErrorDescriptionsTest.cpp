#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "umsservice/ErrorDescriptions.h"

namespace umsservice::testing {
namespace {

/// The names of the enumerators, from the header in which hosts look them up.
std::set<std::string> namesInHeader() {
  std::ifstream header(PUBLIC_HEADERS "/ErrorNumbers.h");
  std::set<std::string> names;
  for (std::string line; std::getline(header, line);) {
    std::istringstream words(line);
    std::string name, equals;
    words >> name >> equals;
    if (name.starts_with("k") && equals == "=") names.insert(name);
  }
  return names;
}

TEST(ErrorDescriptions, HaveEveryNumberOnceInOrder) {
  std::set<std::string> names;
  uint32_t last = 0;
  for (const ErrorDescription& one : errorDescriptions()) {
    EXPECT_TRUE(one.number > last || one.number == kErrorNone) << one.name;
    EXPECT_FALSE(one.text.empty()) << one.name;
    last = one.number;
    names.insert(std::string(one.name));
  }
  EXPECT_EQ(names, namesInHeader());
  EXPECT_EQ(names.size(), errorDescriptions().size());
}

TEST(ErrorDescriptions, AreFoundByTheNumberOfANotification) {
  EXPECT_EQ(errorNumberName(0x10000001), "kItemTransferred");
  EXPECT_EQ(errorNumberText(0x1000000a), "the volume is full");
  EXPECT_EQ(errorNumberName(0), "kErrorNone");
  EXPECT_EQ(errorNumberText(0x23000005), "the item to copy is not described completely");
}

TEST(ErrorDescriptions, ShowANumberThatNobodyKnowsByItsDigits) {
  EXPECT_EQ(errorNumberName(0x2300000b), "0x2300000b");
  EXPECT_EQ(errorNumberText(5), "unknown error 0x00000005");
}

}  // namespace
}  // namespace umsservice::testing
