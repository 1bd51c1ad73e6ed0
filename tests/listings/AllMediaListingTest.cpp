#include <filesystem>

#include "ListingsTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kAllMediaMethod = "-[UMSService fileInformationListForAllMediaType:]";

/// The listing of every type on every volume.
class AllMediaListing : public ListingsTest {
 protected:
  /// "INDEX TYPE: PATHS" for each group; nothing behind the colon when there is no tag list.
  Lines groups() {
    const auto found = service->fileInformationListForAllMediaType(0);
    if (!found) return {"nil"};
    Lines lines;
    for (const Value& element : found->snapshot()) {
      const Dictionary group = *element.dictionary();
      std::string line =
          group.get("DiskIndex").description() + " " + group.get("ContentMediaType").description() + ":";
      if (auto files = group.get("ContentMediaTag").array()) {
        for (const std::string& path : paths(*files)) line += " " + path;
      }
      lines.push_back(line);
    }
    return lines;
  }
  void putImage(const std::string& relative, size_t size) { sandbox.file(relative, std::string(size, 'x')); }
};

TEST_F(AllMediaListing, GivesFourGroupsForEachVolume) {
  EXPECT_EQ(groups(), (Lines{"0 1:", "0 2:", "0 3:", "0 4:", "1 1:", "1 2:", "1 3:", "1 4:"}));
  const Dictionary group = *service->fileInformationListForAllMediaType(0)->at(0).dictionary();
  EXPECT_EQ(typed(group), (Lines{"ContentMediaType: u32 1", "DiskIndex: u32 0"}));
}

TEST_F(AllMediaListing, PutsEachFileIntoTheGroupOfItsVolumeAndType) {
  for (const char* name :
       {"internal/a.mp3", "internal/deep/b.WAV", "internal/c.mp4", "card/d.mp3", "card/e.txt"})
    put(name);
  putImage("card/f.jpg", 5001);
  EXPECT_EQ(groups(), (Lines{"0 1: $/internal/a.mp3 $/internal/deep/b.WAV", "0 2:", "0 3: $/internal/c.mp4",
                             "0 4:", "1 1: $/card/d.mp3", "1 2: $/card/f.jpg", "1 3:", "1 4:"}));
}

TEST_F(AllMediaListing, CollectsTheReadersOwnDictionariesAndTakesTheCoverFromMusicOnly) {
  std::map<std::string, Dictionary> given;
  tags->answer = [&](const std::string& path) { return given.emplace(path, tagsOf(path)).first->second; };
  put("internal/a.mp3");
  put("internal/b.mp4");
  putImage("internal/c.jpg", 6000);
  const auto found = service->fileInformationListForAllMediaType(0);
  auto first = [&](size_t group) {
    return *found->at(group).dictionary()->get("ContentMediaTag").array()->at(0).dictionary();
  };
  EXPECT_TRUE(first(0).isSame(given.at(internal + "/a.mp3")));
  EXPECT_FALSE(first(0).contains("AlbumArt"));
  EXPECT_TRUE(first(1).contains("AlbumArt"));
  EXPECT_TRUE(first(2).contains("AlbumArt"));
  EXPECT_FALSE(first(0).contains(key::kDiskIndex));
}

TEST_F(AllMediaListing, LeavesOutThumbnailsHiddenAndMarkedFiles) {
  putImage("internal/small.jpg", 5000);
  putImage("internal/large.jpg", 5001);
  put("internal/.hidden/a.mp3");
  put("internal/Old/.nomedia");
  put("internal/Old/b.mp3");
  putImage("internal/unknown.png", 10);
  files.failAlways(FileCall::Attributes, "unknown.png", EIO);
  EXPECT_EQ(groups().at(0), "0 1:");
  EXPECT_EQ(groups().at(1), "0 2: $/internal/large.jpg $/internal/unknown.png");
}

TEST_F(AllMediaListing, SaysWhichFilesHaveNoTags) {
  put("internal/a.mp3");
  put("internal/b.xml");
  put("internal/c.txt");
  tags->answer = [](const std::string&) { return MaybeDictionary(); };
  auto again = [&] { EXPECT_EQ(groups().at(0), "0 1:"); };
  again();
  EXPECT_EQ(linesOf(surroundings, kAllMediaMethod), Lines(2, "Get Media File Tag Information is failed."));
  std::filesystem::remove(internal + "/b.xml");
  expectLine(surroundings, 3, kAllMediaMethod, "Get Media File Tag Information is failed.", again);
}

TEST_F(AllMediaListing, GivesNilWithoutAVolume) {
  service = surroundings.makeService();
  EXPECT_EQ(groups(), Lines{"nil"});
  service->addDiskInformation(disk(1, internal));
  service->addDiskInformation(disk(2, card));
  service->removeDiskInformation(service->diskInfoFromIndex(0));
  EXPECT_EQ(groups(), Lines{"nil"});  // the card alone keeps index 1
}

TEST_F(AllMediaListing, EndsAtTheFirstVolumeWithoutAPath) {
  service->addDiskInformation(Dictionary{{key::kDiskType, 2}});
  service->addDiskInformation(disk(2, sandbox.folder("third")));
  EXPECT_EQ(groups().size(), 8u);
  service = surroundings.makeService();
  service->addDiskInformation(Dictionary{{key::kDiskType, 1}});
  EXPECT_EQ(groups(), Lines{});
}

TEST_F(AllMediaListing, GivesNilOnceReleased) {
  put("internal/a.txt");
  service->exitServiceThread();
  EXPECT_EQ(groups(), Lines{"nil"});
}

TEST_F(AllMediaListing, GivesNilWhenReleasedWhileTagsAreRead) {
  put("internal/a.mp3");
  put("internal/b.mp3");
  size_t read = 0;
  tags->answer = [&](const std::string& path) {
    ++read;
    service->exitServiceThread();
    return tagsOf(path);
  };
  EXPECT_EQ(groups(), Lines{"nil"});
  EXPECT_EQ(read, 1u);
}

TEST_F(AllMediaListing, SurvivesTheLastReferenceGoingAwayWhileTagsAreRead) {
  put("internal/a.mp3");
  tags->answer = [&](const std::string& path) {
    service.reset();
    return tagsOf(path);
  };
  EXPECT_EQ(groups(), Lines{"nil"});
}

TEST_F(AllMediaListing, RunsBesideCopiesToTheDevice) {
  Array contents;
  for (int i = 0; i < 20; ++i) {
    const std::string name = std::to_string(i) + ".mp3";
    contents.append(content(sandbox.file("in/" + name, "la"), name));
  }
  ASSERT_TRUE(service->syncContents(7, contents, kMediaMusic, true));
  while (items.outcomes().size() < 20) EXPECT_EQ(groups().size(), 8u);
  EXPECT_EQ(service->fileNameList(0, kMediaMusic, 0)->count(), 20u);
}

// -------------------------------------------------------------------- single files

class MediaFileInfo : public ListingsTest {};

TEST_F(MediaFileInfo, OfADescriptionWithATitleNeverReadsTheFile) {
  tags->answer = [](const std::string&) -> MaybeDictionary { throw std::logic_error("no tags are read"); };
  const Dictionary given{{"Title", "Tune"}, {key::kFilePath, "/old"}, {"more", 1}};
  const auto info = service->mediaFileInfoFromDevice(given, "/new");
  ASSERT_TRUE(info);
  EXPECT_EQ(typed(*info), (Lines{"FilePath: text /new", "Title: text Tune", "more: i32 1"}));
  EXPECT_EQ(given.string(key::kFilePath), "/old");
}

TEST_F(MediaFileInfo, OfAnyOtherDescriptionIsReadFromTheFile) {
  EXPECT_EQ(service->mediaFileInfoFromDevice(Dictionary{{"more", 1}}, "/x/a.mp3")->string("Title"),
            "Title of a.mp3");
  EXPECT_EQ(service->mediaFileInfoFromDevice(std::nullopt, "/x/a.mp3")->string("Title"), "Title of a.mp3");
  tags->knows = [](const std::string&) { return false; };
  EXPECT_FALSE(service->mediaFileInfoFromDevice(Dictionary(), "/x/a.mp3"));
  EXPECT_FALSE(service->mediaFileInfoFromDevice(Dictionary(), std::nullopt));
}

class MediaContentCheck : public ListingsTest {
 protected:
  static constexpr auto kMethod = "-[UMSService checkMediaContent:filePath:diskType:mediaType:]";
};

TEST_F(MediaContentCheck, FindsTheDefaultFolderAnywhereInThePathInAnyLetterCase) {
  surroundings.profile->musicExternal = "/M\xc3\xbcsik";
  auto check = [&](const std::string& path, int32_t diskType) {
    return service->checkMediaContent("/Volumes/CARD", path, diskType, kMediaMusic);
  };
  EXPECT_TRUE(check("/Volumes/CARD/Music/a.mp3", 1));
  EXPECT_TRUE(check("/volumes/card/MUSIC/a.mp3", 1));
  EXPECT_TRUE(check("/backup/Volumes/CARD/Music-old", 1));
  EXPECT_FALSE(check("/Volumes/CARD/Mus", 1));
  EXPECT_TRUE(check("/Volumes/CARD/M\xc3\x9cSIK/a.mp3", 2));
  EXPECT_FALSE(check("/Volumes/CARD/Music/a.mp3", 2));
  EXPECT_FALSE(check("/Volumes/CARD/\xff", 2));
}

TEST_F(MediaContentCheck, NeedsBothPathsAndAFolder) {
  expectLine(surroundings, 3, kMethod, "Input File Path is nil.",
             [&] { EXPECT_FALSE(service->checkMediaContent(std::nullopt, "/x", 1, kMediaMusic)); });
  expectLine(surroundings, 3, kMethod, "Input File Path is nil.",
             [&] { EXPECT_FALSE(service->checkMediaContent("/x", std::nullopt, 1, kMediaMusic)); });
  expectLine(surroundings, 3, kMethod, "Get Default Path is failed",
             [&] { EXPECT_FALSE(service->checkMediaContent("/x", "/x/y", 1, 5)); });
}

}  // namespace
}  // namespace umsservice::testing
