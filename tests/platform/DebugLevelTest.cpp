#include <plist/plist.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <limits>

#include "Sandbox.h"
#include "WrappedFileSystem.h"
#include "umsservice/Log.h"

namespace umsservice::testing {
namespace {

class PlistDebugLevel : public ::testing::Test {
 protected:
  /// The level that a file of those bytes gives.
  int32_t levelOf(const std::string& bytes) {
    sandbox.file("DEBUG.plist", bytes);
    return source->debugLevel();
  }

  /// An XML property list whose root is a dictionary of that body.
  static std::string xml(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>\n" +
           body + "\n</dict>\n</plist>\n";
  }
  static std::string xmlLevel(const std::string& value) { return xml("<key>DEBUG_LEVEL</key>" + value); }

  /// Takes the node over and puts it under "DEBUG_LEVEL" of a binary property list.
  static std::string binaryLevel(plist_t value) {
    plist_t root = plist_new_dict();
    plist_dict_set_item(root, "DEBUG_LEVEL", value);
    std::string bytes = binary(root);
    plist_free(root);
    return bytes;
  }
  static std::string binary(plist_t root) {
    char* memory = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &memory, &length);
    std::string bytes(memory, length);
    std::free(memory);
    EXPECT_TRUE(bytes.starts_with("bplist00"));
    return bytes;
  }

  Sandbox sandbox;
  std::shared_ptr<DebugLevelSource> source =
      plistDebugLevelSource(posixFileSystem(), sandbox.at("DEBUG.plist"));
};

TEST_F(PlistDebugLevel, IsTheNumberInAnXmlPropertyList) {
  EXPECT_EQ(levelOf(xmlLevel("<integer>6</integer>")), 6);
  EXPECT_EQ(levelOf(xmlLevel("<integer>0</integer>")), 0);
  EXPECT_EQ(levelOf(xml("<key>Other</key><string>7</string><key>DEBUG_LEVEL</key><integer>3</integer>")), 3);
  EXPECT_EQ(levelOf("<plist><dict><key>DEBUG_LEVEL</key><integer>5</integer></dict></plist>"), 5);
}

TEST_F(PlistDebugLevel, IsTheNumberInABinaryPropertyList) {
  EXPECT_EQ(levelOf(binaryLevel(plist_new_uint(6))), 6);
  EXPECT_EQ(levelOf(binaryLevel(plist_new_uint(0))), 0);
  EXPECT_EQ(levelOf(binaryLevel(plist_new_string("6"))), 6);
  EXPECT_EQ(levelOf(binaryLevel(plist_new_real(5.9))), 5);
  EXPECT_EQ(levelOf(binaryLevel(plist_new_bool(1))), 1);
}

TEST_F(PlistDebugLevel, MayBeWrittenAsText) {
  EXPECT_EQ(levelOf(xmlLevel("<string>6</string>")), 6);
  EXPECT_EQ(levelOf(xmlLevel("<string> 7 or so</string>")), 7);
  EXPECT_EQ(levelOf(xmlLevel("<string>-2</string>")), -2);
  EXPECT_EQ(levelOf(xmlLevel("<string>99999999999</string>")), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(levelOf(xmlLevel("<string>high</string>")), 0);
  EXPECT_EQ(levelOf(xmlLevel("<string></string>")), 0);
}

TEST_F(PlistDebugLevel, MayBeNegative) {
  EXPECT_EQ(levelOf(xmlLevel("<integer>-3</integer>")), -3);
  EXPECT_EQ(levelOf(binaryLevel(plist_new_uint(static_cast<uint64_t>(-3)))), -3);
}

TEST_F(PlistDebugLevel, IsCutTo32BitsWhenTheNumberIsWider) {
  EXPECT_EQ(levelOf(xmlLevel("<integer>4294967303</integer>")), 7);
  EXPECT_EQ(levelOf(xmlLevel("<real>1e300</real>")), std::numeric_limits<int32_t>::max());
}

TEST_F(PlistDebugLevel, IsZeroForAValueThatIsNoNumber) {
  for (const char* value : {"<array><integer>6</integer></array>", "<dict/>", "<data>Ng==</data>",
                            "<date>2006-06-06T06:06:06Z</date>"})
    EXPECT_EQ(levelOf(xmlLevel(value)), 0) << value;
}

TEST_F(PlistDebugLevel, IsZeroWithoutTheKeyOrWithoutADictionaryAtTheRoot) {
  EXPECT_EQ(levelOf(xml("")), 0);
  EXPECT_EQ(levelOf(xml("<key>debug_level</key><integer>6</integer>")), 0);
  EXPECT_EQ(levelOf(xml("<key>Inner</key><dict><key>DEBUG_LEVEL</key><integer>6</integer></dict>")), 0);
  EXPECT_EQ(levelOf("<plist><array><string>DEBUG_LEVEL</string><integer>6</integer></array></plist>"), 0);
  EXPECT_EQ(levelOf("<plist><integer>6</integer></plist>"), 0);
  plist_t array = plist_new_array();
  plist_array_append_item(array, plist_new_uint(6));
  EXPECT_EQ(levelOf(binary(array)), 0);
  plist_free(array);
}

TEST_F(PlistDebugLevel, IsZeroForAFileThatIsNoPropertyList) {
  for (const std::string& bytes :
       {std::string(), std::string("6"), std::string("DEBUG_LEVEL=6"), std::string("<plist>"),
        std::string("bplist00"), std::string("bplist00") + std::string(100, '\xff'), std::string(100000, '<'),
        std::string(1000, '\0'), std::string("<?xml"), std::string("<plist><dict><key>DEBUG_LEVEL</key>")})
    EXPECT_EQ(levelOf(bytes), 0) << bytes.substr(0, 60);
}

TEST_F(PlistDebugLevel, IsZeroForABinaryPropertyListThatBreaksOff) {
  std::string whole = binaryLevel(plist_new_uint(6));
  for (size_t length = 0; length < whole.size(); ++length)
    EXPECT_EQ(levelOf(whole.substr(0, length)), 0) << length;
}

TEST_F(PlistDebugLevel, SurvivesAnyDamagedByteOfABinaryPropertyList) {
  std::string whole = binaryLevel(plist_new_uint(6));
  int same = 0;
  for (size_t at = 0; at < whole.size(); ++at) {
    for (int damage : {0x01, 0x80, 0xff}) {
      std::string damaged = whole;
      damaged[at] = static_cast<char>(damaged[at] ^ damage);
      if (levelOf(damaged) == 6) ++same;
    }
  }
  EXPECT_LT(same, static_cast<int>(whole.size() * 3));
  EXPECT_EQ(levelOf(whole), 6);
}

TEST_F(PlistDebugLevel, SurvivesDeepNesting) {
  std::string open, closed;
  for (int i = 0; i < 20000; ++i) {
    open += "<array>";
    closed += "</array>";
  }
  EXPECT_EQ(levelOf(xmlLevel(open)), 0);
  EXPECT_EQ(levelOf(xmlLevel(open + closed)), 0);
}

TEST_F(PlistDebugLevel, IsZeroForAHugeFile) {
  EXPECT_EQ(levelOf(xmlLevel("<integer>6</integer>") + std::string(2 << 20, ' ')), 0);
  ASSERT_EQ(truncate(sandbox.at("DEBUG.plist").c_str(), off_t{1} << 40), 0);
  EXPECT_EQ(source->debugLevel(), 0);
}

TEST_F(PlistDebugLevel, IsZeroWithoutAReadableFile) {
  EXPECT_EQ(source->debugLevel(), 0);
  sandbox.folder("DEBUG.plist");
  EXPECT_EQ(source->debugLevel(), 0);
  ASSERT_EQ(rmdir(sandbox.at("DEBUG.plist").c_str()), 0);
  ASSERT_EQ(mkfifo(sandbox.at("DEBUG.plist").c_str(), 0666), 0);
  EXPECT_EQ(source->debugLevel(), 0);
}

TEST_F(PlistDebugLevel, IsZeroWhenReadingFails) {
  auto failing = std::make_shared<FaultyFileSystem>();
  auto level = plistDebugLevelSource(failing, sandbox.file("DEBUG.plist", xmlLevel("<integer>6</integer>")));
  EXPECT_EQ(level->debugLevel(), 6);
  failing->failAlways(FileCall::Read, "DEBUG.plist", EIO);
  EXPECT_EQ(level->debugLevel(), 0);
}

TEST_F(PlistDebugLevel, IsReadAgainEachTime) {
  EXPECT_EQ(source->debugLevel(), 0);
  EXPECT_EQ(levelOf(xmlLevel("<integer>1</integer>")), 1);
  EXPECT_EQ(levelOf(binaryLevel(plist_new_uint(7))), 7);
  ASSERT_EQ(unlink(sandbox.at("DEBUG.plist").c_str()), 0);
  EXPECT_EQ(source->debugLevel(), 0);
}

TEST(FixedDebugLevel, NeverChanges) {
  auto source = fixedDebugLevelSource(5);
  EXPECT_EQ(source->debugLevel(), 5);
  EXPECT_EQ(source->debugLevel(), 5);
  EXPECT_EQ(fixedDebugLevelSource(-1)->debugLevel(), -1);
}

}  // namespace
}  // namespace umsservice::testing
