#include "LastReference.h"
#include "ListingsTest.h"

namespace umsservice::testing {
namespace {

/// A host that lets go of its service while another of its threads is in a listing: the listing ends on a
/// service that is still there for it.
class LastReferenceInListings : public ListingsTest {
 protected:
  LastReferenceInListings() {
    watched = service;
    for (const char* path : {"internal/Music/a.mp3", "internal/Music/b.mp3"}) put(path);
  }
  ~LastReferenceInListings() override { EXPECT_TRUE(watched.expired()); }

  void letGoWhileTagsAreRead() {
    tags->answer = [this](const std::string& path) {
      service.reset();
      return tagsOf(path);
    };
  }

  std::weak_ptr<UMSService> watched;
  const Lines both{"$/internal/Music/a.mp3", "$/internal/Music/b.mp3"};
};

TEST_F(LastReferenceInListings, GoesAwayWhileTheTagsOfAMediaTypeAreRead) {
  letGoWhileTagsAreRead();
  EXPECT_EQ(paths(service->fileInformationList(0, kMediaMusic, 0)), both);
}

TEST_F(LastReferenceInListings, GoesAwayWhileTheFoldersOfAMediaTypeAreListed) {
  letGoWhileListing(*listing, service);
  EXPECT_EQ(paths(service->fileInformationList(0, kMediaMusic, 0)), both);
}

TEST_F(LastReferenceInListings, GoesAwayWhileTheTagsOfExtensionsAreRead) {
  letGoWhileTagsAreRead();
  for (bool recursive : {true, false}) {
    service = surroundings.makeService();
    watched = service;
    EXPECT_EQ(paths(service->fileInformationList(internal + "/Music", Array{"mp3"}, recursive)), both);
  }
}

TEST_F(LastReferenceInListings, GoesAwayWhileTheFoldersOfExtensionsAreListed) {
  letGoWhileListing(*listing, service);
  EXPECT_EQ(paths(service->fileInformationList(internal + "/Music", Array{"mp3"})), both);
}

TEST_F(LastReferenceInListings, GoesAwayWhileTheFoldersOfANameListingAreListed) {
  letGoWhileListing(*listing, service);
  EXPECT_EQ(paths(service->fileNameList(0, kMediaMusic, 0)), Lines{"nil"});
}

}  // namespace
}  // namespace umsservice::testing
