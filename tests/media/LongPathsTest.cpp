#include "DeviceToDeviceTest.h"
#include "LongPaths.h"

namespace umsservice::testing {
namespace {

/// Media folders so deep that a short name still has a path and a longer one has none.
class LongPathsOfMedia : public DeviceToDeviceTest {
 protected:
  LongPathsOfMedia() {
    request.isStartInternal = 1;
    request.storageIndex = 0;
    for (const std::string& name : {kShortName, kLongName})
      request.contents->append(content(sandbox.file("in/" + name, name), name));
  }
  /// A service whose only volume is that deep; its music folder is there.
  std::shared_ptr<UMSService> deepDevice(const std::string& below, const char* location) {
    volume = longFolder(sandbox, below, "/Music");
    music = volume + "/Music";
    auto made = std::make_shared<UMSService>(surroundings.environment, location);
    made->setDeviceInformation(Dictionary{{"MN", "Pocket One"}});
    made->addDiskInformation(disk(1, volume));
    return made;
  }
  void useDeepDevice() {
    service = deepDevice("deep", "location-1");
    useDelegate();
  }
  std::vector<ItemOutcome::Kind> kinds() const {
    std::vector<ItemOutcome::Kind> found;
    for (const ItemOutcome& outcome : items.outcomes()) found.push_back(outcome.kind);
    return found;
  }
  void expectShortNameOnly() {
    EXPECT_EQ(kinds(), (std::vector{ItemOutcome::Kind::Done, ItemOutcome::Kind::Failed}));
    EXPECT_EQ(bytesIn(music, kShortName), kShortName);
    for (const std::string& name : {kShortName, kLongName})
      EXPECT_EQ(bytesOf(sandbox.at("in/" + name)), name);
  }

  std::string volume;
  std::string music;
};

TEST_F(LongPathsOfMedia, TakeAShortNameInACopyAndFailALongerOne) {
  useDeepDevice();
  service->doCopyMediaContentsForAnyMediaType(request);
  expectShortNameOnly();
  EXPECT_EQ(bytesIn(music, kLongName), "(none)");
}

TEST_F(LongPathsOfMedia, TakeAShortNameInASyncAndFailALongerOne) {
  useDeepDevice();
  service->doSyncMediaContents(request);
  expectShortNameOnly();
  EXPECT_EQ(bytesIn(music, kLongName), "(none)");
}

TEST_F(LongPathsOfMedia, LoseNothingThatStandsWhereNoPathLeads) {
  useDeepDevice();
  delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  putInto(music, kLongName, "stands");
  service->doCopyMediaContentsForAnyMediaType(request);
  expectShortNameOnly();
  EXPECT_EQ(bytesIn(music, kLongName), "stands");
}

TEST_F(LongPathsOfMedia, TakeAShortNameFromAnotherDeviceAndFailALongerOne) {
  destination = deepDevice("there-deep", "location-2");
  request.destPath = music;
  putInto(music, kLongName, "stands");
  run();
  expectShortNameOnly();
  EXPECT_EQ(bytesIn(music, kLongName), "stands");
}

TEST_F(LongPathsOfMedia, LetAShortNameBeDeletedAndFailALongerOne) {
  useDeepDevice();
  request.contents = Array();
  for (const std::string& name : {kShortName, kLongName}) {
    putInto(music, name, "stands");
    request.contents->append(content(music + "/" + name, name));
  }
  service->doDeleteMediaContents(request);
  EXPECT_EQ(kinds(), (std::vector{ItemOutcome::Kind::Done, ItemOutcome::Kind::Failed}));
  EXPECT_EQ(bytesIn(music, kShortName), "(none)");
  EXPECT_EQ(bytesIn(music, kLongName), "stands");
}

}  // namespace
}  // namespace umsservice::testing
