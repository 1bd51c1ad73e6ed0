#include <sys/stat.h>
#include <unistd.h>

#include "LogExpectations.h"
#include "TypedEntries.h"

namespace umsservice::testing {
namespace {

class FolderTree : public DeviceTest {
 protected:
  /// The folders as they come, with the sandbox as "$".
  Lines folders(const std::string& folder) {
    Lines paths;
    for (const Value& path : service->recursiveFolderLists(folder)->snapshot()) {
      paths.push_back(plain(surroundings, path.string().value_or("no text")));
    }
    return paths;
  }
};

TEST_F(FolderTree, OfAFolderWithoutSubFoldersIsTheFolderItself) {
  sandbox.file("card/a.mp3", "");
  EXPECT_EQ(folders(card), Lines{"$/card"});
  EXPECT_EQ(folders(sandbox.at("missing")), Lines{"$/missing"});
}

TEST_F(FolderTree, NamesEachFolderBeforeWhatIsInIt) {
  sandbox.folder("card/a/b/c");
  sandbox.folder("card/a/.hidden/x");
  EXPECT_EQ(folders(card), (Lines{"$/card", "$/card/a", "$/card/a/b", "$/card/a/b/c"}));
}

TEST_F(FolderTree, ComesInTheOrderOfTheListingDepthFirst) {
  for (const char* folder : {"card/1/x", "card/2/y", "card/3"}) sandbox.folder(folder);
  Lines expected{"$/card"};
  for (const Value& name : service->folderLists(card)->snapshot()) {
    expected.push_back("$/card/" + *name.string());
    for (const Value& below : service->folderLists(card + "/" + *name.string())->snapshot()) {
      expected.push_back(expected.back() + "/" + *below.string());
    }
  }
  EXPECT_EQ(expected.size(), 6u);
  EXPECT_EQ(folders(card), expected);
}

TEST_F(FolderTree, DoublesASeparatorAtTheEnd) {
  sandbox.folder("card/a");
  EXPECT_EQ(folders(card + "/"), (Lines{"$/card/", "$/card//a"}));
}

TEST_F(FolderTree, SaysWhereItDescends) {
  sandbox.folder("card/a/b");
  expectLine(surroundings, 7, "-[UMSService recursiveFolderLists:]", "Entry = b", [&] { folders(card); });
  log.clear();
  folders(card);
  EXPECT_EQ(linesOf(surroundings, "-[UMSService recursiveFolderLists:]"), (Lines{"Entry = a", "Entry = b"}));
}

TEST_F(FolderTree, NamesALinkToAFolderAndNeverEntersIt) {
  sandbox.folder("card/a");
  ASSERT_EQ(::symlink(card.c_str(), (card + "/a/loop").c_str()), 0);
  EXPECT_EQ(folders(card), (Lines{"$/card", "$/card/a", "$/card/a/loop"}));
  // The folder that is asked for may be a link itself.
  EXPECT_EQ(folders(card + "/a/loop"), (Lines{"$/card/a/loop", "$/card/a/loop/a", "$/card/a/loop/a/loop"}));
}

TEST_F(FolderTree, NamesAFolderThatCannotBeRead) {
  sandbox.folder("card/locked/inside");
  ASSERT_EQ(::chmod((card + "/locked").c_str(), 0), 0);
  {
    WithoutRootPowers asAPerson;
    EXPECT_EQ(folders(card), (Lines{"$/card", "$/card/locked"}));
  }
  ::chmod((card + "/locked").c_str(), 0700);
}

TEST_F(FolderTree, MayBeVeryDeep) {
  std::string path = "card";
  for (int i = 0; i < 300; ++i) path += "/d";
  sandbox.folder(path);
  EXPECT_EQ(folders(card).size(), 301u);
}

TEST_F(FolderTree, OfNilIsNil) {
  EXPECT_FALSE(service->recursiveFolderLists(std::nullopt));
}

TEST_F(FolderTree, OfTheDeviceHasOneEntryForEachVolume) {
  sandbox.folder("internal/Music");
  auto trees = service->getDeviceAllFolderLists();
  ASSERT_TRUE(trees);
  ASSERT_EQ(trees->count(), 2u);
  EXPECT_TRUE(trees->at(0).isEqual(Dictionary{
      {"diskIndex", 0u}, {"volumePath", internal}, {"folderLists", Array{internal, internal + "/Music"}}}));
  EXPECT_TRUE(trees->at(1).isEqual(
      Dictionary{{"diskIndex", 1u}, {"volumePath", card}, {"folderLists", Array{card}}}));
}

TEST_F(FolderTree, OfTheDeviceIsNilWithoutAVolumeThatHasAPath) {
  auto bare = surroundings.makeService();
  EXPECT_FALSE(bare->getDeviceAllFolderLists());
  bare->addDiskInformation(Dictionary{{"diskType", 1}});
  expectLine(surroundings, 3, "-[UMSService getDeviceAllFolderLists]", "Volume Path is nil.",
             [&] { EXPECT_FALSE(bare->getDeviceAllFolderLists()); });
}

TEST_F(FolderTree, OfTheDevicePassesOverWhatIsNoVolume) {
  service->diskInformation()->append(Null{});
  expectLine(surroundings, 3, "-[UMSService getDeviceAllFolderLists]", "Volume Info is nil.",
             [&] { EXPECT_EQ(service->getDeviceAllFolderLists()->count(), 2u); });
}

TEST_F(FolderTree, OfTheDeviceIsLogged) {
  const std::string all = "All Folder List is " + Value(*service->getDeviceAllFolderLists()).description();
  expectLine(surroundings, 7, "-[UMSService getDeviceAllFolderLists]", plain(surroundings, all),
             [&] { service->getDeviceAllFolderLists(); });
}

}  // namespace
}  // namespace umsservice::testing
