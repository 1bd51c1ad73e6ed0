/// Texts across the two worlds: whatever a device calls its files, a host can find them again.
#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class Texts : public HostTest {
 protected:
  /// The one file on the internal memory, as a listing names it.
  NSString* listedName() { return [[service fileLists:string(internal)] lastObject]; }

  UMSService* const service = makeDevice();
};

TEST_F(Texts, AreUtf8ForEveryCharacter) {
  const std::string name = "ü 東京 \U0001F3B5 \xEF\xBB\xBF.mp3";
  sandbox.file("internal/" + name, "x");
  EXPECT_EQ(text(listedName()), name);
  EXPECT_EQ([service fileSizeAtDevice:[string(internal + "/") stringByAppendingString:listedName()]], 1u);
}

TEST_F(Texts, OfOtherEncodingsComeBackAsTheBytesTheyWere) {
  const std::vector<std::string> names = {
      "caf\xE9.mp3",
      "\xFF\xFE",
      "\xC0\xAF",
      "\xED\xA0\x80",
      "cut \xE6\x9D",
      "\xEE\xBE\x80 itself",
      "\xEF\xB7\x98\xEF\xB7\xA9 too",
      "\xF5\x80\x80\x80",
      "\x80\xBF\xC3",
  };
  for (const std::string& name : names) {
    const std::string path = sandbox.file("internal/" + name, "x");
    NSString* listed = listedName();
    ASSERT_NE(listed, nil);
    EXPECT_NE([listed UTF8String], nullptr) << "it can be shown";
    NSString* full = [string(internal + "/") stringByAppendingString:listed];
    unsigned int error = 77;
    EXPECT_TRUE([service deletefileAtDevice:full error:&error]) << text(listed);
    EXPECT_FALSE(exists(path));
  }
}

TEST_F(Texts, OfTheHostKeepEveryCharacter) {
  for (const unichar character : {u'\xEF80', u'\xEF81', u'\xEFFF', u'\xE000', u'\xFFFD'}) {
    const unichar units[] = {'a', character, 'b'};
    NSString* name = [NSString stringWithCharacters:units length:3];
    EXPECT_TRUE([[service convertAvailableFileName:name] isEqualToString:name]) << character;
    NSString* path = [string(internal + "/") stringByAppendingString:name];
    EXPECT_TRUE([service writeFileData:path data:[NSData data]]);
    EXPECT_TRUE(exists(text(path))) << "under its name in UTF-8";
  }
}

TEST_F(Texts, OfOtherEncodingsCanBeCopied) {
  sandbox.file("internal/caf\xE9.mp3", "bytes");
  NSDictionary* listed = [[service subpathsAtDisk:0 diskIndex:0 skipNoMedia:NO] lastObject];
  EXPECT_TRUE([service copyContentsDeviceToMac:1
                                      contents:[NSArray arrayWithObject:listed]
                               destinationPath:string(sandbox.at("mac"))
                                     mediaType:1
                                  playlistName:nil]);
  ASSERT_TRUE([ear waitFor:kItemResult count:1]);
  EXPECT_TRUE(eventually([&] { return bytesOf(sandbox.at("mac/caf\xE9.mp3")) == "bytes"; }));
}

TEST_F(Texts, WithHalfASurrogatePairNameNoFile) {
  NSString* odd = [string("a\U0001F3B5") substringToIndex:2];
  ASSERT_EQ([odd length], 2u);
  EXPECT_EQ([service fileSizeAtDevice:odd], 0u);
  EXPECT_EQ(text([service convertAvailableFileName:odd]), "a\uFFFD");
}

TEST_F(Texts, WithANullCharacterAreNotCutThere) {
  sandbox.file("internal/a", "x");
  const unichar cut[] = {'/', 'a', 0, 'b'};
  NSString* tail = [NSString stringWithCharacters:cut length:4];
  EXPECT_FALSE([service deletefileAtDevice:[string(internal) stringByAppendingString:tail] error:NULL]);
  EXPECT_TRUE(exists(internal + "/a"));
}

TEST_F(Texts, ThatAreNoTextsCountAsMissing) {
  id number = [NSNumber numberWithInt:1];
  EXPECT_EQ([service fileSizeAtDevice:number], 0u);
  [service setLocationID:number];
  EXPECT_EQ([service locationID], nil);
}

}  // namespace
}  // namespace umsplugin::testing
