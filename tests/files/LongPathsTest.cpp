#include "LongPaths.h"
#include "TransferTest.h"

namespace umsservice::testing {
namespace {

/// A folder so deep that a short name still has a path and a longer one has none.
class LongPaths : public TransferTest {
 protected:
  std::string deep = longFolder(sandbox, "card");
};

TEST_F(LongPaths, AreListedWithEveryName) {
  putInto(deep, kShortName, "la");
  putInto(deep, kLongName, "la");
  for (bool isDeep : {false, true}) {
    MaybeArray contents;
    ASSERT_TRUE(service->fileLists(0, deep, isDeep, &contents));
    EXPECT_EQ(contents->count(), 2u);
  }
  EXPECT_EQ(service->fileLists(deep)->count(), 2u);
  EXPECT_EQ(service->folderLists(deep)->count(), 0u);
}

TEST_F(LongPaths, AreWalkedAsFarAsThereArePaths) {
  const int folder = ::open(deep.c_str(), O_RDONLY | O_DIRECTORY);
  const std::string name(100, 'n');
  ASSERT_EQ(::mkdirat(folder, name.c_str(), 0777), 0);
  ASSERT_EQ(::mkdirat(folder, (name + "/below").c_str(), 0777), 0);
  ::close(folder);
  const MaybeArray tree = service->recursiveFolderLists(card);
  ASSERT_TRUE(tree);
  EXPECT_EQ(tree->snapshot().back().string(), deep + "/" + name);
  MaybeArray contents;
  ASSERT_TRUE(service->fileLists(0, card, true, &contents));
  EXPECT_TRUE(contents->snapshot().back().string()->ends_with("/" + name));
}

TEST_F(LongPaths, AreListedByNameWithEveryFile) {
  putInto(deep, kShortName, "la");
  putInto(deep, kLongName, "la");
  EXPECT_EQ(service->fileNameList(0, kMediaMusic, 1)->count(), 2u);
  const MaybeArray withFolders = service->fileNameListWithFolderStructure(0, kMediaMusic, 1);
  ASSERT_TRUE(withFolders);
  ASSERT_EQ(withFolders->count(), 2u);
  for (const Value& listed : withFolders->snapshot()) {
    const bool isShort = listed.dictionary()->string(key::kFilePath)->ends_with("/" + kShortName);
    EXPECT_EQ(listed.dictionary()->get(key::kFileSize).unsignedLongLongValue(), isShort ? 2u : 0u);
  }
}

TEST_F(LongPaths, TakeAShortNameInATransferAndFailALongerOne) {
  for (bool toDevice : {true, false}) {
    auto transfer = [&](const std::string& name) {
      const Dictionary from = file("a.mp3", "la");
      return toDevice ? write(from, deep + "/" + name, true) : read(from, deep + "/" + name, true);
    };
    EXPECT_TRUE(transfer(kShortName));
    EXPECT_EQ(bytesIn(deep, kShortName), "la");
    EXPECT_FALSE(transfer(kLongName));
    EXPECT_EQ(error, kErrorCopyFailed);
    putInto(deep, kLongName, "stands");
    EXPECT_FALSE(transfer(kLongName));
    EXPECT_EQ(bytesIn(deep, kLongName), "stands");
  }
}

TEST_F(LongPaths, TakeAShortNameInASyncWriteAndFailALongerOne) {
  const std::string volume = longFolder(sandbox, "another", "/Music");
  service = surroundings.makeService();
  service->addDiskInformation(disk(1, volume));
  putInto(volume + "/Music", kLongName, "stands");
  EXPECT_TRUE(syncWrite(file(kShortName, "la")));
  EXPECT_EQ(bytesIn(volume + "/Music", kShortName), "la");
  EXPECT_FALSE(syncWrite(file(kLongName, "la")));
  EXPECT_EQ(bytesIn(volume + "/Music", kLongName), "stands");
}

TEST_F(LongPaths, LetAShortNameBeDeletedAndFailALongerOne) {
  putInto(deep, kShortName, "la");
  putInto(deep, kLongName, "stands");
  EXPECT_TRUE(service->deletefileAtDevice(deep + "/" + kShortName, &error));
  EXPECT_FALSE(service->deletefileAtDevice(deep + "/" + kLongName, &error));
  EXPECT_EQ(error, kErrorDeleteFailed);
  EXPECT_EQ(bytesIn(deep, kLongName), "stands");
}

}  // namespace
}  // namespace umsservice::testing
