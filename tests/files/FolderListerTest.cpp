#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "LogExpectations.h"
#include "PassingFileSystem.h"
#include "TypedEntries.h"

namespace umsservice::testing {
namespace {

constexpr auto kLister = "-[UMSService fileLists:fileName:enumChild:contents:]";

/// The texts of a list, sorted: a listing comes in the order of the file system.
Lines sorted(const MaybeArray& list) {
  Lines texts;
  if (!list) return {"nil"};
  for (const Value& element : list->snapshot()) texts.push_back(element.string().value_or("no text"));
  std::sort(texts.begin(), texts.end());
  return texts;
}

class FolderLister : public DeviceTest {
 protected:
  Lines listed(const std::string& folder, bool deep) {
    MaybeArray contents;
    if (!service->fileLists(0, folder, deep, &contents)) return {"NO"};
    return sorted(contents);
  }
};

using FolderChildren = FolderLister;

TEST_F(FolderLister, NamesEverythingBelowOrOnlyTheFirstLevel) {
  sandbox.file("card/a.mp3", "");
  sandbox.file("card/sub/deep/b.mp3", "");
  sandbox.file("card/.hidden/c.mp3", "");
  EXPECT_EQ(listed(card, true),
            (Lines{".hidden", ".hidden/c.mp3", "a.mp3", "sub", "sub/deep", "sub/deep/b.mp3"}));
  EXPECT_EQ(listed(card, false), (Lines{".hidden", "a.mp3", "sub"}));
  EXPECT_EQ(listed(sandbox.folder("empty"), true), Lines());
  EXPECT_EQ(listed(sandbox.folder("empty"), false), Lines());
}

TEST_F(FolderLister, LeavesOutWhatLiesUnderAMarkerOfAnySpelling) {
  sandbox.file("card/Old/.NoMedia", "");
  sandbox.file("card/Old/a.mp3", "");
  sandbox.file("card/Old/deep/b.mp3", "");
  sandbox.file("card/Oldies/c.mp3", "");
  sandbox.file("card/New/d.mp3", "");
  EXPECT_EQ(listed(card, true), (Lines{"New", "New/d.mp3"}));
  // On the first level the marker is not seen, so its folder is listed.
  EXPECT_EQ(listed(card, false), (Lines{"New", "Old", "Oldies"}));
}

TEST_F(FolderLister, IsEmptyWhereAMarkerStandsAtTheTop) {
  sandbox.file("card/.NoMedia", "");
  sandbox.file("card/a.mp3", "");
  sandbox.file("card/sub/b.mp3", "");
  EXPECT_EQ(listed(card, true), Lines());
  EXPECT_EQ(listed(card, false), Lines());
}

TEST_F(FolderLister, TakesAFolderOfTheMarkersNameForAMarkerToo) {
  sandbox.file("card/Old/.nomedia/kept", "");
  sandbox.file("card/Old/a.mp3", "");
  EXPECT_EQ(listed(card, true), Lines());
}

TEST_F(FolderLister, OfAMissingFolderIsEmptyWhenDeepAndRefusedWhenNot) {
  EXPECT_EQ(listed(sandbox.at("missing"), true), Lines());
  const std::string file = sandbox.file("card/a.mp3", "");
  EXPECT_EQ(listed(file, true), Lines());
  EXPECT_EQ(listed(file, false), Lines{"NO"});
  expectLine(surroundings, 3, kLister,
             plain(surroundings, "fileLists Failed. error = " +
                                     errorText(ENOENT, FileError::Action::Reading, sandbox.at("missing"))),
             [&] { EXPECT_EQ(listed(sandbox.at("missing"), false), Lines{"NO"}); });
}

TEST_F(FolderLister, RefusesNilAndLeavesTheListAlone) {
  MaybeArray contents = Array{"before"};
  for (bool deep : {true, false}) {
    expectLine(surroundings, 3, kLister, "Input parameters is invalid. FolderNameString = (null)",
               [&] { EXPECT_FALSE(service->fileLists(0, std::nullopt, deep, &contents)); });
  }
  EXPECT_FALSE(service->fileLists(0, sandbox.at("missing"), false, &contents));
  EXPECT_EQ(sorted(contents), Lines{"before"});
  EXPECT_TRUE(service->fileLists(0, card, true, nullptr));
}

TEST_F(FolderLister, DoesNotReadItsFirstArgument) {
  sandbox.file("card/a.mp3", "");
  for (uint32_t unused : {0u, 1u, 0xffffffffu}) {
    MaybeArray contents;
    EXPECT_TRUE(service->fileLists(unused, card, true, &contents));
    EXPECT_EQ(sorted(contents), Lines{"a.mp3"});
  }
}

TEST_F(FolderLister, NamesLinksAndNeverEntersThem) {
  sandbox.file("card/sub/a.mp3", "");
  ASSERT_EQ(::symlink(card.c_str(), (card + "/sub/loop").c_str()), 0);
  ASSERT_EQ(::symlink("nowhere", (card + "/dangling").c_str()), 0);
  EXPECT_EQ(listed(card, true), (Lines{"dangling", "sub", "sub/a.mp3", "sub/loop"}));
}

TEST_F(FolderLister, PassesOverAFolderThatCannotBeRead) {
  sandbox.file("card/locked/a.mp3", "");
  sandbox.file("card/open/b.mp3", "");
  ASSERT_EQ(::chmod((card + "/locked").c_str(), 0), 0);
  {
    WithoutRootPowers asAPerson;
    EXPECT_EQ(listed(card, true), (Lines{"locked", "open", "open/b.mp3"}));
    EXPECT_EQ(listed(card + "/locked", true), Lines());
    EXPECT_EQ(listed(card + "/locked", false), Lines{"NO"});
  }
  ::chmod((card + "/locked").c_str(), 0700);
}

TEST_F(FolderLister, WalksADeepTreeWithoutADeepStack) {
  std::string path = "card";
  for (int i = 0; i < 200; ++i) path += "/d";
  sandbox.file(path + "/a.mp3", "");
  MaybeArray contents;
  ASSERT_TRUE(service->fileLists(0, card, true, &contents));
  EXPECT_EQ(contents->count(), 201u);
}

TEST_F(FolderLister, KeepsNamesOfEveryByte) {
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != '/') sandbox.file("card/" + std::string(1, static_cast<char>(byte)) + "n", "");
  }
  MaybeArray contents;
  ASSERT_TRUE(service->fileLists(0, card, true, &contents));
  EXPECT_EQ(contents->count(), 254u);
  for (const Value& name : contents->snapshot()) EXPECT_TRUE(exists(card + "/" + *name.string()));
}

TEST_F(FolderChildren, AreFoldersOrFilesThatAreNotHidden) {
  for (const char* folder : {"card/.Trashes", "card/.thumbnails", "card/Music"}) sandbox.folder(folder);
  for (const char* file : {"card/.nomedia", "card/.hidden.mp3", "card/a.mp3"}) sandbox.file(file, "");
  EXPECT_EQ(sorted(service->folderLists(card)), Lines{"Music"});
  EXPECT_EQ(sorted(service->fileLists(card)), Lines{"a.mp3"});
}

TEST_F(FolderChildren, ObeyNoMarker) {
  sandbox.file("card/sub/.nomedia", "");
  sandbox.file("card/.nomedia", "");
  sandbox.file("card/a.mp3", "");
  EXPECT_EQ(sorted(service->folderLists(card)), Lines{"sub"});
  EXPECT_EQ(sorted(service->fileLists(card)), Lines{"a.mp3"});
}

TEST_F(FolderChildren, CountALinkAsWhatItLeadsTo) {
  sandbox.folder("elsewhere");
  const std::string file = sandbox.file("a.mp3", "");
  ASSERT_EQ(::symlink(sandbox.at("elsewhere").c_str(), (card + "/folder link").c_str()), 0);
  ASSERT_EQ(::symlink(file.c_str(), (card + "/file link").c_str()), 0);
  ASSERT_EQ(::symlink("nowhere", (card + "/dangling").c_str()), 0);
  ASSERT_EQ(::mkfifo((card + "/pipe").c_str(), 0600), 0);
  EXPECT_EQ(sorted(service->folderLists(card)), Lines{"folder link"});
  EXPECT_EQ(sorted(service->fileLists(card)), (Lines{"file link", "pipe"}));
}

TEST_F(FolderChildren, OfAnEmptyFolderAreAnEmptyList) {
  EXPECT_EQ(sorted(service->folderLists(card)), Lines());
  EXPECT_EQ(sorted(service->fileLists(card)), Lines());
}

TEST_F(FolderChildren, OfNilOrAMissingFolderAreNil) {
  const std::string missing = sandbox.at("missing");
  const std::string failure = plain(
      surroundings, "fileLists Failed. error = " + errorText(ENOENT, FileError::Action::Reading, missing));
  const std::string invalid = "Input parameters is invalid. FolderNameString = (null)";
  expectLine(surroundings, 3, "-[UMSService folderLists:]", invalid,
             [&] { EXPECT_FALSE(service->folderLists(std::nullopt)); });
  expectLine(surroundings, 3, "-[UMSService fileLists:]", invalid,
             [&] { EXPECT_FALSE(service->fileLists(std::nullopt)); });
  expectLine(surroundings, 3, "-[UMSService folderLists:]", failure,
             [&] { EXPECT_FALSE(service->folderLists(missing)); });
  expectLine(surroundings, 3, "-[UMSService fileLists:]", failure,
             [&] { EXPECT_FALSE(service->fileLists(missing)); });
}

/// Hands out names that are none before the real ones, as a damaged file system can.
class NamelessEntries final : public PassingFileSystem {
 public:
  using Entries = std::vector<DirectoryEntry>;

  explicit NamelessEntries(Entries first) : PassingFileSystem(posixFileSystem()), first_(std::move(first)) {}

  FileResult<Entries> list(const std::string& folder) override {
    auto entries = PassingFileSystem::list(folder);
    if (entries) entries->insert(entries->begin(), first_.begin(), first_.end());
    return entries;
  }

 private:
  const Entries first_;
};

class DamagedFolders : public FolderLister {
 protected:
  DamagedFolders() {
    NamelessEntries::Entries entries;
    for (const char* name : {"", ".", "..", "../card", "sub/.."}) {
      for (FileType type : {FileType::Unknown, FileType::Directory}) entries.push_back({name, type});
    }
    surroundings.environment.fileSystem = std::make_shared<NamelessEntries>(entries);
    service = surroundings.makeService();
    service->addDiskInformation(disk(1, card));
    sandbox.file("card/a.mp3", "");
    sandbox.file("card/sub/b.mp3", "");
    sandbox.file("internal/beside the card.mp3", "");
  }
};

TEST_F(DamagedFolders, AreListedWithoutNamesThatAreNone) {
  EXPECT_EQ(listed(card, true), (Lines{"a.mp3", "sub", "sub/b.mp3"}));
  EXPECT_EQ(listed(card, false), (Lines{"a.mp3", "sub"}));
  EXPECT_EQ(sorted(service->fileLists(card)), Lines{"a.mp3"});
  EXPECT_EQ(sorted(service->folderLists(card)), Lines{"sub"});
}

TEST_F(DamagedFolders, AreWalkedWithoutLeavingThem) {
  EXPECT_EQ(sorted(service->recursiveFolderLists(card)), (Lines{card, card + "/sub"}));
  for (bool skipNoMedia : {true, false}) EXPECT_EQ(service->subpathsAtDisk(0, 0, skipNoMedia)->count(), 2u);
  EXPECT_EQ(service->fileNameList(0, kMediaMusic, 0)->count(), 2u);
  EXPECT_EQ(service->fileInformationList(card, Array{"mp3"}, true)->count(), 2u);
}

TEST_F(FolderChildren, PassOverAnEntryWithoutAName) {
  surroundings.environment.fileSystem =
      std::make_shared<NamelessEntries>(NamelessEntries::Entries{{"", FileType::Unknown}});
  service = surroundings.makeService();
  sandbox.file("card/a.mp3", "");
  sandbox.folder("card/sub");
  const std::string message = "Data is nil. Next Data Dictionary search.";
  expectLine(surroundings, 5, "-[UMSService folderLists:]", message,
             [&] { EXPECT_EQ(sorted(service->folderLists(card)), Lines{"sub"}); });
  expectLine(surroundings, 5, "-[UMSService fileLists:]", message,
             [&] { EXPECT_EQ(sorted(service->fileLists(card)), Lines{"a.mp3"}); });
}

}  // namespace
}  // namespace umsservice::testing
