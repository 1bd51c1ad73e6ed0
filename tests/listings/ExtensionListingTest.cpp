#include <sys/stat.h>
#include <unistd.h>

#include "ListingsTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kExtensionMethod = "-[UMSService fileInformationList:extensionList:recursive:]";
constexpr auto kFlatMethod = "-[UMSService fileInformationList:extensionList:]";

/// Listings of any folder by extension.
class ExtensionListing : public ListingsTest {
 protected:
  ExtensionListing() {
    folder = sandbox.folder("any");
    tags->knows = [](const std::string& path) { return path.find("tagged") != std::string::npos; };
  }

  MaybeArray deep(const Array& extensions) { return service->fileInformationList(folder, extensions, true); }
  MaybeArray direct(const Array& extensions) {
    return service->fileInformationList(folder, extensions, false);
  }
  MaybeArray flat(const Array& extensions) { return service->fileInformationList(folder, extensions); }

  std::string folder;
};

TEST_F(ExtensionListing, TakesNamePathAndSizeFromTheTags) {
  put("any/tagged.mp3");
  EXPECT_EQ(
      typed(*direct(Array{"mp3"})->at(0).dictionary()),
      (Lines{"FileName: text tagged.mp3", "FilePath: text " + folder + "/tagged.mp3", "FileSize: u64 7"}));
}

TEST_F(ExtensionListing, TakesThemFromTheFileWhereThereAreNoTags) {
  put("any/sub/plain.mp3");
  EXPECT_EQ(typed(*deep(Array{"mp3"})->at(0).dictionary()),
            (Lines{"FileName: text sub/plain.mp3", "FilePath: text " + folder + "/sub/plain.mp3",
                   "FileSize: u64 2", "FolderName: text sub"}));
}

TEST_F(ExtensionListing, LeavesOutWhatTheTagsDoNotSay) {
  put("any/tagged.mp3");
  tags->answer = [](const std::string&) { return Dictionary{{"Title", "Tune"}}; };
  EXPECT_EQ(typed(*deep(Array{"mp3"})->at(0).dictionary()), Lines{"FolderName: text "});
}

TEST_F(ExtensionListing, NamesTheFolderRelativeToTheListedOne) {
  for (const char* name : {"a.mp3", "sub/b.mp3", "sub/deep/tagged.mp3"}) put(std::string("any/") + name);
  EXPECT_EQ(texts(deep(Array{"mp3"}), "FolderName"), (Lines{"", "sub", "sub/deep"}));
  folder += "//";
  EXPECT_EQ(texts(deep(Array{"mp3"}), "FolderName"), (Lines{"", "sub", "sub/deep"}));
  folder = sandbox.path();
  EXPECT_EQ(texts(deep(Array{"mp3"}), "FolderName"), (Lines{"any", "any/sub", "any/sub/deep"}));
}

TEST_F(ExtensionListing, GoesDeepOnlyWhenToldTo) {
  put("any/a.mp3");
  put("any/sub/b.mp3");
  EXPECT_EQ(paths(deep(Array{"mp3"})), (Lines{"$/any/a.mp3", "$/any/sub/b.mp3"}));
  EXPECT_EQ(paths(direct(Array{"mp3"})), Lines{"$/any/a.mp3"});
  EXPECT_EQ(texts(direct(Array{"mp3"}), "FolderName"), Lines{"(none)"});
}

TEST_F(ExtensionListing, ComparesExtensionsInAnyLetterCaseAndHonoursTheWildcardInFront) {
  for (const char* name : {"a.mp3", "b.MP3", "c.txt", "noextension"}) put(std::string("any/") + name);
  EXPECT_EQ(paths(deep(Array{"Mp3"})), (Lines{"$/any/a.mp3", "$/any/b.MP3"}));
  EXPECT_EQ(paths(deep(Array{"*"})), (Lines{"$/any/a.mp3", "$/any/b.MP3", "$/any/c.txt"}));
  EXPECT_EQ(paths(deep(Array{"mp3", "*"})).size(), 2u);
  EXPECT_EQ(paths(deep(Array())), Lines{});
}

TEST_F(ExtensionListing, KnowsNoMarkers) {
  put("any/.nomedia");
  put("any/a.mp3");
  EXPECT_EQ(paths(deep(Array{"mp3"})), Lines{"$/any/a.mp3"});
}

TEST_F(ExtensionListing, PassesOverFoldersAndLinksThatLeadToNoFile) {
  sandbox.folder("any/folder.mp3");
  put("elsewhere/real.mp3");
  ASSERT_EQ(::symlink("nowhere", (folder + "/dangling.mp3").c_str()), 0);
  ASSERT_EQ(::symlink("loop.mp3", (folder + "/loop.mp3").c_str()), 0);
  ASSERT_EQ(::symlink(sandbox.at("elsewhere").c_str(), (folder + "/linked.mp3").c_str()), 0);
  ASSERT_EQ(::symlink(sandbox.at("elsewhere/real.mp3").c_str(), (folder + "/good.mp3").c_str()), 0);
  ASSERT_EQ(::mkfifo((folder + "/fifo.mp3").c_str(), 0666), 0);
  EXPECT_EQ(paths(deep(Array{"mp3"})), (Lines{"$/any/fifo.mp3", "$/any/good.mp3"}));
  listing->onList = [](const std::string&, auto& entries) {
    for (auto& entry : entries) entry.type = FileType::Unknown;
  };
  EXPECT_EQ(paths(deep(Array{"mp3"})), (Lines{"$/any/fifo.mp3", "$/any/good.mp3"}));
}

TEST_F(ExtensionListing, PassesOverAFileWhoseSizeCannotBeRead) {
  put("any/a.mp3");
  put("any/b.mp3");
  files.failAlways(FileCall::Attributes, "a.mp3", EIO);
  EXPECT_EQ(paths(deep(Array{"mp3"})), Lines{"$/any/b.mp3"});
}

TEST_F(ExtensionListing, SaysWhatItPassesOver) {
  put("any/noextension");
  put("any/.hidden.mp3");
  auto listing = [&] { direct(Array{"mp3"}); };
  expectLine(surroundings, 1, kExtensionMethod, "File Extension is nil. Next path search", listing);
  expectLine(surroundings, 7, kExtensionMethod, "$/any/.hidden.mp3 file in Hidden folder. Skip file",
             listing);
  auto flatly = [&] { flat(Array{"mp3"}); };
  expectLine(surroundings, 1, kFlatMethod, "File Extension is nil. Next path search", flatly);
  expectLine(surroundings, 7, kFlatMethod, "$/any/.hidden.mp3 file in Hidden folder. Skip file", flatly);
}

TEST_F(ExtensionListing, SaysNothingOfFoldersWithoutAnExtension) {
  put("any/sub/a.mp3");
  EXPECT_EQ(deep(Array{"mp3"})->count(), 1u);
  EXPECT_EQ(linesOf(surroundings, kExtensionMethod), Lines{});
}

TEST_F(ExtensionListing, GivesNilWithoutExtensionsOrAFolder) {
  EXPECT_FALSE(service->fileInformationList(folder, std::nullopt, true));
  EXPECT_FALSE(service->fileInformationList(folder, std::nullopt));
  EXPECT_EQ(linesOf(surroundings, kExtensionMethod), Lines{});
  EXPECT_EQ(linesOf(surroundings, kFlatMethod), Lines{});
  for (const MaybeString& missing : {MaybeString(sandbox.at("missing")), MaybeString()}) {
    for (bool recursive : {true, false}) {
      expectLine(surroundings, 1, kExtensionMethod, "Get UMS File list failed",
                 [&] { EXPECT_FALSE(service->fileInformationList(missing, Array{"mp3"}, recursive)); });
    }
    expectLine(surroundings, 1, kFlatMethod, "Get UMS File list failed",
               [&] { EXPECT_FALSE(service->fileInformationList(missing, Array{"mp3"})); });
  }
}

TEST_F(ExtensionListing, GivesTheTagsThemselvesWithoutTheFlag) {
  const Dictionary own = tagsOf("/x/tagged.mp3");
  tags->answer = [&](const std::string&) { return own; };
  put("any/tagged.mp3");
  put("any/plain.mp3");  // no tags, and the file is not looked at
  put("any/sub/tagged.mp3");
  const auto found = flat(Array{"mp3"});
  ASSERT_EQ(found->count(), 1u);
  EXPECT_TRUE(found->at(0).dictionary()->isSame(own));
  EXPECT_TRUE(own.contains("AlbumArt"));
}

TEST_F(ExtensionListing, DoesNotLookAtTheFileItselfWithoutTheFlag) {
  sandbox.folder("any/tagged-folder.mp3");
  EXPECT_EQ(texts(flat(Array{"*"}), key::kFileName), Lines{"tagged-folder.mp3"});
}

}  // namespace
}  // namespace umsservice::testing
