#include "ListingsTest.h"
#include "MediaListings.h"

namespace umsservice::testing {
namespace {

constexpr auto kPodcastListingMethod = "-[UMSService fileInformationList:mediaType:diskIndex:]";

/// Index files as a test says.
class FakePodcasts final : public PodcastSource {
 public:
  bool podcastXmlLists(const MaybeString& folder, MaybeArray& contents) const override {
    askedFolder = folder;
    contents = entries;
    return succeeds;
  }
  MaybeDictionary umsPodcastXmlData(const MaybeString& path) const override {
    askedPaths.push_back(path.value_or("(nil)"));
    if (path->ends_with("broken.xml")) return std::nullopt;
    return Dictionary{{"channel", *path}};
  }

  bool succeeds = true;
  MaybeArray entries;
  mutable MaybeString askedFolder;
  mutable Lines askedPaths;
};

/// The podcast branches, in the room itself.
class PodcastListing : public ListingsTest {
 protected:
  PodcastListing() {
    context.volumes.addDiskInformation(disk(1, internal));
    context.volumes.addDiskInformation(disk(2, card));
  }
  MaybeArray list(uint32_t diskIndex = 0) { return listings.fileInformationList(kMediaPodcast, diskIndex); }

  ServiceContext context{surroundings.environment, "<a service>", "location-1"};
  FolderOperations folders{context};
  SingleFile sizes{context, folders};
  FakePodcasts podcasts;
  MediaListings listings{context, folders, sizes, podcasts};
};

TEST_F(PodcastListing, GivesTheDictionaryOfEachIndexFileOfTheDefaultFolder) {
  podcasts.entries = Array{"A/A.xml", "B.XML", "broken.xml", ".hidden/C.xml"};
  EXPECT_EQ(texts(list(), "channel"), (Lines{internal + "/Podcast/A/A.xml", internal + "/Podcast/B.XML",
                                             internal + "/Podcast/.hidden/C.xml"}));
  EXPECT_EQ(podcasts.askedFolder, internal + "/Podcast");
}

TEST_F(PodcastListing, AsksTheProfileForTheFolderByTheVolumesType) {
  surroundings.profile->podcastExternal = "/Casts";
  podcasts.entries = Array{"A.xml"};
  EXPECT_EQ(texts(list(1), "channel"), Lines{card + "/Casts/A.xml"});
}

TEST_F(PodcastListing, MayBeEmpty) {
  podcasts.entries = Array();
  EXPECT_EQ(list()->count(), 0u);
  podcasts.entries.reset();
  EXPECT_EQ(list()->count(), 0u);
}

TEST_F(PodcastListing, GivesNilWhenTheFolderCannotBeListedAndSaysSo) {
  podcasts.succeeds = false;
  expectLine(surroundings, 1, kPodcastListingMethod, "UmsPodcastXmlList is failed",
             [&] { EXPECT_FALSE(list()); });
}

TEST_F(PodcastListing, GivesNilForAnUnknownVolume) {
  EXPECT_FALSE(list(2));
  EXPECT_FALSE(podcasts.askedFolder);
}

TEST_F(PodcastListing, SaysWhatItPassesOver) {
  auto again = [&] { EXPECT_EQ(list()->count(), 0u); };
  podcasts.entries = Array{Null{}};
  expectLine(surroundings, 1, kPodcastListingMethod, "Podcast File Path is nil. Next Podcast File search",
             again);
  podcasts.entries = Array{"Channel"};
  expectLine(surroundings, 3, kPodcastListingMethod, "This File is not Podcast File.", again);
  podcasts.entries = Array{"Channel/episode.mp3"};
  expectLine(surroundings, 3, kPodcastListingMethod, "This is not podcast XML file. File Path = @", again);
  podcasts.entries = Array{std::string("a\0b.xml", 7)};
  expectLine(surroundings, 3, kPodcastListingMethod, "Consist of XML Path is failed.", again);
  EXPECT_EQ(podcasts.askedPaths, Lines{});
}

TEST_F(PodcastListing, IsAGroupOfTheListingOfAllTypes) {
  put("internal/Podcast/A/A.xml");
  put("internal/Podcast/broken.xml");
  put("internal/Podcast/A/episode.mp3");
  tags->knows = [](const std::string& path) { return !path.ends_with("untagged.xml"); };
  put("internal/untagged.xml");
  const auto groups = listings.fileInformationListForAllMediaType();
  ASSERT_EQ(groups->count(), 8u);
  EXPECT_EQ(texts(groups->at(3).dictionary()->get("ContentMediaTag").array(), "channel"),
            Lines{internal + "/Podcast/A/A.xml"});
  EXPECT_EQ(texts(groups->at(0).dictionary()->get("ContentMediaTag").array(), key::kFileName),
            Lines{"episode.mp3"});
  EXPECT_EQ(podcasts.askedPaths, (Lines{internal + "/Podcast/A/A.xml", internal + "/Podcast/broken.xml"}));
}

}  // namespace
}  // namespace umsservice::testing
