#include "LogExpectations.h"

namespace umsservice::testing {
namespace {

class Lookups : public DeviceTest {
 protected:
  MaybeString play(const MaybeDictionary& file) { return service->copyContentToPlay(1, 2, 3, file); }
  bool isThere(const MaybeDictionary& file, Value* node = nullptr) {
    return service->isExistContentFromMac(1, 2, 3, file, node);
  }
};

TEST_F(Lookups, AnswerFromTheDescriptionAlone) {
  const Dictionary file{{key::kFilePath, "/no/such/file.mp3"}};
  EXPECT_EQ(play(file), "/no/such/file.mp3");
  EXPECT_TRUE(isThere(file));
  EXPECT_EQ(files.count(FileCall::Attributes) + files.count(FileCall::LinkAttributes), 0u);
}

TEST_F(Lookups, KnowNothingWithoutADescription) {
  EXPECT_FALSE(play(std::nullopt));
  EXPECT_FALSE(isThere(std::nullopt));
  EXPECT_FALSE(log.has("Media File Path Value is nil"));
}

TEST_F(Lookups, SayWhenADescriptionHasNoPath) {
  const Dictionary noPath{{key::kFileName, "a.mp3"}};
  expectLine(surroundings, 1, "-[UMSService copyContentToPlay:diskIndex:mediaType:fileInformation:]",
             "Media File Path Value is nil", [&] { EXPECT_FALSE(play(noPath)); });
  expectLine(surroundings, 1,
             "-[UMSService isExistContentFromMac:diskIndex:mediaType:fileInformation:returnNode:]",
             "Media File Path Value is nil", [&] { EXPECT_FALSE(isThere(noPath)); });
}

TEST_F(Lookups, NeverWriteTheNode) {
  Value node = "as it was";
  EXPECT_TRUE(isThere(Dictionary{{key::kFilePath, "/x"}}, &node));
  EXPECT_FALSE(isThere(Dictionary(), &node));
  EXPECT_EQ(node.string(), "as it was");
}

}  // namespace
}  // namespace umsservice::testing
