#include "LogExpectations.h"

namespace umsservice::testing {
namespace {

class FileNames : public DeviceTest {
 protected:
  std::string name(const std::string& given) {
    return service->convertAvailableFileName(given).value_or("nil");
  }
  std::string path(const std::string& given) {
    return service->convertAvailableString(given).value_or("nil");
  }
};

TEST_F(FileNames, TurnEachIllegalCharacterIntoOneUnderscore) {
  EXPECT_EQ(name("a:b*c?.mp3"), "a_b_c_.mp3");
  EXPECT_EQ(name("a/:*?\"\\<>|b"), "a_________b");
  EXPECT_EQ(name("one\r\ntwo"), "one__two");
}

TEST_F(FileNames, KeepEveryOtherByte) {
  const std::string illegal = "/:*?\"\\<>|\r\n";
  for (int byte = 1; byte < 256; ++byte) {
    const std::string given = std::string("x") + static_cast<char>(byte) + "x";
    const bool isIllegal = illegal.find(static_cast<char>(byte)) != std::string::npos;
    EXPECT_EQ(name(given), isIllegal ? "x_x" : given) << byte;
  }
}

TEST_F(FileNames, LoseBlanksAtBothEndsOnly) {
  EXPECT_EQ(name("  two on each side  "), "two on each side");
  EXPECT_EQ(name("\t tab and blank \t"), "tab and blank");
  EXPECT_EQ(name("\u00a0\u3000wide\u2003"), "wide");
  EXPECT_EQ(name("   "), "");
  EXPECT_EQ(name(""), "");
  EXPECT_EQ(name("\n a \r"), "_ a _");
}

TEST_F(FileNames, LoseTheFirstSchemeInAnyLetterCase) {
  EXPECT_EQ(name("http://x/y.mp3"), "x_y.mp3");
  EXPECT_EQ(name("HtTp://x/y.mp3"), "x_y.mp3");
  EXPECT_EQ(name("see http://x"), "see x");
  EXPECT_EQ(name("http://a http://b"), "a http___b");
  EXPECT_EQ(name("https://x"), "https___x");
  EXPECT_EQ(name(" http:// "), "");
}

TEST_F(FileNames, AreNeitherShortenedNorNormalised) {
  const std::string longName(300, 'n');
  EXPECT_EQ(name(longName), longName);
  EXPECT_EQ(name("e\u0301.mp3"), "e\u0301.mp3");
  EXPECT_EQ(name(".."), "..");
}

TEST_F(FileNames, OfAWholePathAreCleanedOneByOne) {
  EXPECT_EQ(path("/Volumes/CARD/My:Music/"), "/Volumes/CARD/My_Music");
  EXPECT_EQ(path("Music/a"), "/Music/a");
  EXPECT_EQ(path("//a///b//"), "/a/b");
  EXPECT_EQ(path(""), "");
  EXPECT_EQ(path("/"), "");
  EXPECT_EQ(path("/ a /b*"), "/a/b_");
}

TEST_F(FileNames, StayNilWhenNil) {
  EXPECT_FALSE(service->convertAvailableFileName(std::nullopt));
  EXPECT_FALSE(service->convertAvailableString(std::nullopt));
}

TEST_F(FileNames, AreLoggedWithWhatBecameOfThem) {
  expectLine(surroundings, 6, "-[UMSService convertAvailableFileName:]", "Convert  a:b to a_b",
             [&] { name(" a:b"); });
  expectLine(surroundings, 6, "-[UMSService convertAvailableString:]", "Convert x/y:z to /x/y_z",
             [&] { path("x/y:z"); });
}

}  // namespace
}  // namespace umsservice::testing
