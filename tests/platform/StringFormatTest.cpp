#include <cerrno>

#include "StringFormat.h"

namespace umsservice::testing {
namespace {

TEST(StringFormat, LeavesTextWithoutConversionsAlone) {
  EXPECT_EQ(stringWithFormat("", {}), "");
  EXPECT_EQ(stringWithFormat("Copy File : x  to  y", {}), "Copy File : x  to  y");
  EXPECT_EQ(stringWithFormat("unused", {"argument", 7}), "unused");
  EXPECT_EQ(stringWithFormat(std::string_view("a\0b", 3), {}), std::string("a\0b", 3));
}

TEST(StringFormat, PutsTextInPlaceOfObjectsAndCStrings) {
  EXPECT_EQ(stringWithFormat("Copy File : %@  to  %@", {"/a", std::string("/b c")}),
            "Copy File : /a  to  /b c");
  EXPECT_EQ(stringWithFormat("[%s:%s-(%d)] %@", {"a.cpp", "-[X y:]", 12, "text"}),
            "[a.cpp:-[X y:]-(12)] text");
  EXPECT_EQ(stringWithFormat("%@", {MaybeString("text")}), "text");
  EXPECT_EQ(stringWithFormat("<%@>", {""}), "<>");
}

TEST(StringFormat, DoesNotReadConversionsInsideItsArguments) {
  EXPECT_EQ(stringWithFormat("%@ %@", {"%d %@ %s", "100%"}), "%d %@ %s 100%");
}

TEST(StringFormat, KeepsEveryByteOfAnArgument) {
  std::string odd("a\0b\xff\n", 5);
  EXPECT_EQ(stringWithFormat("<%@>", {odd}), "<" + odd + ">");
}

TEST(StringFormat, ShowsNilAsNullInParentheses) {
  const char* noText = nullptr;
  Value nil;
  EXPECT_EQ(stringWithFormat("%@ %s %@ %@ %@", {nullptr, noText, MaybeString(), nil, nullptr}),
            "(null) (null) (null) (null) (null)");
}

TEST(StringFormat, DescribesValuesAndErrors) {
  Value number(int64_t{-5});
  Value list(Array{1});
  FileError error{ENOSPC, FileError::Action::Writing, "/card/a.mp3"};
  EXPECT_EQ(stringWithFormat("%@ %@", {number, list}), "-5 (\n    1\n)");
  EXPECT_EQ(stringWithFormat("Delete file is Failed. error = %@", {error}),
            "Delete file is Failed. error = " + error.description());
}

TEST(StringFormat, PrintsNumbersWithFlagsAndWidths) {
  EXPECT_EQ(stringWithFormat("%d %u %x", {-7, 7u, 255}), "-7 7 ff");
  EXPECT_EQ(stringWithFormat("0x%08x", {0x1a2b}), "0x00001a2b");
  EXPECT_EQ(stringWithFormat("[%5d] [%-5d] [%05d] [%+d]", {42, 42, 42, 42}), "[   42] [42   ] [00042] [+42]");
  EXPECT_EQ(stringWithFormat("%d %d", {true, uint8_t{200}}), "1 200");
  EXPECT_EQ(stringWithFormat("%@ %@ %@", {-7, 7u, uint64_t{18446744073709551615u}}),
            "-7 7 18446744073709551615");
}

TEST(StringFormat, PrintsTheLow32BitsOf64BitNumbers) {
  uint64_t size = 0x1234567890abcdef;
  EXPECT_EQ(stringWithFormat("data Size = 0x%08x", {size}), "data Size = 0x90abcdef");
  EXPECT_EQ(stringWithFormat("%u", {uint64_t{0x100000005}}), "5");
  EXPECT_EQ(stringWithFormat("%d", {int64_t{0xffffffff}}), "-1");
  EXPECT_EQ(stringWithFormat("%d", {int64_t{-5000000000}}), "-705032704");
  EXPECT_EQ(stringWithFormat("%u", {-1}), "4294967295");
  EXPECT_EQ(stringWithFormat("%x", {int64_t{-1}}), "ffffffff");
}

TEST(StringFormat, PrintsPointersInHexadecimalAndNilAsZero) {
  const void* pointer = reinterpret_cast<const void*>(uintptr_t{0xdeadbeef});
  const void* none = nullptr;
  EXPECT_EQ(stringWithFormat("context = %p", {pointer}), "context = 0xdeadbeef");
  EXPECT_EQ(stringWithFormat("%p %p %p", {none, nullptr, Value()}), "0x0 0x0 0x0");
  EXPECT_EQ(stringWithFormat("%@ %@", {pointer, none}), "0xdeadbeef (null)");
}

TEST(StringFormat, ShowsThatAnObjectIsThereWhenItsPointerIsAskedFor) {
  Value value(7);
  std::string text = "text";
  for (const std::string& words : {stringWithFormat("%p", {value}), stringWithFormat("%p", {text})}) {
    EXPECT_TRUE(words.starts_with("0x")) << words;
    EXPECT_NE(words, "0x0");
  }
}

TEST(StringFormat, PrintsOnePercentSignForTwoAndTakesNoArgument) {
  EXPECT_EQ(stringWithFormat("100%% of %@", {"x"}), "100% of x");
  EXPECT_EQ(stringWithFormat("%%@ %5%", {"x"}), "%@ %");
}

TEST(StringFormat, PrintsNothingForConversionsWithoutAnArgument) {
  EXPECT_EQ(stringWithFormat("<%@> <%d> <%s> <%p>", {}), "<> <> <> <>");
  EXPECT_EQ(stringWithFormat("%@ and %@", {"one"}), "one and ");
}

TEST(StringFormat, SurvivesFormatsThatMakeNoSense) {
  EXPECT_EQ(stringWithFormat("%", {}), "");
  EXPECT_EQ(stringWithFormat("100%", {7}), "100");
  EXPECT_EQ(stringWithFormat("a%-", {7}), "a");
  EXPECT_EQ(stringWithFormat("<%q> %@", {7, "next"}), "<> next");
  EXPECT_EQ(stringWithFormat("<%n>", {7}), "<>");
  EXPECT_EQ(stringWithFormat("%d", {"text"}), "0");
  EXPECT_EQ(stringWithFormat("%d", {Value(5)}), "0");
  EXPECT_EQ(stringWithFormat("%@", {false}), "0");
}

TEST(StringFormat, BoundsTheWidthThatAFormatMayAskFor) {
  for (const char* format : {"%999d", "%99999999d", "%0999999999999999999999x", "%-99999999u"}) {
    std::string text = stringWithFormat(format, {7});
    EXPECT_LT(text.size(), 100u) << format;
    EXPECT_FALSE(text.empty()) << format;
  }
}

}  // namespace
}  // namespace umsservice::testing
