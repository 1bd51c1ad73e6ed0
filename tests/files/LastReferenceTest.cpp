#include "LastReference.h"
#include "TransferTest.h"

namespace umsservice::testing {
namespace {

/// A host that lets go of its service while another of its threads is in a call: the call ends as it would
/// have, on a service that is still there for it.
class LastReference : public TransferTest {
 protected:
  LastReference() {
    surroundings.environment.fileSystem = listing;
    service = surroundings.makeService();
    service->addDiskInformation(disk(1, internal));
    watched = service;
    for (const char* path : {"internal/a.mp3", "internal/sub/b.mp3", "internal/sub/deep/c.mp3"})
      sandbox.file(path, "la");
    letGoWhileListing(*listing, service);
  }
  ~LastReference() override { EXPECT_TRUE(watched.expired()); }

  std::shared_ptr<ListingFileSystem> listing = std::make_shared<ListingFileSystem>(surroundings.files);
  std::weak_ptr<UMSService> watched;
};

size_t countOf(const MaybeArray& list) {
  return list ? list->count() : 0;
}

TEST_F(LastReference, GoesAwayInAScanOfADisk) {
  EXPECT_EQ(countOf(service->subpathsAtDisk(0, 0, true)), 3u);
}

TEST_F(LastReference, GoesAwayInAScanOfAFolder) {
  EXPECT_EQ(countOf(service->fileScan(internal + "/sub")), 2u);
}

TEST_F(LastReference, GoesAwayInADeepListing) {
  MaybeArray contents;
  EXPECT_TRUE(service->fileLists(0, internal, true, &contents));
  EXPECT_EQ(countOf(contents), 5u);
}

TEST_F(LastReference, GoesAwayInAListingOfOneFolder) {
  EXPECT_EQ(countOf(service->folderLists(internal)), 1u);
}

TEST_F(LastReference, GoesAwayInAFolderTree) {
  EXPECT_EQ(countOf(service->recursiveFolderLists(internal)), 3u);
}

TEST_F(LastReference, GoesAwayInTheFolderTreesOfTheDevice) {
  const MaybeArray trees = service->getDeviceAllFolderLists();
  ASSERT_EQ(countOf(trees), 1u);
  EXPECT_EQ(countOf(trees->at(0).dictionary()->get("folderLists").array()), 3u);
}

TEST_F(LastReference, GoesAwayWhileAFileIsRead) {
  letGoInCall(files, service, FileCall::Read);
  auto read = service->readFileData(internal + "/a.mp3");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->size(), 2u);
}

}  // namespace
}  // namespace umsservice::testing
