#include <string>

#include "CaseFolding.h"

namespace umsservice::testing {
namespace {

TEST(CaseFolding, FindsNamesEqualThatDifferOnlyInLetterCase) {
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {"mp3", "MP3"},
      {".NoMedia", ".nomedia"},
      {"VOLUMES", "volumes"},
      {"\u00c4rger", "\u00e4RGER"},
      {"\u0416\u0423\u041a", "\u0436\u0443\u043a"},
      {"\u03a3\u0391\u03a3", "\u03c3\u03b1\u03c2"},
      {"stra\u00dfe", "STRASSE"},
      {"\u212a", "k"},
      {"caf\u00e9", "CAFE\u0301"},
      {"\u65e5\u672c", "\u65e5\u672c"},
      {"\U00010400", "\U00010428"},
      {std::string("a\0B", 3), std::string("A\0b", 3)},
      {"\u00c4\n[]", "\u00e4\n[]"},
  };
  for (const auto& [left, right] : rows) {
    EXPECT_TRUE(equalIgnoringCase(left, right)) << left << " and " << right;
    EXPECT_TRUE(equalIgnoringCase(right, left)) << right << " and " << left;
  }
}

TEST(CaseFolding, TellsDifferentNamesApart) {
  const std::pair<std::string, std::string> rows[] = {
      {"", "a"},
      {"", "\u00e4"},
      {"mp3", "mp4"},
      {"mp3", "mp3 "},
      {"nomedia", ".nomedia"},
      {"a", "\u00e4"},
      {"@", "`"},
      {"[", "{"},
      {"e", "e\u0301"},
      {std::string("a\0b", 3), std::string("a\0c", 3)},
      {std::string("a\0", 2), "a"},
      {"\u0436", "\u0448"},
  };
  for (const auto& [left, right] : rows) {
    EXPECT_FALSE(equalIgnoringCase(left, right)) << left << " and " << right;
    EXPECT_FALSE(equalIgnoringCase(right, left)) << right << " and " << left;
  }
}

TEST(CaseFolding, ComparesTextThatIsNotUtf8ByteByByteWithAsciiLettersFolded) {
  EXPECT_TRUE(equalIgnoringCase("ABC\xff", "abc\xff"));
  EXPECT_FALSE(equalIgnoringCase("abc\xc4", "abc\xe4"));
  EXPECT_FALSE(equalIgnoringCase("\xff", "\u00ff"));
  EXPECT_TRUE(equalIgnoringCase("\xc3", "\xc3"));
  EXPECT_FALSE(equalIgnoringCase("\xed\xa0\x80", "\xed\xa0\x81"));
}

TEST(CaseFolding, FindsTextAnywhereInAnotherByTheSameComparison) {
  EXPECT_TRUE(containsIgnoringCase("/card/Music/a", "/MUSIC/"));
  EXPECT_TRUE(containsIgnoringCase("/card/M\u00dcSIK/a", "m\u00fcsik"));
  EXPECT_TRUE(containsIgnoringCase("/card/MU\u0308SIK/a", "m\u00fcsik"));
  EXPECT_TRUE(containsIgnoringCase("abc\xff", "ABC"));
  EXPECT_TRUE(containsIgnoringCase("a", "a"));
  EXPECT_FALSE(containsIgnoringCase("/card/Musik", "m\u00fcsik"));
  EXPECT_FALSE(containsIgnoringCase("a", "ab"));
  EXPECT_FALSE(containsIgnoringCase("\u00c4\xff", "\u00e4"));
  EXPECT_FALSE(containsIgnoringCase("", "a"));
  EXPECT_FALSE(containsIgnoringCase("a", ""));
  EXPECT_FALSE(containsIgnoringCase("", ""));
}

TEST(CaseFolding, FindsTextWithoutRegardToAsciiLetterCase) {
  constexpr size_t kNowhere = std::string_view::npos;
  EXPECT_EQ(findIgnoringAsciiCase("xHTTP://y", "http://"), 1u);
  EXPECT_EQ(findIgnoringAsciiCase("http://http://", "HTTP://"), 0u);
  EXPECT_EQ(findIgnoringAsciiCase("/card/Music/a", "/MUSIC/"), 5u);
  EXPECT_EQ(findIgnoringAsciiCase("abc", "bc"), 1u);
  EXPECT_EQ(findIgnoringAsciiCase("abc", "abcd"), kNowhere);
  EXPECT_EQ(findIgnoringAsciiCase("", "a"), kNowhere);
  EXPECT_EQ(findIgnoringAsciiCase("\u00c4", "\u00e4"), kNowhere);
  EXPECT_EQ(findIgnoringAsciiCase("abc", ""), 0u);
  EXPECT_EQ(findIgnoringAsciiCase("", ""), 0u);
}

}  // namespace
}  // namespace umsservice::testing
