#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "LogExpectations.h"

namespace umsservice::testing {
namespace {

using Action = FileError::Action;
using FolderOperations = DeviceTest;

TEST_F(FolderOperations, TellWhetherAPathExistsAndWhetherItIsAFolder) {
  const std::string file = sandbox.file("card/a.mp3", "la");
  bool isFolder = true;
  EXPECT_TRUE(service->fileExistsAtPath(file, &isFolder));
  EXPECT_FALSE(isFolder);
  EXPECT_TRUE(service->fileExistsAtPath(card, &isFolder));
  EXPECT_TRUE(isFolder);
  EXPECT_FALSE(service->fileExistsAtPath(sandbox.at("missing"), &isFolder));
  EXPECT_TRUE(service->fileExistsAtPath(card, nullptr));
  ASSERT_EQ(::symlink(card.c_str(), sandbox.at("link").c_str()), 0);
  EXPECT_TRUE(service->fileExistsAtPath(sandbox.at("link"), &isFolder));
  EXPECT_TRUE(isFolder);
  ASSERT_EQ(::symlink("nowhere", sandbox.at("dangling").c_str()), 0);
  EXPECT_FALSE(service->fileExistsAtPath(sandbox.at("dangling"), &isFolder));
}

TEST_F(FolderOperations, FrameTheExistenceTestInTheLog) {
  constexpr auto kMethod = "-[UMSService fileExistsAtPath:isDirectory:]";
  bool isFolder = false;
  expectLine(surroundings, 7, kMethod, "ENTER", [&] { service->fileExistsAtPath(card, &isFolder); });
  expectLine(surroundings, 7, kMethod, "EXIT", [&] { service->fileExistsAtPath(card, &isFolder); });
  expectLine(surroundings, 3, kMethod, "File path is nil",
             [&] { EXPECT_FALSE(service->fileExistsAtPath(std::nullopt, &isFolder)); });
}

TEST_F(FolderOperations, GiveTheSizeOfAFile) {
  EXPECT_EQ(service->fileSizeAtDevice(sandbox.patternFile("card/a.mp3", 4321)), 4321u);
  EXPECT_EQ(service->fileSizeAtDevice(std::nullopt), 0u);
  const std::string missing = sandbox.at("missing");
  expectLine(
      surroundings, 3, "-[UMSService fileSizeAtDevice:]",
      plain(surroundings, "Get Attributes Error : [" + errorText(ENOENT, Action::Reading, missing) + "]"),
      [&] { EXPECT_EQ(service->fileSizeAtDevice(missing), 0u); });
}

TEST_F(FolderOperations, DeleteAFileOrAFolderWithEverythingInIt) {
  uint32_t error = 77;
  EXPECT_TRUE(service->deletefileAtDevice(sandbox.file("card/a.mp3", "la"), &error));
  EXPECT_EQ(error, 0u);
  sandbox.file("card/folder/deep/b.mp3", "la");
  EXPECT_TRUE(service->deletefileAtDevice(card + "/folder", nullptr));
  EXPECT_EQ(treeOf(card).size(), 0u);
}

TEST_F(FolderOperations, SayWhyAFileCannotBeDeleted) {
  uint32_t error = 77;
  EXPECT_FALSE(service->deletefileAtDevice(std::nullopt, &error));
  EXPECT_EQ(error, kErrorDeleteFailed);
  error = 77;
  const std::string missing = sandbox.at("missing");
  expectLine(
      surroundings, 3, "-[UMSService deletefileAtDevice:error:]",
      plain(surroundings, "Delete file is Failed. error = " + errorText(ENOENT, Action::Writing, missing)),
      [&] { EXPECT_FALSE(service->deletefileAtDevice(missing, &error)); });
  EXPECT_EQ(error, kErrorDeleteFailed);
}

TEST_F(FolderOperations, DeleteAFolder) {
  sandbox.file("card/folder/a.mp3", "la");
  EXPECT_TRUE(service->deleteFolder(card + "/folder"));
  EXPECT_EQ(treeOf(card).size(), 0u);
  EXPECT_FALSE(service->deleteFolder(std::nullopt));
  expectLine(surroundings, 3, "-[UMSService deleteFolder:]", "Delete folder is failed.",
             [&] { EXPECT_FALSE(service->deleteFolder(card + "/folder")); });
}

TEST_F(FolderOperations, DeleteALinkAndNotWhatItLeadsTo) {
  sandbox.file("card/kept/a.mp3", "la");
  ASSERT_EQ(::symlink((card + "/kept").c_str(), (internal + "/link").c_str()), 0);
  EXPECT_TRUE(service->deleteFolder(internal + "/link"));
  EXPECT_EQ(bytesOf(card + "/kept/a.mp3"), "la");
}

TEST_F(FolderOperations, MakeAFolderWithAllAboveIt) {
  EXPECT_TRUE(service->createFolder(card + "/a/b/c"));
  EXPECT_TRUE(service->createFolder(card + "/a/b/c"));
  EXPECT_EQ(treeOf(card), (std::vector<std::string>{"a/", "a/b/", "a/b/c/"}));
  EXPECT_FALSE(service->createFolder(std::nullopt));
}

TEST_F(FolderOperations, NeverMakeAFolderWhereAFileStands) {
  const std::string file = sandbox.file("card/a", "la");
  expectLine(surroundings, 1, "-[UMSService createFolder:]",
             plain(surroundings,
                   "Create download folder is filed. Error = " + errorText(EEXIST, Action::Writing, file)),
             [&] { EXPECT_FALSE(service->createFolder(file)); });
  EXPECT_FALSE(service->createFolder(file + "/below"));
  EXPECT_FALSE(service->createFolder(""));
  EXPECT_EQ(bytesOf(file), "la");
}

TEST_F(FolderOperations, AreRefusedByTheSystemWithoutHarm) {
  const std::string file = sandbox.file("card/locked/a.mp3", "la");
  ASSERT_EQ(::chmod((card + "/locked").c_str(), 0555), 0);
  {
    WithoutRootPowers asAPerson;
    uint32_t error = 0;
    EXPECT_FALSE(service->deletefileAtDevice(file, &error));
    EXPECT_EQ(error, kErrorDeleteFailed);
    EXPECT_FALSE(service->deleteFolder(card + "/locked"));
    EXPECT_FALSE(service->createFolder(card + "/locked/new"));
  }
  EXPECT_EQ(bytesOf(file), "la");
}

}  // namespace
}  // namespace umsservice::testing
