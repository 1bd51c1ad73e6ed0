#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <thread>

#include "ListingFileSystem.h"
#include "LogExpectations.h"
#include "TypedEntries.h"

namespace umsservice::testing {
namespace {

/// A device whose folders are listed by name, so that the order of a scan is known.
class DeviceScan : public DeviceTest {
 protected:
  DeviceScan() {
    surroundings.environment.fileSystem = listing;
    service = surroundings.makeService();
    service->addDiskInformation(disk(1, internal));
    service->addDiskInformation(disk(2, card));
  }

  /// The paths that a scan of the internal memory finds, below it.
  Lines scan(bool skipNoMedia = true) { return pathsOf(service->subpathsAtDisk(0, 0, skipNoMedia)); }
  Lines pathsOf(const MaybeArray& found) const {
    if (!found) return {"nil"};
    Lines paths;
    for (const Value& entry : found->snapshot()) {
      const std::string path = entry.dictionary()->string(key::kFilePath).value_or("(none)");
      paths.push_back(path.starts_with(internal + "/") ? path.substr(internal.size() + 1) : path);
    }
    return paths;
  }
  void put(const std::string& relative) { sandbox.file("internal/" + relative, "la"); }

  std::shared_ptr<ListingFileSystem> listing = std::make_shared<ListingFileSystem>(surroundings.files);
};

TEST_F(DeviceScan, DescribesEachFileByPathNameAndSize) {
  sandbox.file("internal/Music/a.mp3", std::string(5000, 'x'));
  const auto found = service->subpathsAtDisk(0, 0, true);
  ASSERT_TRUE(found);
  ASSERT_EQ(found->count(), 1u);
  EXPECT_EQ(
      typed(*found->at(0).dictionary()),
      (Lines{"FileName: text a.mp3", "FilePath: text " + internal + "/Music/a.mp3", "FileSize: u64 5000"}));
}

TEST_F(DeviceScan, FindsTheSameOnTheSystemsOwnFiles) {
  for (const char* name : {"b/x", "b/deep/y", "a/z", "top", "a/.hidden", ".cache/h"}) put(name);
  surroundings.environment.fileSystem = posixFileSystem();
  service = surroundings.makeService();
  service->addDiskInformation(disk(1, internal));
  Lines found = scan();
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, (Lines{"a/z", "b/deep/y", "b/x", "top"}));
  EXPECT_EQ(scan(false).size(), 6u);
  EXPECT_EQ(service->subpathsAtDisk(0, 0, true)->at(0).dictionary()->get(key::kFileSize).intValue(), 2);
}

TEST_F(DeviceScan, GoesLevelByLevel) {
  for (const char* name : {"b/x", "b/deep/y", "a/z", "top", "a/deep/w"}) put(name);
  EXPECT_EQ(scan(), (Lines{"top", "a/z", "b/x", "a/deep/w", "b/deep/y"}));
}

TEST_F(DeviceScan, GivesNilForAVolumeWithoutAFile) {
  sandbox.folder("internal/Music/Empty");
  EXPECT_FALSE(service->subpathsAtDisk(0, 0, true));
  EXPECT_FALSE(service->subpathsAtDisk(0, 0, false));
}

TEST_F(DeviceScan, GivesTheSameWhateverItsFirstArgument) {
  put("a.mp3");
  for (uint32_t unused : {0u, 1u, 0xffffffffu}) {
    EXPECT_EQ(pathsOf(service->subpathsAtDisk(unused, 0, true)), Lines{"a.mp3"});
  }
}

TEST_F(DeviceScan, GivesNilForAnUnknownVolumeAndOneWithoutAPath) {
  service->addDiskInformation(Dictionary{{key::kDiskType, 2}});
  EXPECT_FALSE(service->subpathsAtDisk(0, 2, true));
  EXPECT_FALSE(service->subpathsAtDisk(0, 3, true));
}

TEST_F(DeviceScan, GivesNilOnceReleasedAndSaysSo) {
  put("a.mp3");
  service->exitServiceThread();
  expectLine(surroundings, 1, "-[UMSService subpathsAtDisk:diskIndex:skipNoMedia:]",
             "Device is not connected. Processing is Stop", [&] { EXPECT_EQ(scan(), Lines{"nil"}); });
  log.clear();
  EXPECT_FALSE(service->subpathsAtDisk(0, 9, true));  // an unknown volume is the first thing to be looked at
  EXPECT_FALSE(log.has("Device is not connected. Processing is Stop"));
}

TEST_F(DeviceScan, PassesOverHiddenEntriesWithTheFlagOnly) {
  for (const char* name : {".thumbs/a.jpg", ".hidden.jpg", "DCIM/.trash/b.jpg", "DCIM/c.jpg"}) put(name);
  EXPECT_EQ(scan(true), Lines{"DCIM/c.jpg"});
  EXPECT_EQ(scan(false), (Lines{".hidden.jpg", ".thumbs/a.jpg", "DCIM/c.jpg", "DCIM/.trash/b.jpg"}));
}

TEST_F(DeviceScan, LosesTheFilesOfAMarkedFolderButNotTheFoldersListedBeforeTheMarker) {
  for (const char* name : {"Marked/A-before/x", "Marked/A-file", "Marked/z-after/y", "Marked/z-file", "top"})
    put(name);
  put("Marked/M.NOMEDIA");
  listing->onList = [](const std::string&, auto& entries) {
    for (auto& entry : entries) {
      if (entry.name == "M.NOMEDIA") entry.name = ".NOMEDIA";  // between the folders
    }
  };
  EXPECT_EQ(scan(true), (Lines{"top", "Marked/A-before/x"}));
}

TEST_F(DeviceScan, ListsAMarkerLikeAnyFileWithoutTheFlag) {
  put("Music/.nomedia");
  put("Music/a.mp3");
  EXPECT_EQ(scan(false), (Lines{"Music/.nomedia", "Music/a.mp3"}));
}

TEST_F(DeviceScan, TakesAFolderOfTheMarkersNameForAMarker) {
  put("Music/.NoMedia/inside");
  put("Music/a.mp3");
  EXPECT_EQ(scan(true), Lines{"nil"});
}

TEST_F(DeviceScan, OfAFolderGivenSkipsMarkedFoldersUnlessToldOtherwise) {
  put("Music/.nomedia");
  put("Music/a.mp3");
  put("b.mp3");
  EXPECT_EQ(pathsOf(service->fileScan(internal)), Lines{"b.mp3"});
  EXPECT_EQ(pathsOf(service->fileScan(internal, false)), (Lines{"b.mp3", "Music/.nomedia", "Music/a.mp3"}));
  EXPECT_FALSE(service->fileScan(sandbox.at("missing")));
  EXPECT_FALSE(service->fileScan(internal + "/b.mp3"));
  EXPECT_FALSE(service->fileScan(std::nullopt));
}

TEST_F(DeviceScan, JoinsPathsWithoutTidyingThem) {
  put("a.mp3");
  EXPECT_EQ(service->fileScan(internal + "/")->at(0).dictionary()->string(key::kFilePath),
            internal + "//a.mp3");
}

TEST_F(DeviceScan, ListsEachFolderOnce) {
  for (const char* name : {"a/x", "b/y", "b/c/z"}) put(name);
  const size_t before = files.count(FileCall::List);
  scan();
  EXPECT_EQ(files.count(FileCall::List) - before, 4u);
}

// -------------------------------------------------------------------- bad input

TEST_F(DeviceScan, NeverEntersALinkToAFolder) {
  sandbox.file("elsewhere/x.mp3", "la");
  put("Music/a.mp3");
  ASSERT_EQ(::symlink(internal.c_str(), (internal + "/Music/up").c_str()), 0);
  ASSERT_EQ(::symlink("self", (internal + "/self").c_str()), 0);
  ASSERT_EQ(::symlink(sandbox.at("elsewhere").c_str(), (internal + "/out").c_str()), 0);
  for (bool typesAreTold : {true, false}) {
    listing->onList = [=](const std::string&, auto& entries) {
      for (auto& entry : entries) {
        if (!typesAreTold) entry.type = FileType::Unknown;
      }
    };
    EXPECT_EQ(scan(true), Lines{"Music/a.mp3"});
    EXPECT_EQ(scan(false), Lines{"Music/a.mp3"});
  }
}

TEST_F(DeviceScan, ListsALinkToAFileWithTheFilesSize) {
  const std::string real = sandbox.file("elsewhere/x.mp3", "lalala");
  ASSERT_EQ(::symlink(real.c_str(), (internal + "/link.mp3").c_str()), 0);
  ASSERT_EQ(::symlink("nowhere", (internal + "/dangling.mp3").c_str()), 0);
  EXPECT_EQ(scan(), Lines{"link.mp3"});
  EXPECT_EQ(
      service->subpathsAtDisk(0, 0, true)->at(0).dictionary()->get(key::kFileSize).unsignedLongLongValue(),
      6u);
}

TEST_F(DeviceScan, VisitsAFolderOnceThatADamagedFileSystemShowsTwice) {
  put("Music/a.mp3");
  listing->onList = [&](const std::string& folder, auto& entries) {
    if (folder == internal) entries.push_back(entries.front());
    entries.push_back({"", FileType::Unknown});
    if (folder.ends_with("Music")) entries.push_back({"..", FileType::Directory});  // a loop
  };
  EXPECT_EQ(scan(), Lines{"Music/a.mp3"});
  EXPECT_EQ(scan(false), Lines{"Music/a.mp3"});
}

TEST_F(DeviceScan, ListsFifosAndDeviceNodesWithoutOpeningThem) {
  ASSERT_EQ(::mkfifo((internal + "/fifo.mp3").c_str(), 0666), 0);
  Lines expected{"fifo.mp3"};
  if (::mknod((internal + "/node.mp3").c_str(), S_IFCHR | 0666, makedev(1, 5)) == 0)
    expected.push_back("node.mp3");
  EXPECT_EQ(scan(), expected);
  EXPECT_EQ(files.count(FileCall::OpenForReading), 0u);
}

TEST_F(DeviceScan, TakesAFolderThatCannotBeListedForAnEmptyOne) {
  put("Locked/a.mp3");
  put("Open/b.mp3");
  WithoutRootPowers powerless;
  ASSERT_EQ(::chmod((internal + "/Locked").c_str(), 0), 0);
  EXPECT_EQ(scan(), Lines{"Open/b.mp3"});
  ASSERT_EQ(::chmod((internal + "/Locked").c_str(), 0755), 0);
}

TEST_F(DeviceScan, ListsAFileWhoseAttributesCannotBeReadWithNoSize) {
  put("a.mp3");
  files.failAlways(FileCall::Attributes, "a.mp3", EIO);
  const auto found = service->subpathsAtDisk(0, 0, true);
  EXPECT_EQ(pathsOf(found), Lines{"a.mp3"});
  EXPECT_EQ(found->at(0).dictionary()->get(key::kFileSize).unsignedLongLongValue(), 0u);
}

TEST_F(DeviceScan, PassesOverAFileThatIsGoneMeanwhile) {
  put("a.mp3");
  put("b.mp3");
  files.failAlways(FileCall::Attributes, "a.mp3", ENOENT);
  EXPECT_EQ(scan(), Lines{"b.mp3"});
}

TEST_F(DeviceScan, TakesNamesThatAreNoTextAsTheyAre) {
  put("M\xff\xfe/\xc3.mp3");
  EXPECT_EQ(scan(), Lines{"M\xff\xfe/\xc3.mp3"});
}

TEST_F(DeviceScan, EndsWherePathsBecomeTooLong) {
  // A tree deeper than a path can say, built step by step from within.
  const std::string name(250, 'd');
  int folder = ::open(internal.c_str(), O_RDONLY | O_DIRECTORY);
  for (int depth = 0; depth < 20; ++depth) {
    ASSERT_EQ(::mkdirat(folder, name.c_str(), 0777), 0);
    const int below = ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
    const int file = ::openat(below, "x.mp3", O_WRONLY | O_CREAT, 0666);
    ASSERT_GE(file, 0);
    ::close(file);
    ::close(folder);
    folder = below;
  }
  ::close(folder);
  const Lines found = scan();
  EXPECT_GE(found.size(), 14u);
  EXPECT_LT(found.size(), 20u);
  ASSERT_TRUE(service->deleteFolder(internal + "/" + name));
}

TEST_F(DeviceScan, RunsBesideChanges) {
  for (int i = 0; i < 50; ++i) put("Music/" + std::to_string(i) + ".mp3");
  std::thread changing([&] {
    for (int i = 0; i < 50; ++i) ::unlink((internal + "/Music/" + std::to_string(i) + ".mp3").c_str());
  });
  for (int i = 0; i < 20; ++i) scan();
  changing.join();
  EXPECT_EQ(scan(), Lines{"nil"});
}

// -------------------------------------------------------------------- hidden paths

TEST_F(DeviceScan, CallsAPathHiddenWhenAnyComponentIs) {
  EXPECT_TRUE(service->isHiddenFile("/Volumes/Card/DCIM/.trash/x.jpg"));
  EXPECT_TRUE(service->isHiddenFile("/Volumes/Card/.x.jpg"));
  EXPECT_TRUE(service->isHiddenFile(".x/y"));
  EXPECT_FALSE(service->isHiddenFile("/Volumes/Card/DCIM/x.jpg"));
  EXPECT_FALSE(service->isHiddenFile("a.b/c.d/"));
  EXPECT_FALSE(service->isHiddenFile(""));
  EXPECT_FALSE(service->isHiddenFile("/"));
  EXPECT_FALSE(service->isHiddenFile(std::nullopt));
}

}  // namespace
}  // namespace umsservice::testing
