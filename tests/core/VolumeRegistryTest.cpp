#include <atomic>
#include <thread>

#include "CoreRoom.h"

namespace umsservice::testing {
namespace {

class VolumeRegistry : public ::testing::Test {
 protected:
  umsservice::VolumeRegistry volumes;

  /// "INDEX TYPE PATH" of each volume.
  Lines listed() const { return listed(volumes.diskInformation()); }
  static Lines listed(const Array& list) {
    Lines lines;
    for (const Value& element : list.snapshot()) {
      Dictionary volume = *element.dictionary();
      lines.push_back(volume.get(key::kDiskIndex).description() + " " +
                      volume.get(key::kDiskType).description() + " " +
                      volume.get(key::kVolumePath).description());
    }
    return lines;
  }
};

TEST_F(VolumeRegistry, TheInternalMemoryComesFirstWheneverItWasAdded) {
  volumes.addDiskInformation(disk(2, "/Volumes/CARD"));
  EXPECT_EQ(listed(), (Lines{"0 2 /Volumes/CARD"}));
  volumes.addDiskInformation(disk(1, "/Volumes/PHONE"));
  EXPECT_EQ(listed(), (Lines{"0 1 /Volumes/PHONE", "1 2 /Volumes/CARD"}));
}

TEST_F(VolumeRegistry, AVolumeThatAHostPutsInByHandMeanwhileIsNotLost) {
  constexpr int kEach = 300;
  std::thread host([this] {
    for (int i = 0; i < kEach; ++i) {
      volumes.diskInformation().edit([](std::vector<Value>& list) {
        list.insert(list.begin(), disk(1, "by hand"));
        return true;
      });
    }
  });
  for (int i = 0; i < kEach; ++i) volumes.addDiskInformation(disk(2, "added"));
  host.join();
  EXPECT_EQ(volumes.count(), size_t{2 * kEach});
}

/// A host's dictionary that calls back the first time it is read.
class CallingBack final : public DictionaryStorage {
 public:
  explicit CallingBack(std::function<void()> call) : call_(std::move(call)) {}
  Value get(std::string_view key) const override {
    if (call_) std::exchange(call_, nullptr)();
    return own_.get(key);
  }
  void set(std::string_view key, Value value) override { own_.set(key, std::move(value)); }
  std::vector<std::string> keys() const override { return own_.keys(); }

 private:
  mutable std::function<void()> call_;
  Dictionary own_ = disk(2, "calling");
};

TEST_F(VolumeRegistry, AHostMayChangeTheListWhileItsDictionaryIsRead) {
  volumes.addDiskInformation(disk(1, "inner"));
  volumes.addDiskInformation(Dictionary(std::make_shared<CallingBack>([this] {
    volumes.addDiskInformation(disk(2, "first"));
    volumes.removeDiskInformation(volumes.diskInfoFromIndex(0));
  })));
  EXPECT_EQ(listed(), (Lines{"0 2 first", "1 2 calling"}));
}

TEST_F(VolumeRegistry, RemovesOneOfTwoVolumesThatAreAlike) {
  Array list = volumes.diskInformation();
  list.append(disk(1, "twin"));
  list.append(disk(1, "twin"));
  volumes.removeDiskInformation(disk(1, "twin"));
  EXPECT_EQ(list.count(), 1u);
}

TEST_F(VolumeRegistry, VolumesOfOneKindKeepTheirOrder) {
  for (const auto& [type, path] :
       std::vector<std::pair<int, const char*>>{{2, "a"}, {1, "b"}, {7, "c"}, {1, "d"}, {0, "e"}, {-1, "f"}})
    volumes.addDiskInformation(disk(type, path));
  EXPECT_EQ(listed(), (Lines{"0 1 b", "1 1 d", "2 2 a", "3 7 c", "4 0 e", "5 -1 f"}));
}

TEST_F(VolumeRegistry, NumbersVolumesWithUnsignedNumbers) {
  volumes.addDiskInformation(disk(1, "/Volumes/PHONE"));
  EXPECT_EQ(typed(*volumes.diskInfoFromIndex(0)),
            (Lines{"diskIndex: u32 0", "diskType: i32 1", "volumePath: text /Volumes/PHONE"}));
}

TEST_F(VolumeRegistry, KeepsTheHostsOwnKeysAndLeavesTheHostsDictionaryAlone) {
  Dictionary own = disk(1, "/Volumes/PHONE");
  own.set("DefaultMusicPath", "/Tunes");
  own.set(key::kDiskIndex, 9u);
  volumes.addDiskInformation(own);
  EXPECT_EQ(volumes.diskInfoFromIndex(0)->string("DefaultMusicPath"), "/Tunes");
  EXPECT_EQ(own.get(key::kDiskIndex).unsignedIntValue(), 9u);
  EXPECT_FALSE(volumes.diskInfoFromIndex(9).has_value());
}

TEST_F(VolumeRegistry, IgnoresNil) {
  volumes.addDiskInformation(std::nullopt);
  volumes.removeDiskInformation(std::nullopt);
  EXPECT_EQ(listed(), Lines());
}

TEST_F(VolumeRegistry, DropsAVolumeWithoutAType) {
  volumes.addDiskInformation(disk(2, "/Volumes/CARD"));
  volumes.addDiskInformation(Dictionary{{key::kVolumePath, "/Volumes/ODD"}});
  EXPECT_EQ(listed(), (Lines{"0 2 /Volumes/CARD"}));
  // One that lost its type while it was in the list goes at the next change.
  volumes.diskInfoFromIndex(0)->remove(key::kDiskType);
  volumes.addDiskInformation(disk(1, "/Volumes/PHONE"));
  EXPECT_EQ(listed(), (Lines{"0 1 /Volumes/PHONE"}));
}

TEST_F(VolumeRegistry, TheSameDictionaryTwiceGivesTwoVolumes) {
  Dictionary twice = disk(2, "/Volumes/CARD");
  volumes.addDiskInformation(twice);
  volumes.addDiskInformation(twice);
  EXPECT_EQ(listed(), (Lines{"0 2 /Volumes/CARD", "1 2 /Volumes/CARD"}));
}

TEST_F(VolumeRegistry, RemovesOnlyADictionaryThatWasReadBack) {
  for (const char* path : {"a", "b", "c"}) volumes.addDiskInformation(disk(2, path));
  volumes.removeDiskInformation(disk(2, "b"));
  EXPECT_EQ(listed(), (Lines{"0 2 a", "1 2 b", "2 2 c"}));
  volumes.removeDiskInformation(volumes.diskInformation().at(1).dictionary());
  EXPECT_EQ(listed(), (Lines{"0 2 a", "2 2 c"}));
  EXPECT_FALSE(volumes.diskInfoFromIndex(1).has_value());
  EXPECT_EQ(volumes.diskVolumeNameFromIndex(2), "c");
  volumes.addDiskInformation(disk(1, "d"));
  EXPECT_EQ(listed(), (Lines{"0 1 d", "1 2 a", "2 2 c"}));
}

TEST_F(VolumeRegistry, RemovalTakesAnEqualDictionaryOfTheHostsOwnMakingAndOnlyTheFirst) {
  volumes.addDiskInformation(disk(2, "a"));
  Dictionary equal = disk(2, "a");
  equal.set(key::kDiskIndex, 0);
  volumes.removeDiskInformation(equal);
  EXPECT_EQ(listed(), Lines());
  for (int i = 0; i < 2; ++i) volumes.addDiskInformation(disk(2, "a"));
  volumes.diskInfoFromIndex(1)->set(key::kDiskIndex, 0u);
  volumes.removeDiskInformation(equal);
  EXPECT_EQ(listed(), (Lines{"0 2 a"}));
}

TEST_F(VolumeRegistry, TheListThatWasHandedOutShowsLaterChanges) {
  Array list = volumes.diskInformation();
  volumes.addDiskInformation(disk(2, "card"));
  EXPECT_EQ(listed(list), (Lines{"0 2 card"}));
  volumes.addDiskInformation(disk(1, "phone"));
  EXPECT_EQ(listed(list), (Lines{"0 1 phone", "1 2 card"}));
  volumes.removeDiskInformation(volumes.diskInfoFromIndex(0));
  EXPECT_EQ(listed(list), (Lines{"1 2 card"}));
}

TEST_F(VolumeRegistry, LooksUpByIndex) {
  volumes.addDiskInformation(disk(1, "phone"));
  volumes.addDiskInformation(disk(2, "card"));
  EXPECT_EQ(volumes.diskVolumeNameFromIndex(1), "card");
  EXPECT_EQ(volumes.volumePath(1), "card");
  for (uint32_t unknown : {2u, 0xffffffffu}) {
    EXPECT_FALSE(volumes.diskInfoFromIndex(unknown).has_value());
    EXPECT_FALSE(volumes.diskVolumeNameFromIndex(unknown).has_value());
    EXPECT_FALSE(volumes.volumePath(unknown).has_value());
  }
}

TEST_F(VolumeRegistry, AVolumeWithoutAPathIsFoundButHasNoName) {
  volumes.addDiskInformation(Dictionary{{key::kDiskType, 1}});
  EXPECT_TRUE(volumes.diskInfoFromIndex(0).has_value());
  EXPECT_FALSE(volumes.diskVolumeNameFromIndex(0).has_value());
  EXPECT_FALSE(volumes.volumePath(0).has_value());
}

TEST_F(VolumeRegistry, LooksUpInAListOfAnotherDevice) {
  using umsservice::VolumeRegistry;
  Array list{Value("no dictionary"), Dictionary{{key::kVolumePath, "no index"}},
             Dictionary{{key::kDiskIndex, 1u}, {key::kVolumePath, "first"}},
             Dictionary{{key::kDiskIndex, "1"}, {key::kVolumePath, "second"}}};
  EXPECT_EQ(VolumeRegistry::diskInfoFromDiskInfoList(list, 1)->string(key::kVolumePath), "first");
  EXPECT_FALSE(VolumeRegistry::diskInfoFromDiskInfoList(list, 0).has_value());
  EXPECT_FALSE(VolumeRegistry::diskInfoFromDiskInfoList(std::nullopt, 0).has_value());
}

TEST_F(VolumeRegistry, FindsTheInternalMemoryAndTheCardByTheirTypes) {
  uint32_t index = 77;
  EXPECT_FALSE(volumes.volumePathWithOption(true, index).has_value());
  EXPECT_EQ(index, 0u);
  volumes.addDiskInformation(disk(3, "odd"));
  volumes.addDiskInformation(disk(2, "card"));
  volumes.addDiskInformation(disk(1, "phone"));
  EXPECT_EQ(volumes.volumePathWithOption(true, index), "phone");
  EXPECT_EQ(index, 0u);
  EXPECT_EQ(volumes.volumePathWithOption(false, index), "card");
  EXPECT_EQ(index, 2u);
}

TEST_F(VolumeRegistry, ACardOfAnotherTypeIsNotFoundByItsType) {
  volumes.addDiskInformation(disk(3, "odd"));
  uint32_t index = 77;
  EXPECT_FALSE(volumes.volumePathWithOption(false, index).has_value());
  EXPECT_EQ(index, 0u);
}

TEST_F(VolumeRegistry, NoLookupSeesAHalfRebuiltList) {
  volumes.addDiskInformation(disk(1, "phone"));
  std::atomic<bool> adding{true};
  std::thread host([&] {
    for (int i = 0; i < 150; ++i) volumes.addDiskInformation(disk(2, "card"));
    adding = false;
  });
  size_t lastCount = 1;
  while (adding) {
    EXPECT_EQ(volumes.diskVolumeNameFromIndex(0), "phone");
    uint32_t index = 77;
    EXPECT_EQ(volumes.volumePathWithOption(true, index), "phone");
    auto list = volumes.diskInformation().snapshot();
    EXPECT_GE(list.size(), lastCount);
    lastCount = list.size();
    for (size_t i = 0; i < list.size(); ++i)
      EXPECT_EQ(list[i].dictionary()->get(key::kDiskIndex).unsignedIntValue(), i);
  }
  host.join();
  EXPECT_EQ(volumes.count(), 151u);
}

TEST_F(VolumeRegistry, VolumesAddedByManyThreadsAreAllThere) {
  std::vector<std::thread> hosts;
  for (int type : {1, 2, 3}) {
    hosts.emplace_back([this, type] {
      for (int i = 0; i < 40; ++i) volumes.addDiskInformation(disk(type, "volume"));
    });
  }
  for (auto& host : hosts) host.join();
  ASSERT_EQ(volumes.count(), 120u);
  for (uint32_t i = 0; i < 120; ++i) {
    auto volume = volumes.diskInfoFromIndex(i);
    ASSERT_TRUE(volume.has_value());
    EXPECT_EQ(volume->get(key::kDiskType).intValue() == 1, i < 40);
  }
}

}  // namespace
}  // namespace umsservice::testing
