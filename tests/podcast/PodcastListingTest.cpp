#include <cerrno>
#include <filesystem>

#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

constexpr auto kListingMethod = "-[UMSService umsPodcastXmlData:]";

class PodcastListing : public PodcastTest {
 protected:
  const std::string news = podcasts + "/News";
  const std::string index = news + "/News.xml";

  void putThreeEpisodes() {
    copy({channel("News", {episode("1.mp3"), episode("2.mp3"), episode("3.mp3")})});
    forget();
  }
  MaybeDictionary read() { return service->umsPodcastXmlData(index); }
  static Texts files(const MaybeDictionary& podcast) { return fieldOf(podcast, "FilePath"); }
};

TEST_F(PodcastListing, GivesFullPathsAndLeavesAnIndexAloneThatIsInOrder) {
  putThreeEpisodes();
  const std::string before = bytesOf(index);
  EXPECT_EQ(files(read()), (Texts{news + "/1.mp3", news + "/2.mp3", news + "/3.mp3"}));
  EXPECT_EQ(bytesOf(index), before);
  EXPECT_EQ(surroundings.files->count(FileCall::Replace), 1u);  // the copy's
}

TEST_F(PodcastListing, DropsAnEpisodeWhoseFileIsGoneFromTheIndexToo) {
  putThreeEpisodes();
  std::filesystem::remove(news + "/2.mp3");
  EXPECT_EQ(files(read()), (Texts{news + "/1.mp3", news + "/3.mp3"}));
  EXPECT_EQ(files(indexOf("News")), (Texts{"1.mp3", "3.mp3"}));
  EXPECT_EQ(treeOf(news), (Texts{"1.mp3", "3.mp3", "News.xml"}));
}

TEST_F(PodcastListing, ShowsTheChannelsOfAVolume) {
  putThreeEpisodes();
  copy({channel("Arts", {episode("4.mp3")})});
  sandbox.file("internal/Podcast/readme.txt", "no index");
  MaybeArray listed = service->fileInformationList(0, kMediaPodcast, 0);
  ASSERT_TRUE(listed);
  Texts titles;
  for (const Value& element : listed->snapshot()) titles.push_back(*element.dictionary()->string("Title"));
  std::sort(titles.begin(), titles.end());
  EXPECT_EQ(titles, (Texts{"Arts", "News"}));
}

TEST_F(PodcastListing, WritesAnEmptyChannelInPlaceOfADamagedIndexAndKeepsItsBytes) {
  for (const std::string& damaged : {std::string("<channel><Title>"), std::string("<rss/>"), std::string()}) {
    std::filesystem::remove_all(news);
    sandbox.file("internal/Podcast/News/News.xml", damaged);
    EXPECT_FALSE(read());
    EXPECT_EQ(bytesOf(index + ".damaged"), damaged);
    auto empty = indexOf("News");
    ASSERT_TRUE(empty);
    EXPECT_EQ(files(empty), Texts{});
    EXPECT_EQ(empty->count(), 14u);
    EXPECT_EQ(empty->get("Title").kind(), Value::Kind::Null);
    EXPECT_TRUE(read());
    EXPECT_EQ(treeOf(news), (Texts{"News.xml", "News.xml.damaged"}));
  }
}

TEST_F(PodcastListing, KeepsAnIndexThatIsTooLongToBeRead) {
  sandbox.file("internal/Podcast/News/News.xml", "<channel/>");
  std::filesystem::resize_file(index, (size_t{32} << 20) + 1);
  EXPECT_FALSE(read());
  EXPECT_EQ(std::filesystem::file_size(index + ".damaged"), (size_t{32} << 20) + 1);
  EXPECT_TRUE(read());
}

TEST_F(PodcastListing, WritesTheIndexOfTheFolderWhateverFileWasRead) {
  putThreeEpisodes();
  std::filesystem::rename(index, news + "/old.xml");
  EXPECT_EQ(files(service->umsPodcastXmlData(news + "/old.xml")).size(), 3u);
  EXPECT_EQ(files(indexOf("News")), (Texts{"1.mp3", "2.mp3", "3.mp3"}));
  sandbox.file("internal/Podcast/Arts/stray.xml", "no index");
  EXPECT_FALSE(service->umsPodcastXmlData(podcasts + "/Arts/stray.xml"));
  EXPECT_EQ(files(indexOf("Arts")), Texts{});
  EXPECT_EQ(treeOf(podcasts + "/Arts"), (Texts{"Arts.xml", "stray.xml"}));
}

TEST_F(PodcastListing, KeepsTheFoldersIndexBesideWhenAnotherOneTakesItsPlace) {
  putThreeEpisodes();
  const std::string before = bytesOf(index);
  sandbox.file("internal/Podcast/News/old.xml", "<channel><Title>Old</Title></channel>");
  EXPECT_TRUE(service->umsPodcastXmlData(news + "/old.xml"));
  EXPECT_EQ(indexOf("News")->string("Title"), "Old");
  EXPECT_EQ(bytesOf(index + ".damaged"), before);
}

TEST_F(PodcastListing, AStrayFileThatIsNoIndexDoesNotCostTheChannelItsOwn) {
  putThreeEpisodes();
  const std::string before = bytesOf(index);
  for (const char* stray : {"._News.xml", "notes.xml"}) {
    sandbox.file("internal/Podcast/News/" + std::string(stray), "no index");
    EXPECT_FALSE(service->umsPodcastXmlData(news + "/" + stray));
  }
  EXPECT_EQ(bytesOf(index), before);
  EXPECT_EQ(service->fileInformationList(0, kMediaPodcast, 0)->count(), 1u);
}

TEST_F(PodcastListing, TakesWhatIsNoFileOfTheChannelForGone) {
  sandbox.file("internal/secret.mp3", "secret");
  sandbox.folder("internal/Podcast/News/folder");
  sandbox.file("internal/Podcast/News/sub/5.mp3", "five");
  std::string posts;
  for (const std::string& path :
       std::vector<std::string>{"../../secret.mp3", "", "folder", ".", "sub/5.mp3", std::string(300, 'x')})
    posts += "<Post><Url>" + path + "</Url><FilePath>" + path + "</FilePath></Post>";
  sandbox.file("internal/Podcast/News/News.xml",
               "<channel>" + posts + "<Post><Url>pathless</Url></Post></channel>");
  EXPECT_EQ(files(read()), Texts{news + "/sub/5.mp3"});
  EXPECT_EQ(files(indexOf("News")), Texts{"sub/5.mp3"});
}

TEST_F(PodcastListing, DropsNothingWhenTheFilesCannotBeLookedAt) {
  putThreeEpisodes();
  const std::string before = bytesOf(index);
  surroundings.files->setFault([](FileCall call, const std::string& path) {
    return call == FileCall::Attributes && path.ends_with(".mp3") ? EIO : 0;
  });
  EXPECT_EQ(read()->get("children").array()->count(), 3u);
  EXPECT_EQ(bytesOf(index), before);
}

TEST_F(PodcastListing, DropsNothingWhenTheDeviceHasGoneInTheMeantime) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 512 * 1024);
  putThreeEpisodes();
  surroundings.files->setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Attributes && path.ends_with("/1.mp3")) volume.vanish();
    return 0;
  });
  EXPECT_EQ(files(read()), (Texts{news + "/1.mp3", news + "/2.mp3", news + "/3.mp3"}));
  EXPECT_EQ(treeOf(internal), Texts{});
}

TEST_F(PodcastListing, DropsNothingWhenAnotherFolderHasTakenThePlace) {
  putThreeEpisodes();
  const std::string before = bytesOf(index);
  surroundings.files->setFault([&, done = false](FileCall call, const std::string& path) mutable {
    if (!done && call == FileCall::Attributes && path.ends_with("/1.mp3")) {
      done = true;
      std::filesystem::rename(news, podcasts + "/away");
      std::filesystem::create_directory(news);
    }
    return 0;
  });
  EXPECT_EQ(read()->get("children").array()->count(), 3u);
  EXPECT_EQ(treeOf(news), Texts{});
  EXPECT_EQ(bytesOf(podcasts + "/away/News.xml"), before);
}

TEST_F(PodcastListing, LeavesAnIndexThatSomebodyElseHasWrittenInTheMeantime) {
  putThreeEpisodes();
  std::filesystem::remove(news + "/2.mp3");
  const std::string written = "<channel><Title>Written by the copy</Title></channel>";
  surroundings.files->setFault([&, done = false](FileCall call, const std::string& path) mutable {
    if (!done && call == FileCall::Attributes && path.ends_with("/3.mp3")) {
      done = true;
      sandbox.file("internal/Podcast/News/News.xml", written);
    }
    return 0;
  });
  EXPECT_EQ(files(read()).size(), 2u);
  EXPECT_EQ(bytesOf(index), written);
  EXPECT_EQ(treeOf(news), (Texts{"1.mp3", "3.mp3", "News.xml"}));
}

TEST_F(PodcastListing, WritesNothingOnceTheServiceIsReleased) {
  putThreeEpisodes();
  std::filesystem::remove(news + "/2.mp3");
  const std::string before = bytesOf(index);
  service->disconnectDevice("location-1");
  EXPECT_EQ(files(read()).size(), 2u);
  EXPECT_EQ(bytesOf(index), before);
}

TEST_F(PodcastListing, SaysWhatIsWrong) {
  expectLine(surroundings, 3, kListingMethod, "File Path is invalid.",
             [&] { EXPECT_FALSE(service->umsPodcastXmlData(std::nullopt)); });
  expectLine(surroundings, 3, kListingMethod,
             "Open File Handle is failed. File Path = $/internal/Podcast/News/News.xml",
             [&] { EXPECT_FALSE(read()); });
  EXPECT_EQ(treeOf(internal), Texts{});
}

TEST_F(PodcastListing, ReturnsAnIndexAsItIsThatWouldBeTooLongOnceWritten) {
  // Written, each ">" is four characters.
  std::string title(size_t{9} << 20, '>');
  sandbox.file("internal/Podcast/News/News.xml", "<channel><Title>" + title + "</Title></channel>");
  const std::string before = bytesOf(index);
  expectLine(surroundings, 3, kListingMethod, "Podcast Convert XML Data to Documents is fail.",
             [&] { EXPECT_EQ(read()->string("Title"), title); });
  EXPECT_EQ(bytesOf(index), before);
}

TEST_F(PodcastListing, LeavesEpisodesInAnIndexThatWouldBeTooLongOnceWritten) {
  std::string title(size_t{9} << 20, '>');
  sandbox.file("internal/Podcast/News/News.xml",
               "<channel><Title>" + title +
                   "</Title><Post><Url>gone</Url><FilePath>gone.mp3</FilePath></Post></channel>");
  EXPECT_EQ(fieldOf(read(), "Url"), Texts{"gone"}) << "as it was read";
}

TEST_F(PodcastListing, NeverWritesOutsideAChannelsFolder) {
  for (const char* path : {"no-folder.xml", "/no-such-index.xml", ""})
    EXPECT_FALSE(service->umsPodcastXmlData(path));
  sandbox.file("top.xml", "no index");
  std::string before = std::filesystem::current_path();
  std::filesystem::current_path(sandbox.path());
  EXPECT_FALSE(service->umsPodcastXmlData("top.xml"));
  std::filesystem::current_path(before);
  EXPECT_FALSE(exists("/.xml"));
}

}  // namespace
}  // namespace umsservice::testing
