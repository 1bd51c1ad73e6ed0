#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "LogExpectations.h"

namespace umsservice::testing {
namespace {

class DeleteFile : public DeviceTest {
 protected:
  bool remove(const MaybeString& path) {
    error = 77;
    return service->umsDeleteFile(7, path, &error);
  }
  uint64_t total(const MaybeArray& contents) { return service->totalMediaContentsSize(contents); }

  int32_t error = 77;
};

using MediaSizes = DeleteFile;

TEST_F(DeleteFile, RemovesAFileAndGivesNumberZero) {
  const std::string path = sandbox.file("internal/a.mp3", "la");
  EXPECT_TRUE(remove(path));
  EXPECT_EQ(error, 0);
  EXPECT_FALSE(exists(path));
}

TEST_F(DeleteFile, RemovesAFolderWithEverythingInIt) {
  sandbox.file("internal/folder/deep/a.mp3", "la");
  EXPECT_TRUE(remove(internal + "/folder"));
  EXPECT_EQ(treeOf(internal).size(), 0u);
}

TEST_F(DeleteFile, RemovesALinkAndNotWhatItLeadsTo) {
  sandbox.file("card/kept/a.mp3", "la");
  ASSERT_EQ(::symlink((card + "/kept").c_str(), (internal + "/link").c_str()), 0);
  EXPECT_TRUE(remove(internal + "/link"));
  EXPECT_FALSE(exists(internal + "/link"));
  EXPECT_EQ(bytesOf(card + "/kept/a.mp3"), "la");
}

TEST_F(DeleteFile, ThatIsNotThereFails) {
  const std::string path = internal + "/missing.mp3";
  EXPECT_FALSE(remove(path));
  EXPECT_EQ(static_cast<uint32_t>(error), kErrorDeleteFailed);
  EXPECT_FALSE(remove(std::nullopt));
  EXPECT_EQ(static_cast<uint32_t>(error), kErrorDeleteFailed);
  expectLine(surroundings, 3, "-[UMSService umsDeleteFile:srcPath:error:]",
             plain(surroundings,
                   "Delete file is Failed. error = " + errorText(ENOENT, FileError::Action::Writing, path)),
             [&] { remove(path); });
}

TEST_F(DeleteFile, ThatTheSystemRefusesStays) {
  const std::string path = sandbox.file("internal/locked/a.mp3", "la");
  ASSERT_EQ(::chmod((internal + "/locked").c_str(), 0555), 0);
  WithoutRootPowers asAPerson;
  EXPECT_FALSE(remove(path));
  EXPECT_EQ(static_cast<uint32_t>(error), kErrorDeleteFailed);
  EXPECT_EQ(bytesOf(path), "la");
}

TEST_F(MediaSizes, OfOneFileAreItsBytes) {
  EXPECT_EQ(service->mediaFileSize(sandbox.patternFile("a.mp3", 12'345)), 12'345u);
  const std::string sparse = sandbox.file("sparse.mp4", "");
  ASSERT_EQ(::truncate(sparse.c_str(), int64_t{5} << 30), 0);
  EXPECT_EQ(service->mediaFileSize(sparse), uint64_t{5} << 30);
}

TEST_F(MediaSizes, OfAMissingFileAreZeroAndALine) {
  const std::string path = sandbox.at("missing.mp3");
  expectLine(surroundings, 3, "-[UMSService mediaFileSize:]",
             plain(surroundings,
                   "Get Attributes Error : [" + errorText(ENOENT, FileError::Action::Reading, path) + "]"),
             [&] { EXPECT_EQ(service->mediaFileSize(path), 0u); });
  EXPECT_EQ(service->mediaFileSize(std::nullopt), 0u);
}

TEST_F(MediaSizes, OfItemsThatCarryThemNeverTouchTheDisk) {
  Array contents{Dictionary{{"FilePath", "/missing"}, {"FileSize", 100}}, Dictionary{{"FileSize", "250"}},
                 Dictionary{{"FileSize", uint64_t{7}}}};
  EXPECT_EQ(total(contents), 357u);
  EXPECT_EQ(files.count(FileCall::Attributes), 0u);
}

TEST_F(MediaSizes, AreCutTo32BitsWhereAnItemCarriesThem) {
  EXPECT_EQ(total(Array{Dictionary{{"FileSize", (uint64_t{1} << 32) + 5}}}), 5u);
  // The sum itself is not cut.
  Dictionary large{{"FileSize", 0xffffffffu}};
  EXPECT_EQ(total(Array{large, large}), 2 * uint64_t{0xffffffff});
}

TEST_F(MediaSizes, ComeFromTheFileWhereAnItemHasOnlyAPath) {
  const std::string path = sandbox.patternFile("a.mp3", 1000);
  EXPECT_EQ(total(Array{Dictionary{{"FilePath", path}}, Dictionary{{"FileName", "b"}}, Dictionary()}), 1000u);
  EXPECT_EQ(total(Array{Dictionary{{"FilePath", 3}}}), 0u);
}

TEST_F(MediaSizes, PassOverElementsThatAreNoDictionaries) {
  Array contents{Value(), "text", Null{}, Dictionary{{"FileSize", 4}}};
  EXPECT_EQ(total(contents), 4u);
  EXPECT_EQ(total(std::nullopt), 0u);
  EXPECT_EQ(total(Array()), 0u);
  expectLine(surroundings, 1, "-[UMSService totalMediaContentsSize:]",
             "Contents data is nil. Next data search", [&] { total(Array{Value()}); });
}

}  // namespace
}  // namespace umsservice::testing
