#include <cerrno>

#include "MediaRunTest.h"
#include "ScriptedTags.h"

namespace umsservice::testing {
namespace {

class MediaCopyTags : public MediaRunTest {
 protected:
  MediaCopyTags() {
    auto reader = std::make_shared<ScriptedTags>([this](const std::string& path) { return tags[path]; });
    reader->knows = [this](const std::string& path) {
      asked.push_back(path);
      return tags.contains(path);
    };
    surroundings.environment.mediaInfoFactory = reader;
    service = surroundings.makeService();
    service->addDiskInformation(disk(1, internal));
  }
  Value inResult(size_t index, const char* name) const {
    return notifications.named(kMediaResultNotification).at(index).userInfo.get(name);
  }

  std::map<std::string, MaybeDictionary> tags;  ///< a path that is not here has no reader
  std::vector<std::string> asked;
};

TEST_F(MediaCopyTags, LeadTheResultOfTheirFile) {
  tags[sandbox.at("in/a.mp3")] = Dictionary{{"Title", "Harbour"}, {"Track", 3}};
  EXPECT_TRUE(run(toDevice(Array{source("a.mp3")})));
  EXPECT_EQ(inResult(0, "Title").string(), "Harbour");
  EXPECT_EQ(inResult(0, "Track").intValue(), 3);
  EXPECT_EQ(asked, Lines{sandbox.at("in/a.mp3")});
}

TEST_F(MediaCopyTags, NeverHideTheKeysOfTheResult) {
  tags[sandbox.at("in/a.mp3")] =
      Dictionary{{"ServiceID", "x"},  {"MediaNotiType", "x"}, {"VolumeIndex", "x"}, {"ResultStatus", "x"},
                 {"LocationId", "x"}, {"FilePath", "x"},      {"MN", "x"},          {"PlaylistName", "kept"}};
  EXPECT_TRUE(run(toDevice(Array{source("a.mp3")})));
  EXPECT_EQ(
      plain(surroundings, described(notifications.named(kMediaResultNotification).at(0))),
      "QDORVEL_NOTI_MEDIA_TRASFER_RESULT: FilePath=\"$/internal/Music/a.mp3\" LocationId=\"location-1\" "
      "MN=\"Pocket One\" MediaNotiType=1u PlaylistName=\"kept\" ResultStatus=268435457u ServiceID=7u "
      "VolumeIndex=0u");
}

TEST_F(MediaCopyTags, AreNotCarriedOverToTheNextFile) {
  tags[sandbox.at("in/a.mp3")] = Dictionary{{"Title", "Harbour"}};
  tags[sandbox.at("in/c.mp3")] = std::nullopt;  // a reader that finds no tags
  EXPECT_TRUE(run(toDevice(Array{source("a.mp3"), source("b.mp3"), source("c.mp3")})));
  EXPECT_EQ(inResult(0, "Title").string(), "Harbour");
  EXPECT_TRUE(inResult(1, "Title").isNil());
  EXPECT_TRUE(inResult(2, "Title").isNil());
}

TEST_F(MediaCopyTags, AreNotShownForASkippedFile) {
  tags[sandbox.at("in/a.mp3")] = Dictionary{{"Title", "Harbour"}};
  tags[sandbox.at("in/b.mp3")] = Dictionary{{"Title", "Lighthouse"}};
  sandbox.file("internal/Music/b.mp3", "old");
  delegate.answer = {.returned = false};
  useDelegate();
  run(toDevice(Array{source("a.mp3"), source("b.mp3")}));
  EXPECT_EQ(inResult(1, key::kResultStatus).unsignedIntValue(), kErrorFileExists);
  EXPECT_TRUE(inResult(1, "Title").isNil());
}

TEST_F(MediaCopyTags, AreNotShownForAFullVolume) {
  tags[sandbox.at("in/a.mp3")] = Dictionary{{"Title", "Harbour"}};
  files.setFault([&](FileCall call, const std::string&) {
    return call == FileCall::Space && exists(internal + "/Music/a.mp3") ? EIO : 0;
  });
  run(toDevice(Array{source("a.mp3"), source("b.mp3")}));
  EXPECT_EQ(results(), (std::vector<uint32_t>{kItemTransferred, kErrorVolumeFull}));
  EXPECT_TRUE(inResult(1, "Title").isNil());
}

TEST_F(MediaCopyTags, AreReadFromTheSourceOnTheWayToTheComputerToo) {
  tags[sandbox.at("in/a.mp3")] = Dictionary{{"Title", "Harbour"}};
  EXPECT_FALSE(run(toMac(Array{source("a.mp3"), content("/missing", "b.mp3")})));
  EXPECT_EQ(inResult(0, "Title").string(), "Harbour");
  EXPECT_EQ(asked, Lines{sandbox.at("in/a.mp3")});
}

TEST_F(MediaCopyTags, OfTheReaderAreNotChanged) {
  Dictionary found{{"Title", "Harbour"}};
  tags[sandbox.at("in/a.mp3")] = found;
  EXPECT_TRUE(run(toDevice(Array{source("a.mp3")})));
  EXPECT_EQ(found.keys(), Lines{"Title"});
}

}  // namespace
}  // namespace umsservice::testing
