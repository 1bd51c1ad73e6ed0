#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "Sandbox.h"
#include "umsservice/FileSystem.h"

namespace umsservice::testing {
namespace {

class FileSystemChanges : public ::testing::Test {
 protected:
  std::string link(const std::string& relative, const std::string& target) {
    EXPECT_EQ(symlink(target.c_str(), sandbox.at(relative).c_str()), 0);
    return sandbox.at(relative);
  }
  static void expectFailure(const FileStatus& status, int number) {
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().systemNumber, number) << status.error().description();
    EXPECT_EQ(status.error().action, FileError::Action::Writing);
  }

  Sandbox sandbox;
  FileSystem& files = *posixFileSystem();
};

using Tree = std::vector<std::string>;

TEST_F(FileSystemChanges, MakeAFolderWithEveryMissingOneAboveIt) {
  EXPECT_TRUE(files.createFolders(sandbox.at("a/b/c")));
  EXPECT_TRUE(files.createFolders(sandbox.at("a/x//y/")));
  EXPECT_TRUE(files.createFolders(sandbox.at("a/b/../z")));
  EXPECT_EQ(treeOf(sandbox.path()), (Tree{"a/", "a/b/", "a/b/c/", "a/x/", "a/x/y/", "a/z/"}));
}

TEST_F(FileSystemChanges, AreContentWithFoldersThatExist) {
  sandbox.file("a/file", "kept");
  EXPECT_TRUE(files.createFolders(sandbox.at("a")));
  EXPECT_TRUE(files.createFolders(sandbox.at("a/")));
  EXPECT_TRUE(files.createFolders("/"));
  EXPECT_TRUE(files.createFolders(link("link", sandbox.at("a"))));
  EXPECT_TRUE(files.createFolders(sandbox.at("link/b")));
  EXPECT_EQ(bytesOf(sandbox.at("a/file")), "kept");
  EXPECT_TRUE(files.isFolder(sandbox.at("a/b")));
}

TEST_F(FileSystemChanges, MakeNoFolderWhereAPlainFileStands) {
  std::string file = sandbox.file("a/file", "kept");
  expectFailure(files.createFolders(file), EEXIST);
  expectFailure(files.createFolders(file + "/b"), ENOTDIR);
  expectFailure(files.createFolders(file + "/b/c"), ENOTDIR);
  EXPECT_EQ(bytesOf(file), "kept");
}

TEST_F(FileSystemChanges, MakeNoFolderThroughALinkThatLeadsNowhere) {
  link("dangling", sandbox.at("missing"));
  expectFailure(files.createFolders(sandbox.at("dangling")), EEXIST);
  expectFailure(files.createFolders(sandbox.at("dangling/b")), EEXIST);
  EXPECT_FALSE(exists(sandbox.at("missing")));
}

TEST_F(FileSystemChanges, SayWhyAFolderCannotBeMade) {
  std::string nul = sandbox.at(std::string("a\0b", 3));
  expectFailure(files.createFolders(""), EINVAL);
  expectFailure(files.createFolders(nul), EINVAL);
  expectFailure(files.createFolders(sandbox.at(std::string(256, 'x'))), ENAMETOOLONG);
  expectFailure(files.createFolders("/dev/null/a"), ENOTDIR);
  EXPECT_EQ(treeOf(sandbox.path()), Tree{});
}

TEST_F(FileSystemChanges, AreRefusedByAFolderThatMayNotBeWritten) {
  std::string file = sandbox.file("closed/sub/file", "kept");
  WithoutRootPowers powerless;
  ASSERT_EQ(chmod(sandbox.at("closed/sub").c_str(), 0500), 0);
  FileStatus made = files.createFolders(sandbox.at("closed/sub/new"));
  FileStatus moved = files.move(file, sandbox.at("moved"));
  FileStatus removed = files.remove(sandbox.at("closed"));
  ASSERT_EQ(chmod(sandbox.at("closed/sub").c_str(), 0700), 0);
  for (const FileStatus& status : {made, moved, removed}) {
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code(), 513u);
  }
  EXPECT_EQ(bytesOf(file), "kept");
}

TEST_F(FileSystemChanges, AreRefusedByAReadOnlyVolume) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("card"), 1 << 20);
  std::string file = sandbox.file("card/sub/file", "kept");
  ASSERT_EQ(mount(nullptr, volume.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
  for (const FileStatus& status :
       {files.createFolders(sandbox.at("card/new")), files.move(file, sandbox.at("card/moved")),
        files.remove(file), files.remove(sandbox.at("card/sub"))}) {
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code(), 642u) << status.error().description();
  }
  auto created = files.createFile(sandbox.at("card/other"));
  ASSERT_FALSE(created);
  EXPECT_EQ(created.error().code(), 642u);
  EXPECT_TRUE(files.createFolders(sandbox.at("card/sub")));
  EXPECT_EQ(bytesOf(file), "kept");
}

TEST_F(FileSystemChanges, RenameFilesFoldersAndLinks) {
  sandbox.file("file", "x");
  sandbox.file("folder/deep", "y");
  link("link", sandbox.at("missing"));
  EXPECT_TRUE(files.move(sandbox.at("file"), sandbox.at("folder/file2")));
  EXPECT_TRUE(files.move(sandbox.at("folder"), sandbox.at("folder2")));
  EXPECT_TRUE(files.move(sandbox.at("link"), sandbox.at("link2")));
  EXPECT_EQ(treeOf(sandbox.path()), (Tree{"folder2/", "folder2/deep", "folder2/file2", "link2"}));
}

TEST_F(FileSystemChanges, NeverReplaceWhatAlreadyHasTheNewName) {
  std::string file = sandbox.file("file", "mine");
  sandbox.file("other", "other's");
  sandbox.folder("empty");
  sandbox.file("full/file", "theirs");
  link("dangling", sandbox.at("missing"));
  Tree before = treeOf(sandbox.path());
  for (const char* taken : {"other", "empty", "full", "dangling", "file"}) {
    FileStatus status = files.move(file, sandbox.at(taken));
    expectFailure(status, EEXIST);
    EXPECT_EQ(status.error().code(), 516u);
    EXPECT_EQ(status.error().path, sandbox.at(taken));
  }
  expectFailure(files.move(sandbox.at("full"), sandbox.at("empty")), EEXIST);
  EXPECT_EQ(treeOf(sandbox.path()), before);
  EXPECT_EQ(bytesOf(file), "mine");
  EXPECT_EQ(bytesOf(sandbox.at("other")), "other's");
}

TEST_F(FileSystemChanges, SayWhyAnItemCannotBeRenamed) {
  std::string file = sandbox.file("file", "kept");
  sandbox.folder("folder");
  expectFailure(files.move(sandbox.at("missing"), sandbox.at("new")), ENOENT);
  expectFailure(files.move(file, sandbox.at("missing/new")), ENOENT);
  expectFailure(files.move(file, file + "/below"), ENOTDIR);
  expectFailure(files.move(sandbox.at("folder"), sandbox.at("folder/inside")), EINVAL);
  expectFailure(files.move(file, sandbox.at(std::string(256, 'x'))), ENAMETOOLONG);
  expectFailure(files.move(file, sandbox.at(std::string("new\0", 4))), EINVAL);
  expectFailure(files.move(file + std::string("\0", 1), sandbox.at("new")), EINVAL);
  EXPECT_EQ(treeOf(sandbox.path()), (Tree{"file", "folder/"}));
}

TEST_F(FileSystemChanges, ReplaceAFileInOneStepWhenAskedTo) {
  std::string fresh = sandbox.file("fresh", "new");
  std::string taken = sandbox.file("folder/taken", "old");
  EXPECT_TRUE(files.replace(fresh, taken));
  EXPECT_EQ(bytesOf(taken), "new");
  EXPECT_TRUE(files.replace(taken, sandbox.at("free")));
  EXPECT_EQ(treeOf(sandbox.path()), (Tree{"folder/", "free"}));
}

TEST_F(FileSystemChanges, ReplaceALinkItselfAndNotWhatItLeadsTo) {
  std::string target = sandbox.file("target", "kept");
  link("link", target);
  EXPECT_TRUE(files.replace(sandbox.file("fresh", "new"), sandbox.at("link")));
  EXPECT_EQ(bytesOf(target), "kept");
  EXPECT_EQ(bytesOf(sandbox.at("link")), "new");
  EXPECT_EQ(files.linkAttributes(sandbox.at("link"))->type, FileType::Regular);
}

TEST_F(FileSystemChanges, NeverReplaceAFolder) {
  std::string fresh = sandbox.file("fresh", "new");
  sandbox.folder("empty");
  sandbox.file("full/file", "x");
  Tree before = treeOf(sandbox.path());
  expectFailure(files.replace(fresh, sandbox.at("empty")), EISDIR);
  expectFailure(files.replace(fresh, sandbox.at("full")), EISDIR);
  EXPECT_FALSE(files.replace(sandbox.at("full"), sandbox.at("empty")));
  EXPECT_FALSE(files.replace(sandbox.at("full"), fresh));
  EXPECT_EQ(treeOf(sandbox.path()), before);
}

TEST_F(FileSystemChanges, SayWhyAFileCannotBeReplaced) {
  std::string fresh = sandbox.file("fresh", "new");
  std::string taken = sandbox.file("taken", "old");
  expectFailure(files.replace(sandbox.at("missing"), taken), ENOENT);
  expectFailure(files.replace(fresh, sandbox.at("missing/name")), ENOENT);
  expectFailure(files.replace(fresh, taken + std::string("\0", 1)), EINVAL);
  expectFailure(files.replace(fresh + std::string("\0", 1), taken), EINVAL);
  EXPECT_EQ(bytesOf(fresh), "new");
  EXPECT_EQ(bytesOf(taken), "old");
}

TEST_F(FileSystemChanges, LeaveAnItemInPlaceThatWouldHaveToChangeItsVolume) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("card"), 1 << 20);
  std::string file = sandbox.file("file", "kept");
  expectFailure(files.move(file, sandbox.at("card/file")), EXDEV);
  EXPECT_EQ(treeOf(sandbox.path()), (Tree{"card/", "file"}));
}

TEST_F(FileSystemChanges, RemoveAFolderWithEverythingInIt) {
  sandbox.file("gone/a/b/c/file", "x");
  sandbox.file("gone/.hidden", "x");
  sandbox.folder("gone/empty/empty");
  for (int i = 0; i < 500; ++i) sandbox.file("gone/many/" + std::to_string(i), "x");
  ASSERT_EQ(mkfifo(sandbox.at("gone/pipe").c_str(), 0666), 0);
  sandbox.file("stays", "x");
  EXPECT_TRUE(files.remove(sandbox.at("gone")));
  EXPECT_EQ(treeOf(sandbox.path()), Tree{"stays"});
}

TEST_F(FileSystemChanges, RemoveSingleItemsOfEveryType) {
  sandbox.file("file", "x");
  sandbox.folder("folder");
  link("dangling", sandbox.at("missing"));
  ASSERT_EQ(mkfifo(sandbox.at("pipe").c_str(), 0666), 0);
  for (const char* name : {"file", "folder/", "dangling", "pipe"})
    EXPECT_TRUE(files.remove(sandbox.at(name))) << name;
  EXPECT_EQ(treeOf(sandbox.path()), Tree{});
}

TEST_F(FileSystemChanges, RemoveLinksAndNeverWhatTheyLeadTo) {
  sandbox.file("kept/file", "kept");
  link("direct", sandbox.at("kept"));
  link("slashed", sandbox.at("kept"));
  sandbox.folder("gone");
  link("gone/inside", sandbox.at("kept"));
  link("gone/file", sandbox.at("kept/file"));
  link("gone/up", "..");
  EXPECT_TRUE(files.remove(sandbox.at("direct")));
  EXPECT_TRUE(files.remove(sandbox.at("slashed/")));
  EXPECT_TRUE(files.remove(sandbox.at("gone")));
  EXPECT_EQ(treeOf(sandbox.path()), (Tree{"kept/", "kept/file"}));
  EXPECT_EQ(bytesOf(sandbox.at("kept/file")), "kept");
}

TEST_F(FileSystemChanges, RemoveFoldersNestedDeeperThanAProcessMayHaveFilesOpen) {
  constexpr int kDepth = 300;
  int folder = open(sandbox.folder("deep").c_str(), O_DIRECTORY | O_CLOEXEC);
  for (int i = 0; i < kDepth && folder >= 0; ++i) {
    ASSERT_EQ(mkdirat(folder, "d", 0700), 0);
    ASSERT_GE(close(openat(folder, "file", O_CREAT | O_WRONLY | O_CLOEXEC, 0600)), 0);
    int below = openat(folder, "d", O_DIRECTORY | O_CLOEXEC);
    close(folder);
    folder = below;
  }
  ASSERT_GE(folder, 0);
  close(folder);
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit few = before;
  few.rlim_cur = 64;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  FileStatus removed = files.remove(sandbox.at("deep"));
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_TRUE(removed) << removed.error().description();
  EXPECT_EQ(treeOf(sandbox.path()), Tree{});
}

TEST_F(FileSystemChanges, SayWhyAnItemCannotBeRemoved) {
  std::string file = sandbox.file("file", "kept");
  expectFailure(files.remove(sandbox.at("missing")), ENOENT);
  expectFailure(files.remove(""), ENOENT);
  expectFailure(files.remove(file + "/below"), ENOTDIR);
  expectFailure(files.remove(file + std::string("\0", 1)), EINVAL);
  EXPECT_EQ(files.remove(sandbox.at("missing")).error().code(), 4u);
  EXPECT_EQ(bytesOf(file), "kept");
}

TEST_F(FileSystemChanges, LeaveFoldersAloneThatCannotBeRemovedUnderTheNameGiven) {
  sandbox.file("folder/sub/file", "kept");
  for (const char* name : {"folder/.", "folder/./", "folder/sub/..", "folder/sub/../"})
    expectFailure(files.remove(sandbox.at(name)), EINVAL);
  EXPECT_EQ(bytesOf(sandbox.at("folder/sub/file")), "kept");
}

TEST_F(FileSystemChanges, MayMakeMoveListReadAndRemoveNamesOfEveryByteButNulAndSlash) {
  std::vector<std::string> names;
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != '/') names.push_back("a" + std::string(1, static_cast<char>(byte)) + "b");
  }
  names.push_back(std::string(255, 'n'));
  for (const std::string& name : names) {
    auto handle = files.createFile(sandbox.at(name));
    ASSERT_TRUE(handle) << name;
    EXPECT_EQ((*handle)->write(name.data(), name.size()).written, name.size());
  }
  auto listed = files.list(sandbox.path());
  ASSERT_TRUE(listed);
  EXPECT_EQ(listed->size(), names.size());
  sandbox.folder("moved");
  for (const std::string& name : names) {
    ASSERT_TRUE(files.move(sandbox.at(name), sandbox.at("moved/" + name))) << name;
    EXPECT_EQ(bytesOf(sandbox.at("moved/" + name)), name);
  }
  EXPECT_TRUE(files.remove(sandbox.at("moved")));
  EXPECT_EQ(treeOf(sandbox.path()), Tree{});
}

TEST_F(FileSystemChanges, CanBeMadeToLastForTheVolumeOfAnyExistingPath) {
  std::string file = sandbox.file("file", "x");
  EXPECT_TRUE(files.syncVolume(sandbox.path()));
  EXPECT_TRUE(files.syncVolume(file));
  expectFailure(files.syncVolume(sandbox.at("missing")), ENOENT);
  expectFailure(files.syncVolume(file + std::string("\0", 1)), EINVAL);
}

}  // namespace
}  // namespace umsservice::testing
